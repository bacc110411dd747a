#pragma once

#include "secure/RankedMutex.h"
#include "table/FoldedKey.h"
#include "table/KeyFilter.h"
#include "table/KeyIndex.h"

#include <ConfigMap.h>

#include <mutex>
#include <string>

namespace ZelUnified {

/// The keys whose values are never shown; case-insensitive. Any thread.
class SensitiveKeys {
public:
    void add(const std::wstring& key) {
        const std::lock_guard lock(sensitiveKeysLock);
        const FoldedKey folded(key);
        if (index.find(folded) != nullptr) {
            return;
        }
        index.reserveOne();
        filter.reserve(sensitiveKeys.size() + 1, [this](auto addHash) { index.forEachHash(addHash); });
        const auto& added = *sensitiveKeys.insert(key).first;
        filter.add(folded);
        index.insert(folded, added);
    }

    bool contains(const FoldedKey& key) const {
        if (!filter.mayHold(key)) {
            return false;
        }
        const std::lock_guard lock(sensitiveKeysLock);
        return index.find(key) != nullptr;
    }

private:
    /// Recursive, like all locks of the manager.
    mutable zel::RankedMutex<std::recursive_mutex, zel::LockRank::Innermost> sensitiveKeysLock;
    ConfigKeySet sensitiveKeys;
    KeyIndex<const std::wstring> index; ///< Refers to the entries of `sensitiveKeys`.
    KeyFilter filter;                   ///< Cheap first test: every lookup calls contains().
};

} // namespace ZelUnified
