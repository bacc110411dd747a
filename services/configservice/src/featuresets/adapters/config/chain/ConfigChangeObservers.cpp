#include "ConfigChangeObservers.h"

#include "secure/SecureString.h"

#include <kyr/LockGuard.h>

#include <utility>

namespace ZelUnified {

ConfigChange::~ConfigChange() {
    zel::SecureString::wipe(value);
    zel::SecureString::wipe(originalValue);
}

void ConfigChangeObservers::add(ConfigStoreManager_Observer* observer) {
    if (observer == nullptr) {
        return;
    }
    const KyrCoreUtils::LockGuard lock(observersLock);
    observers.insert(observer);
}

void ConfigChangeObservers::notifyConfigAddedOrUpdated(const std::wstring& key, ConfigChange&& change, bool deferFire) {
    const KyrCoreUtils::LockGuard lock(observersLock);
    for (auto next = observers.begin(); next != observers.end();) {
        auto* const observer = *next;
        if (++next == observers.end()) {
            observer->onConfigAddedOrUpdated(key, std::move(change.value), std::move(change.originalValue),
                                             change.isOverridden, change.isDefined, std::move(change.valueStoreName),
                                             std::move(change.originalValueStoreName), deferFire);
            return;
        }
        observer->onConfigAddedOrUpdated(key, change.value, change.originalValue, change.isOverridden, change.isDefined,
                                         change.valueStoreName, change.originalValueStoreName, deferFire);
    }
}

void ConfigChangeObservers::notifyFireIfRequired(const std::wstring& key) {
    const KyrCoreUtils::LockGuard lock(observersLock);
    for (auto* observer : observers) {
        observer->onFireIfRequired(key);
    }
}

void ConfigChangeObservers::notifySensitiveKey(const std::wstring& key) {
    const KyrCoreUtils::LockGuard lock(observersLock);
    for (auto* observer : observers) {
        observer->onSensitiveKeyAddedOrUpdated(key);
    }
}

} // namespace ZelUnified
