#include "StoreTable.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"

#include <XmlConfigStore.h>

#include <utility>

namespace ZelUnified {

XmlConfigStore::XmlConfigStore(std::string storeName, int storePriority, bool isLocalStorage, bool encrypted,
                               std::string file, bool readNow)
    : table(std::make_unique<StoreTable>(StoreTable::Rule::WithholdsCertificateValidation)),
      filePath(std::move(file)),
      isLocalStore(isLocalStorage),
      priority(storePriority),
      name(std::move(storeName)) {
    if (!readNow) {
        return;
    }
    ConfigKeySet unused;
    if (encrypted) {
        XmlConfigParser::readFromEncryptedFile(filePath, *table->lock(), unused);
        return;
    }
    ConfigMap read;
    XmlConfigParser::readFromFile(filePath, read, unused);
    table->replace(std::move(read));
}

XmlConfigStore::~XmlConfigStore() = default;

bool XmlConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return table->getValue(key, value);
}

bool XmlConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    return table->storeValue(key, value);
}

std::vector<std::wstring> XmlConfigStore::getKeys() {
    return table->getKeys();
}

bool XmlConfigStore::removeValue(const std::wstring& key) {
    return table->removeValue(key);
}

} // namespace ZelUnified
