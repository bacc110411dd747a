#pragma once

#include "ConfigChange.h"
#include "secure/RankedMutex.h"

#include <ConfigStoreManager_Observer.h>

#include <mutex>
#include <set>
#include <string>

namespace ZelUnified {

/// The manager's observers: plain pointers that outlive it. They are called on the caller's thread with the lock held;
/// it is recursive because what they do may lead back here.
class ConfigChangeObservers {
public:
    /// A null observer is ignored.
    void add(ConfigStoreManager_Observer* observer);

    /// Each observer gets texts of its own, the last one those of `change`.
    void notifyConfigAddedOrUpdated(const std::wstring& key, ConfigChange&& change, bool deferFire);
    void notifyFireIfRequired(const std::wstring& key);
    void notifySensitiveKey(const std::wstring& key);

private:
    zel::RankedMutex<std::recursive_mutex, zel::LockRank::Observers> observersLock;
    std::set<ConfigStoreManager_Observer*> observers;
};

} // namespace ZelUnified
