#pragma once

#include <kyr/AnnotatedMutex.h>
#include <unified/ResetDataCallbackRegistry.h>

#include <map>
#include <memory>
#include <vector>

namespace ZelUnified {

/// The reset callbacks, sorted by order; callbacks of the same order are in insertion order.
class LUMORA_HOST_API ResetDataCallbackRegistryImpl final : public ResetDataCallbackRegistry {
public:
    /// Adds the callback. Ignores a null callback and one that is already registered with this order.
    void add(int order, std::shared_ptr<ProviderResetDataCallback> callback) override;
    void remove(int order, std::shared_ptr<ProviderResetDataCallback> callback) override;

    /// Returns the callbacks in the order in which they must be called.
    std::vector<std::shared_ptr<ProviderResetDataCallback>> getCallbacks() const;
    /// Removes all callbacks and destroys them with no lock held.
    void clear();

private:
    using Callbacks = std::multimap<int, std::shared_ptr<ProviderResetDataCallback>>;

    Callbacks::iterator find(int order, const std::shared_ptr<ProviderResetDataCallback>& callback)
        LUMORA_REQUIRES(mutex);

    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    Callbacks callbacks LUMORA_GUARDED_BY(mutex);
};

} // namespace ZelUnified
