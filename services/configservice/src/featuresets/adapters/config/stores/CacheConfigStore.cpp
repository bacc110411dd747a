#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "table/ConfigTable.h"
#include "table/WipedValues.h"

#include <CacheConfigStore.h>

#include <utility>

namespace ZelUnified {

CacheConfigStore::CacheConfigStore(std::string storeName, int storePriority, std::string file)
    : XmlConfigStore(std::move(storeName), storePriority, true, true, std::move(file), true) {}

CacheConfigStore::CacheConfigStore(std::string storeName, int storePriority, std::string file, ConfigMap& contents)
    : XmlConfigStore(std::move(storeName), storePriority, true, true, std::move(file), false) {
    const zel::Mutex::ScopedLock lock(valuesLock);
    values->replace(contents);
    XmlConfigParser::writeToFile(filePath, *values);
    wipeValues(contents);
    contents.clear();
}

CacheConfigStore::~CacheConfigStore() = default;

void CacheConfigStore::persistValues() {
    const zel::Mutex::ScopedLock lock(valuesLock);
    XmlConfigParser::writeToFile(filePath, *values);
}

} // namespace ZelUnified
