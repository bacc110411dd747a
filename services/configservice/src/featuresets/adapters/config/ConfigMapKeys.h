#pragma once

#include <ConfigMap.h>

#include <string>
#include <vector>

namespace ZelUnified {

/// The keys in map order, as ConfigStore::getKeys() gives them.
inline std::vector<std::wstring> keysOf(const ConfigMap& values) {
    std::vector<std::wstring> keys;
    keys.reserve(values.size());
    for (const auto& [key, value] : values) {
        keys.push_back(key);
    }
    return keys;
}

} // namespace ZelUnified
