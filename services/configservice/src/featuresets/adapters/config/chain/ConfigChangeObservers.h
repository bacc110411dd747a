#pragma once

#include "secure/RankedMutex.h"

#include <ConfigStoreManager_Observer.h>

#include <mutex>
#include <set>
#include <string>

namespace ZelUnified {

/// The new state of a key, as observers receive it.
struct ConfigChange {
    /// Zeroes the values, which may be secrets.
    ~ConfigChange();

    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;
};

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
