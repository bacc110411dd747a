#include "StoreAddedObservers.h"

#include "BackgroundTasks.h"
#include "ConfigStoreManagerLogger.h"

#include <kyr/LockGuard.h>

namespace ZelUnified {

void StoreAddedObservers::registerConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer) {
    if (!observer) {
        return;
    }
    const KyrCoreUtils::LockGuard lock(storeAddedObserversLock);
    storeAddedObservers.push_back(observer);
    ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "ConfigStoreAddedObserver registered");
}

void StoreAddedObservers::unregisterConfigStoreAddedObserver(
    const std::shared_ptr<ConfigStoreAddedObserver>& observer) {
    // Keeps every observer alive until the lock is released: no observer's destructor may run under the lock.
    const auto living = getLiving();
    const KyrCoreUtils::LockGuard lock(storeAddedObserversLock);
    if (!observer) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Warning, ZEL_HERE,
               "Attempt to unregister null ConfigStoreAddedObserver");
        return;
    }
    const auto removed = storeAddedObservers.remove_if([&](const auto& known) { return known.lock() == observer; });
    if (removed == 0) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Warning, ZEL_HERE,
               "Attempt to unregister unknown ConfigStoreAddedObserver");
        return;
    }
    ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "ConfigStoreAddedObserver unregistered");
}

void StoreAddedObservers::fireConfigStoreAdded(const std::string& storeName) const {
    for (const auto& observer : getLiving()) {
        enqueueBackgroundTask(unifiedFactory, "ConfigStoreAddedObserver::OnConfigStoreAdded",
                              [observer, storeName] { observer->OnConfigStoreAdded(storeName); });
    }
}

std::list<std::shared_ptr<ConfigStoreAddedObserver>> StoreAddedObservers::getLiving() const {
    std::list<std::shared_ptr<ConfigStoreAddedObserver>> living;
    const KyrCoreUtils::LockGuard lock(storeAddedObserversLock);
    for (const auto& known : storeAddedObservers) {
        if (auto observer = known.lock()) {
            living.push_back(std::move(observer));
        }
    }
    return living;
}

} // namespace ZelUnified
