#include "StoreTable.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "table/WipedValues.h"

#include <CacheConfigStore.h>

#include <utility>

namespace ZelUnified {

CacheConfigStore::CacheConfigStore(std::string storeName, int storePriority, std::string file)
    : XmlConfigStore(std::move(storeName), storePriority, true, true, std::move(file), true) {}

CacheConfigStore::CacheConfigStore(std::string storeName, int storePriority, std::string file, ConfigMap& contents)
    : XmlConfigStore(std::move(storeName), storePriority, true, true, std::move(file), false) {
    const auto values = table->lock();
    values->replace(contents);
    XmlConfigParser::writeToFile(filePath, *values);
    wipeValues(contents);
    contents.clear();
}

CacheConfigStore::~CacheConfigStore() = default;

void CacheConfigStore::persistValues() {
    const auto values = table->lock();
    XmlConfigParser::writeToFile(filePath, *values);
}

} // namespace ZelUnified
