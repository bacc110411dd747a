#include "ConfigTable.h"

#include "WipedValues.h"
#include "featuresets/adapters/config/ConfigMapKeys.h"

namespace ZelUnified {

ConfigTable::ConfigTable(ConfigMap values) {
    replace(std::move(values));
}

ConfigTable::~ConfigTable() {
    wipeValues(map);
}

const ConfigMap::value_type& ConfigTable::store(const std::wstring& key, const std::wstring& value) {
    const FoldedKey folded(key);
    if (auto* entry = index.find(folded)) {
        overwriteValue(entry->second, value);
        return *entry;
    }
    index.reserveOne();
    reserveFilter(map.size() + 1);
    auto& entry = *map.emplace(key, value).first;
    filter.add(folded);
    index.insert(folded, entry);
    return entry;
}

bool ConfigTable::remove(const std::wstring& key) {
    const FoldedKey folded(key);
    if (index.find(folded) == nullptr) {
        return false;
    }
    index.erase(folded); // while the entry's key can be read
    const auto entry = map.find(key);
    zel::SecureString::wipe(entry->second);
    map.erase(entry);
    return true;
}

void ConfigTable::clear() {
    index.clear();
    wipeValues(map);
    map.clear();
}

void ConfigTable::replace(ConfigMap values) {
    reserveFilter(values.size()); // while the index still knows what is held
    KeyIndex<ConfigMap::value_type> indexOfValues;
    indexOfValues.reserve(values.size());
    for (auto& entry : values) {
        const FoldedKey key(entry.first);
        filter.add(key);
        indexOfValues.insert(key, entry);
    }
    map.swap(values); // entries stay where they are
    index.swap(indexOfValues);
    wipeValues(values);
}

void ConfigTable::reserveFilter(std::size_t keys) {
    filter.reserve(keys, [this](auto add) { index.forEachHash(add); });
}

std::vector<std::wstring> ConfigTable::getKeys() const {
    return keysOf(map);
}

} // namespace ZelUnified
