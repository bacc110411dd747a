#include "ConfigMapKeys.h"
#include "XmlConfigParser.h"
#include "secure/FipsValueOverride.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>
#include <XmlConfigStore.h>

#include <utility>

namespace ZelUnified {

XmlConfigStore::XmlConfigStore(std::string storeName, int storePriority, bool isLocalStorage, bool encrypted,
                               std::string file, bool readNow)
    : filePath(std::move(file)), isLocalStore(isLocalStorage), priority(storePriority), name(std::move(storeName)) {
    if (!readNow) {
        return;
    }
    ConfigKeySet unused;
    encrypted ? XmlConfigParser::readFromEncryptedFile(filePath, values, unused)
              : XmlConfigParser::readFromFile(filePath, values, unused);
}

XmlConfigStore::~XmlConfigStore() = default;

bool XmlConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    const zel::Mutex::ScopedLock lock(valuesLock);
    const auto found = values.find(key);
    const bool isWithheld = KyrCoreUtils::caseInsensitiveStringEquals(key, ConfigKeys::certificateValidationEnabled);
    if (found == values.end() || isWithheld) {
        value.clear();
        return false;
    }
    std::wstring answer = found->second;
    zel::applyFipsValueOverride(key, answer);
    value = std::move(answer); // last: the caller may hand in one string for both
    return true;
}

bool XmlConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    const zel::Mutex::ScopedLock lock(valuesLock);
    values[key] = value;
    return true;
}

std::vector<std::wstring> XmlConfigStore::getKeys() {
    const zel::Mutex::ScopedLock lock(valuesLock);
    return keysOf(values);
}

bool XmlConfigStore::removeValue(const std::wstring& key) {
    const zel::Mutex::ScopedLock lock(valuesLock);
    return values.erase(key) > 0;
}

} // namespace ZelUnified
