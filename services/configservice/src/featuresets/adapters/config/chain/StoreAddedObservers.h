#pragma once

#include "secure/RankedMutex.h"

#include <unified/UnifiedFactory.h>

#include <ConfigStoreAddedObserver.h>

#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace ZelUnified {

/// The observers of new stores, held by weak pointers in order of registration. Any thread. They are notified
/// asynchronously on the background dispatcher's thread, with no lock held.
class StoreAddedObservers {
public:
    explicit StoreAddedObservers(std::shared_ptr<UnifiedFactory> factory) : unifiedFactory(std::move(factory)) {}

    // Log lines show the names of the first two functions, so they are the names of the manager's operations.

    /// Appends the observer; ignores null. An observer that registers twice is called twice.
    void registerConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    /// Removes every registration of the observer.
    void unregisterConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    /// Posts one task for each observer that is still alive. Does nothing without a dispatcher.
    void fireConfigStoreAdded(const std::string& storeName) const;

private:
    std::list<std::shared_ptr<ConfigStoreAddedObserver>> getLiving() const;

    const std::shared_ptr<UnifiedFactory> unifiedFactory;
    /// Recursive, like all locks of the manager.
    mutable zel::RankedMutex<std::recursive_mutex, zel::LockRank::Innermost> storeAddedObserversLock;
    std::list<std::weak_ptr<ConfigStoreAddedObserver>> storeAddedObservers LUMORA_GUARDED_BY(storeAddedObserversLock);
};

} // namespace ZelUnified
