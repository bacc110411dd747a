#include "ForeignXmlStore.h"

#include <utility>

namespace lumora_config {

ForeignXmlStore::ForeignXmlStore(StoreSpec description) : spec(std::move(description)) {
    for (auto& setting : readXmlSettings(spec.file)) {
        if (setting.sensitive) {
            sensitiveKeys.insert(setting.key);
        }
        values.emplace(std::move(setting.key), std::move(setting.value));
    }
}

bool ForeignXmlStore::getValue(const std::wstring& key, std::wstring& value) {
    const auto found = values.find(key);
    if (found == values.end()) {
        value.clear();
        return false;
    }
    value = found->second;
    return true;
}

bool ForeignXmlStore::storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) {
    return false;
}

std::vector<std::wstring> ForeignXmlStore::getKeys() {
    std::vector<std::wstring> keys;
    keys.reserve(values.size());
    for (const auto& [key, value] : values) {
        keys.push_back(key);
    }
    return keys;
}

bool ForeignXmlStore::removeValue(const std::wstring& /*key*/) {
    return false;
}

} // namespace lumora_config
