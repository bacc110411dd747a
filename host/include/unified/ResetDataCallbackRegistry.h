#pragma once

#include <unified/ProviderResetDataCallback.h>

#include <memory>

namespace ZelUnified {

/// Holds the reset callbacks by shared pointer until they are removed or the factory is destroyed. Any thread.
class LUMORA_HOST_API ResetDataCallbackRegistry {
public:
    virtual ~ResetDataCallbackRegistry() = default;
    /// Adds a callback. Callbacks with a lower `order` are called first.
    virtual void add(int order, std::shared_ptr<ProviderResetDataCallback> callback) = 0;
    virtual void remove(int order, std::shared_ptr<ProviderResetDataCallback> callback) = 0;
};

} // namespace ZelUnified
