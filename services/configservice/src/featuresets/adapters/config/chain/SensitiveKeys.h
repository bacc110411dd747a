#pragma once

#include "secure/RankedMutex.h"
#include "table/FoldedKey.h"
#include "table/KeyFilter.h"
#include "table/KeyIndex.h"

#include <kyr/LockGuard.h>

#include <ConfigMap.h>

#include <mutex>
#include <string>

namespace ZelUnified {

/// The keys whose values are never shown; case-insensitive. Any thread.
class SensitiveKeys {
public:
    void add(const std::wstring& key) {
        const KyrCoreUtils::LockGuard lock(sensitiveKeysLock);
        const FoldedKey folded(key);
        if (index.find(folded) != nullptr) {
            return;
        }
        index.reserveOne();
        // Not analysed, because clang does not know that reserve() calls the lambda immediately, with the lock held.
        filter.reserve(sensitiveKeys.size() + 1,
                       [this](auto addHash) LUMORA_NO_THREAD_SAFETY_ANALYSIS { index.forEachHash(addHash); });
        const auto& added = *sensitiveKeys.insert(key).first;
        filter.add(folded);
        index.insert(folded, added);
    }

    bool contains(const FoldedKey& key) const {
        if (!mayHold(key)) {
            return false;
        }
        const KyrCoreUtils::LockGuard lock(sensitiveKeysLock);
        return index.find(key) != nullptr;
    }

private:
    /// Does not acquire the lock: the filter allows reads while another thread adds a key, and every lookup calls this.
    bool mayHold(const FoldedKey& key) const LUMORA_NO_THREAD_SAFETY_ANALYSIS { return filter.mayHold(key); }

    /// Recursive, like all locks of the manager.
    mutable zel::RankedMutex<std::recursive_mutex, zel::LockRank::Innermost> sensitiveKeysLock;
    ConfigKeySet sensitiveKeys LUMORA_GUARDED_BY(sensitiveKeysLock);
    /// Refers to the entries of `sensitiveKeys`.
    KeyIndex<const std::wstring> index LUMORA_GUARDED_BY(sensitiveKeysLock);
    KeyFilter filter LUMORA_GUARDED_BY(sensitiveKeysLock); ///< Cheap first test: every lookup calls contains().
};

} // namespace ZelUnified
