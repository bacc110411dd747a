#pragma once

#include "FoldedKey.h"
#include "KeyIndex.h"

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// Old names of keys and what took their place, found without comparing keys on the way. Constant but for assignment.
class KeySuccessors {
public:
    KeySuccessors() = default;
    explicit KeySuccessors(ConfigMap names);
    KeySuccessors(KeySuccessors&&) noexcept = default;
    KeySuccessors& operator=(KeySuccessors&&) noexcept = default;

    /// The name that takes the place of the key; null when none does.
    const std::wstring* find(const FoldedKey& key) const noexcept {
        const auto* entry = index.find(key);
        return entry == nullptr ? nullptr : &entry->second;
    }

    const ConfigMap& getMap() const noexcept { return map; }

private:
    ConfigMap map;
    KeyIndex<ConfigMap::value_type> index; ///< Of the entries of `map`, which stay in place.
};

} // namespace ZelUnified
