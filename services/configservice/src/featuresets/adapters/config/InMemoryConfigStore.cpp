#include "lookup/ConfigTable.h"
#include "secure/FipsValueOverride.h"

#include <zel/ZelLog.h>

#include <InMemoryConfigStore.h>

namespace ZelUnified {

namespace {

ZelLogger& logger = ZelLogger_getLogger("ConfigService-InMemoryConfigStore");

} // namespace

InMemoryConfigStore::InMemoryConfigStore(std::string storeName, int storePriority)
    : values(std::make_unique<ConfigTable>()), name(std::move(storeName)), priority(storePriority) {}

InMemoryConfigStore::~InMemoryConfigStore() = default;

bool InMemoryConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return lookUp(FoldedKey(key), value);
}

bool InMemoryConfigStore::lookUp(const FoldedKey& key, std::wstring& value) {
    if (!values->mayHold(key)) {
        value.clear();
        return false;
    }
    const zel::Mutex::ScopedLock lock(valuesMutex);
    const auto* found = values->find(key);
    if (found == nullptr) {
        value.clear();
        return false;
    }
    value = zel::withFipsOverride(key.getText(), *found); // last: key and value may be one string
    return true;
}

bool InMemoryConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    values->store(key, value);
    return true;
}

std::vector<std::wstring> InMemoryConfigStore::getKeys() {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    return values->getKeys();
}

bool InMemoryConfigStore::removeValue(const std::wstring& key) {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    return values->remove(key);
}

void InMemoryConfigStore::removeAllValues() {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    values->clear();
}

void InMemoryConfigStore::persistValues() {
    if (ZelLog_isDebugEnabled(logger)) {
        ZelLog(logger, ZelLogLevel::Debug, ZEL_HERE,
               "PersistValues() is not implemented for InMemoryConfigStore ignoring");
    }
}

} // namespace ZelUnified
