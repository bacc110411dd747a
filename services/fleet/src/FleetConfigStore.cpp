#include "FleetConfigStore.h"

#include <utility>

namespace fleet {

FleetConfigStore::FleetConfigStore(int storePriority, ZelUnified::ConfigMap storeValues)
    : priority(storePriority), values(std::move(storeValues)) {}

bool FleetConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    const auto found = values.find(key);
    if (found == values.end()) {
        value.clear();
        return false;
    }
    value = found->second;
    return true;
}

std::vector<std::wstring> FleetConfigStore::getKeys() {
    std::vector<std::wstring> keys;
    keys.reserve(values.size());
    for (const auto& entry : values) {
        keys.push_back(entry.first);
    }
    return keys;
}

} // namespace fleet
