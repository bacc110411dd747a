#include "ConfigMapKeys.h"
#include "secure/FipsValueOverride.h"

#include <zel/ZelLog.h>

#include <InMemoryConfigStore.h>

namespace ZelUnified {

InMemoryConfigStore::InMemoryConfigStore(std::string storeName, int storePriority)
    : name(std::move(storeName)), priority(storePriority) {}

bool InMemoryConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    const auto found = values.find(key);
    if (found == values.end()) {
        value.clear();
        return false;
    }
    auto answer = found->second;
    zel::applyFipsValueOverride(key, answer);
    value = std::move(answer);
    return true;
}

bool InMemoryConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    values.insert_or_assign(key, value);
    return true;
}

std::vector<std::wstring> InMemoryConfigStore::getKeys() {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    return keysOf(values);
}

bool InMemoryConfigStore::removeValue(const std::wstring& key) {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    return values.erase(key) > 0;
}

void InMemoryConfigStore::removeAllValues() {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    values.clear();
}

void InMemoryConfigStore::persistValues() {
    static ZelLogger& logger = ZelLogger_getLogger("ConfigService-InMemoryConfigStore");
    if (ZelLog_isDebugEnabled(logger)) {
        ZelLog(logger, ZelLogLevel::Debug, ZEL_HERE,
               "PersistValues() is not implemented for InMemoryConfigStore ignoring");
    }
}

} // namespace ZelUnified
