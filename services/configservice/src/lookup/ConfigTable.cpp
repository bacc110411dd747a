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
    reserveFilter(map.size() + 1);
    auto& entry = *map.emplace(key, value).first;
    filter.add(folded);
    index.insert(folded, entry);
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
    reserveFilter(values.size()); // while the index still knows what is held
    clear();
    map = std::move(values);
    index.reserve(map.size());
    for (auto& entry : map) {
        const FoldedKey key(entry.first);
        filter.add(key);
        index.insert(key, entry);
    }
}

void ConfigTable::reserveFilter(std::size_t keys) {
    if (filter.isTooSmallFor(keys)) {
        filter.grow(keys, [this](auto add) { index.forEachHash(add); });
    }
}

std::vector<std::wstring> ConfigTable::getKeys() const {
    return keysOf(map);
}

} // namespace ZelUnified
