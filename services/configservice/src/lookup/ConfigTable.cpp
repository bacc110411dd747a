#include "ConfigTable.h"

#include "featuresets/adapters/config/ConfigMapKeys.h"

namespace ZelUnified {

ConfigTable::ConfigTable(ConfigMap values) {
    replace(std::move(values));
}

void ConfigTable::store(const std::wstring& key, const std::wstring& value) {
    const FoldedKey folded(key);
    if (auto* entry = index.find(folded)) {
        entry->second = value;
        return;
    }
    index.reserveOne();
    index.insert(folded, *map.emplace(key, value).first);
}

bool ConfigTable::remove(const std::wstring& key) {
    const FoldedKey folded(key);
    if (index.find(folded) == nullptr) {
        return false;
    }
    index.erase(folded); // while the entry's key can be read
    map.erase(map.find(key));
    return true;
}

void ConfigTable::clear() {
    index.clear();
    map.clear();
}

void ConfigTable::replace(ConfigMap values) {
    clear();
    map = std::move(values);
    index.reserve(map.size());
    for (auto& entry : map) {
        index.insert(FoldedKey(entry.first), entry);
    }
}

std::vector<std::wstring> ConfigTable::getKeys() const {
    return keysOf(map);
}

} // namespace ZelUnified
