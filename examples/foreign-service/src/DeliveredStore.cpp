#include "DeliveredStore.h"

#include <utility>

namespace example {

DeliveredStore::DeliveredStore(ZelUnified::ConfigMap settings) : values(std::move(settings)) {}

bool DeliveredStore::getValue(const std::wstring& key, std::wstring& value) {
    const auto found = values.find(key);
    if (found == values.end()) {
        value.clear();
        return false;
    }
    value = found->second;
    return true;
}

bool DeliveredStore::storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) {
    return false;
}

std::vector<std::wstring> DeliveredStore::getKeys() {
    std::vector<std::wstring> keys;
    for (const auto& [key, value] : values) {
        keys.push_back(key);
    }
    return keys;
}

bool DeliveredStore::removeValue(const std::wstring& /*key*/) {
    return false;
}

} // namespace example
