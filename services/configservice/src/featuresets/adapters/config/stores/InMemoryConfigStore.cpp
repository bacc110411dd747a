#include "StoreAnswer.h"
#include "table/ConfigTable.h"

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
        return answerWith(std::nullopt, key, value);
    }
    const zel::Mutex::ScopedLock lock(valuesMutex);
    return answerWith(values->find(key), key, value);
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

KeyList InMemoryConfigStore::listKeys() {
    const zel::Mutex::ScopedLock lock(valuesMutex);
    return values->listKeys();
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
