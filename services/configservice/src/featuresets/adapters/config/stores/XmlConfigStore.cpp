#include "StoreAnswer.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "table/ConfigTable.h"

#include <XmlConfigStore.h>

#include <utility>

namespace ZelUnified {

XmlConfigStore::XmlConfigStore(std::string storeName, int storePriority, bool isLocalStorage, bool encrypted,
                               std::string file, bool readNow)
    : values(std::make_unique<ConfigTable>()),
      filePath(std::move(file)),
      isLocalStore(isLocalStorage),
      priority(storePriority),
      name(std::move(storeName)) {
    if (!readNow) {
        return;
    }
    ConfigKeySet unused;
    if (encrypted) {
        XmlConfigParser::readFromEncryptedFile(filePath, *values, unused);
        return;
    }
    ConfigMap read;
    XmlConfigParser::readFromFile(filePath, read, unused);
    values->replace(std::move(read));
}

XmlConfigStore::~XmlConfigStore() = default;

bool XmlConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return lookUp(FoldedKey(key), value);
}

bool XmlConfigStore::lookUp(const FoldedKey& key, std::wstring& value) {
    if (!values->mayHold(key)) {
        return answerWith(std::nullopt, key, value);
    }
    const zel::Mutex::ScopedLock lock(valuesLock);
    return answerUnlessWithheld(values->find(key), key, value);
}

bool XmlConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    const zel::Mutex::ScopedLock lock(valuesLock);
    values->store(key, value);
    return true;
}

std::vector<std::wstring> XmlConfigStore::getKeys() {
    const zel::Mutex::ScopedLock lock(valuesLock);
    return values->getKeys();
}

KeyList XmlConfigStore::listKeys() {
    const zel::Mutex::ScopedLock lock(valuesLock);
    return values->listKeys();
}

bool XmlConfigStore::removeValue(const std::wstring& key) {
    const zel::Mutex::ScopedLock lock(valuesLock);
    return values->remove(key);
}

} // namespace ZelUnified
