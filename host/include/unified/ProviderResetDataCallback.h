#pragma once

#include <unified/UnifiedCallback.h>

namespace ZelUnified {

namespace ResetDataOptionEnum {

/// The reset that the user requested.
enum ResetDataOption { ResetAll = 0, ResetUserData = 1, ResetOnSignOut = 2 };

} // namespace ResetDataOptionEnum

/// Called on the services dispatcher's thread when the user resets the client.
class LUMORA_HOST_API ProviderResetDataCallback : public UnifiedCallback {
public:
    std::string getInterfaceName() override { return "ProviderResetDataCallback"; }
    virtual void InvokeResetData(ResetDataOptionEnum::ResetDataOption option) = 0;
};

} // namespace ZelUnified
