#pragma once

#include <ConfigMap.h>

#include <mutex>
#include <string>

namespace ZelUnified {

/// The keys whose values are never shown, ignoring case. Any thread.
class SensitiveKeys {
public:
    void add(const std::wstring& key) {
        const std::lock_guard lock(sensitiveKeysLock);
        sensitiveKeys.insert(key);
    }

    bool contains(std::wstring_view key) const {
        const std::lock_guard lock(sensitiveKeysLock);
        return sensitiveKeys.find(key) != sensitiveKeys.end();
    }

private:
    mutable std::recursive_mutex sensitiveKeysLock; ///< Recursive, as all locks of the manager.
    ConfigKeySet sensitiveKeys;
};

} // namespace ZelUnified
