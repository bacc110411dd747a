#pragma once

#include "secure/RankedMutex.h"

#include <unified/UnifiedFactory.h>

#include <ConfigStoreAddedObserver.h>

#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace ZelUnified {

/// The observers of arriving stores, held weakly and in order of registration. Any thread. They are told later, on the
/// background dispatcher's thread, with no lock held.
class StoreAddedObservers {
public:
    explicit StoreAddedObservers(std::shared_ptr<UnifiedFactory> factory) : unifiedFactory(std::move(factory)) {}

    // The first two are named after the manager's operations, which is what their log lines name.

    /// Appends the observer. Ignores a null one; calls one that registers twice twice.
    void registerConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    /// Removes every registration of the observer.
    void unregisterConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    /// Posts one task for each living observer. Without a dispatcher nothing is told.
    void fireConfigStoreAdded(const std::string& storeName) const;

private:
    std::list<std::shared_ptr<ConfigStoreAddedObserver>> getLiving() const;

    const std::shared_ptr<UnifiedFactory> unifiedFactory;
    /// Recursive, as all locks of the manager.
    mutable zel::RankedMutex<std::recursive_mutex, zel::LockRank::Innermost> storeAddedObserversLock;
    std::list<std::weak_ptr<ConfigStoreAddedObserver>> storeAddedObservers;
};

} // namespace ZelUnified
