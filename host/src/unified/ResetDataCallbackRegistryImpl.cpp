#include "ResetDataCallbackRegistryImpl.h"

#include <kyr/LockGuard.h>

#include <algorithm>
#include <utility>

namespace ZelUnified {

void ResetDataCallbackRegistryImpl::add(int order, std::shared_ptr<ProviderResetDataCallback> callback) {
    if (!callback) {
        return;
    }
    const KyrCoreUtils::LockGuard lock(mutex);
    if (find(order, callback) == callbacks.end()) {
        callbacks.emplace(order, std::move(callback));
    }
}

void ResetDataCallbackRegistryImpl::remove(int order, std::shared_ptr<ProviderResetDataCallback> callback) {
    // The argument prevents destruction of the callback under the lock.
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const auto found = find(order, callback); found != callbacks.end()) {
        callbacks.erase(found);
    }
}

std::vector<std::shared_ptr<ProviderResetDataCallback>> ResetDataCallbackRegistryImpl::getCallbacks() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    std::vector<std::shared_ptr<ProviderResetDataCallback>> ordered;
    for (const auto& [order, callback] : callbacks) {
        ordered.push_back(callback);
    }
    return ordered;
}

void ResetDataCallbackRegistryImpl::clear() {
    Callbacks dropped;
    const KyrCoreUtils::LockGuard lock(mutex);
    dropped.swap(callbacks);
}

ResetDataCallbackRegistryImpl::Callbacks::iterator
ResetDataCallbackRegistryImpl::find(int order, const std::shared_ptr<ProviderResetDataCallback>& callback) {
    const auto [begin, end] = callbacks.equal_range(order);
    const auto found = std::find_if(begin, end, [&](const auto& entry) { return entry.second == callback; });
    return found == end ? callbacks.end() : found;
}

} // namespace ZelUnified
