#pragma once

#include <unified/UnifiedCallback.h>

namespace ZelUnified {

namespace ResetDataOptionEnum {

/// What the user asked to reset.
enum ResetDataOption { ResetAll = 0, ResetUserData = 1, ResetOnSignOut = 2 };

} // namespace ResetDataOptionEnum

/// Called when the user resets the client, on the services dispatcher's thread.
class LUMORA_HOST_API ProviderResetDataCallback : public UnifiedCallback {
public:
    std::string getInterfaceName() override { return "ProviderResetDataCallback"; }
    virtual void InvokeResetData(ResetDataOptionEnum::ResetDataOption option) = 0;
};

} // namespace ZelUnified
