#pragma once

#include "ConfigChange.h"
#include "secure/RankedMutex.h"

#include <ConfigStoreManager_Observer.h>

#include <mutex>
#include <set>
#include <string>

namespace ZelUnified {

/// The manager's observers, held as plain pointers; they must outlive this object. They are called on the caller's
/// thread with the lock held. The lock is recursive because an observer may call back into this object.
class ConfigChangeObservers {
public:
    /// Registers the observer; ignores null.
    void add(ConfigStoreManager_Observer* observer);

    /// Passes each observer its own copies of the texts; the last observer receives those of `change`.
    void notifyConfigAddedOrUpdated(const std::wstring& key, ConfigChange&& change, bool deferFire);
    void notifyFireIfRequired(const std::wstring& key);
    void notifySensitiveKey(const std::wstring& key);

private:
    zel::RankedMutex<std::recursive_mutex, zel::LockRank::Observers> observersLock;
    std::set<ConfigStoreManager_Observer*> observers LUMORA_GUARDED_BY(observersLock);
};

} // namespace ZelUnified
