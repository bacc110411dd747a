#pragma once

#include <unified/ResetDataCallbackRegistry.h>

#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace ZelUnified {

/// The reset callbacks by order, those of one order as they came.
class LUMORA_HOST_API ResetDataCallbackRegistryImpl final : public ResetDataCallbackRegistry {
public:
    /// A callback that stands under this order already is not added twice; an empty one is ignored.
    void add(int order, std::shared_ptr<ProviderResetDataCallback> callback) override;
    void remove(int order, std::shared_ptr<ProviderResetDataCallback> callback) override;

    /// In the order in which they are to be called.
    std::vector<std::shared_ptr<ProviderResetDataCallback>> getCallbacks() const;
    /// Lets go of all, with no lock held.
    void clear();

private:
    using Callbacks = std::multimap<int, std::shared_ptr<ProviderResetDataCallback>>;

    Callbacks::iterator find(int order, const std::shared_ptr<ProviderResetDataCallback>& callback);

    mutable std::mutex mutex;
    Callbacks callbacks;
};

} // namespace ZelUnified
