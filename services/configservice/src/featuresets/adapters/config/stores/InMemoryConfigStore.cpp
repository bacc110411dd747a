#include "StoreTable.h"

#include <zel/ZelLog.h>

#include <InMemoryConfigStore.h>

namespace ZelUnified {

namespace {

ZelLogger& inMemoryLogger = ZelLogger_getLogger("ConfigService-InMemoryConfigStore");

} // namespace

InMemoryConfigStore::InMemoryConfigStore(std::string storeName, int storePriority)
    : table(std::make_unique<StoreTable>(StoreTable::Rule::AnswersAll)),
      name(std::move(storeName)),
      priority(storePriority) {}

InMemoryConfigStore::~InMemoryConfigStore() = default;

bool InMemoryConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return table->getValue(key, value);
}

bool InMemoryConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    return table->storeValue(key, value);
}

std::vector<std::wstring> InMemoryConfigStore::getKeys() {
    return table->getKeys();
}

bool InMemoryConfigStore::removeValue(const std::wstring& key) {
    return table->removeValue(key);
}

void InMemoryConfigStore::removeAllValues() {
    table->removeAllValues();
}

void InMemoryConfigStore::persistValues() {
    if (ZelLog_isDebugEnabled(inMemoryLogger)) {
        ZelLog(inMemoryLogger, ZelLogLevel::Debug, ZEL_HERE,
               "PersistValues() is not implemented for InMemoryConfigStore ignoring");
    }
}

} // namespace ZelUnified
