#pragma once

#include "FoldedKey.h"
#include "KeyIndex.h"

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// A map from names of keys to other names of the same keys, for example from old names to new names. An index finds a
/// name without comparing other names. Constant except for assignment.
class KeyNameMap {
public:
    KeyNameMap() = default;
    explicit KeyNameMap(ConfigMap names);
    KeyNameMap(KeyNameMap&&) noexcept = default;
    KeyNameMap& operator=(KeyNameMap&&) noexcept = default;

    /// Returns the other name of `key` (case-insensitive), or null if the map does not contain `key`.
    const std::wstring* find(const FoldedKey& key) const noexcept {
        const auto* entry = index.find(key);
        return entry == nullptr ? nullptr : &entry->second;
    }

    const ConfigMap& getMap() const noexcept { return map; }

private:
    ConfigMap map;
    KeyIndex<ConfigMap::value_type> index; ///< Refers to the entries of `map`, whose addresses are stable.
};

} // namespace ZelUnified
