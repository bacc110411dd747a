#pragma once

#include "FoldedKey.h"
#include "KeyFilter.h"
#include "KeyIndex.h"

#include <ConfigMap.h>

#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

/// The keys and values of a store: an ordered map, and an index that finds a key in it without comparing keys on the
/// way. What leaves it is zeroed. Has no lock; the store guards it, but for mayHold().
class ConfigTable {
public:
    ConfigTable() = default;
    /// Takes the values over.
    explicit ConfigTable(ConfigMap values);
    ~ConfigTable();
    ConfigTable(const ConfigTable&) = delete;
    ConfigTable& operator=(const ConfigTable&) = delete;

    /// False when the key is not held, which any thread may ask without the store's lock.
    bool mayHold(const FoldedKey& key) const noexcept { return filter.mayHold(key); }

    /// Null when the key is not held.
    const std::wstring* find(const FoldedKey& key) const noexcept {
        const auto* entry = index.find(key);
        return entry == nullptr ? nullptr : &entry->second;
    }

    /// Inserts or overwrites; a key that is held keeps its form. The entry stays in place until its key is
    /// removed, or the table cleared or replaced.
    const ConfigMap::value_type& store(const std::wstring& key, const std::wstring& value);
    /// True when the key was held.
    bool remove(const std::wstring& key);
    void clear();
    void replace(ConfigMap values);

    const ConfigMap& getMap() const noexcept { return map; }
    /// In the order of the map.
    std::vector<std::wstring> getKeys() const;

private:
    void reserveFilter(std::size_t keys);

    ConfigMap map;
    KeyIndex<ConfigMap::value_type> index; ///< Of the entries of `map`, which stay in place while they live.
    KeyFilter filter;
};

} // namespace ZelUnified
