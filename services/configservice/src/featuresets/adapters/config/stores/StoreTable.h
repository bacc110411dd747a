#pragma once

#include "table/ConfigTable.h"

#include <kyr/ThreadSafety.h>

#include <ConfigMap.h>
#include <secure/Mutex.h>

#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

class ConfigStore;

/// The keys and values of a store of this library, their lock, and the rule by which the store answers a lookup. Any
/// thread may call every operation.
class StoreTable {
public:
    enum class Rule {
        /// Returns each value. The FIPS override applies to a hit.
        AnswersAll,
        /// The same, but never returns a value of the key for certificate validation, although the store lists it.
        WithholdsCertificateValidation,
        /// Returns each value trimmed. The FIPS override applies to a miss too: the lookup returns false, but sets the
        /// value to the forced one.
        Trims,
    };

    /// Locks the table while it exists.
    class Locked {
    public:
        // Not analysed, because clang does not know that `lock` guards `values` for the lifetime of this object.
        explicit Locked(StoreTable& table) LUMORA_NO_THREAD_SAFETY_ANALYSIS : lock(table.tableLock),
                                                                              values(table.values) {}

        ConfigTable* operator->() const noexcept { return &values; }
        ConfigTable& operator*() const noexcept { return values; }

    private:
        const zel::Mutex::ScopedLock lock;
        ConfigTable& values;
    };

    /// Returns the table of a store of this library, so that a walk of the chain folds and hashes a key once instead of
    /// once in every store. Returns null for a store of another service, also if its class is derived from one of this
    /// library, because it may answer differently.
    static StoreTable* find(ConfigStore& store);

    explicit StoreTable(Rule answeringRule) : rule(answeringRule) {}
    StoreTable(const StoreTable&) = delete;
    StoreTable& operator=(const StoreTable&) = delete;

    /// Returns the table for a series of operations under the lock, which is recursive.
    Locked lock() { return Locked(*this); }

    // The operations of ConfigStore.

    /// Returns false only if getValue() would return false and clear its value. Does not acquire the lock:
    /// ConfigTable::mayHold() may run while another thread changes the table.
    bool mayAnswer(const FoldedKey& key) const noexcept LUMORA_NO_THREAD_SAFETY_ANALYSIS {
        return rule == Rule::Trims || values.mayHold(key);
    }
    /// `key` may refer to `value`. Reports most misses without the lock.
    bool getValue(const std::wstring& key, std::wstring& value) { return getValue(FoldedKey(key), value); }
    bool getValue(const FoldedKey& key, std::wstring& value);
    bool storeValue(const std::wstring& key, const std::wstring& value);
    std::vector<std::wstring> getKeys() { return lock()->getKeys(); }
    /// Returns the same keys as getKeys(), with fewer allocations.
    KeyList listKeys() { return lock()->listKeys(); }
    bool removeValue(const std::wstring& key) { return lock()->remove(key); }
    void removeAllValues() { lock()->clear(); }

    /// Replaces the contents with `read`, whose values are zeroed.
    void replace(ConfigMap read) { lock()->replace(std::move(read)); }

private:
    bool getTrimmedValue(const FoldedKey& key, std::wstring& value);
    bool isWithheld(const FoldedKey& key) const;

    const Rule rule;
    zel::Mutex tableLock;
    ConfigTable values LUMORA_GUARDED_BY(tableLock);
};

} // namespace ZelUnified
