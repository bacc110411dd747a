#include "StorePriorities.h"
#include "StoreTable.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"

#include <ConfigKeys.h>
#include <MdmConfigRetriever.h>
#include <MdmConfigStore.h>

#include <utility>

namespace ZelUnified {

MdmConfigStore::MdmConfigStore(std::nullptr_t) : table(std::make_unique<StoreTable>(StoreTable::Rule::Trims)) {}

MdmConfigStore::MdmConfigStore(const std::string& configXml) : MdmConfigStore(nullptr) {
    ConfigMap read;
    ConfigKeySet unused;
    XmlConfigParser::readFromMemory(configXml, read, unused);
    table->replace(std::move(read));
}

MdmConfigStore::MdmConfigStore(std::shared_ptr<MdmConfigRetriever> retriever) : MdmConfigStore(nullptr) {
    if (retriever) {
        table->replace(retriever->retrieveMdmConfig());
    }
}

MdmConfigStore::~MdmConfigStore() = default;

bool MdmConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return table->getValue(key, value);
}

std::vector<std::wstring> MdmConfigStore::getKeys() {
    return table->getKeys();
}

std::string MdmConfigStore::getName() {
    return std::string(ConfigKeys::mdmConfigStore);
}

int MdmConfigStore::getPriority() {
    return StorePriorities::mdm;
}

} // namespace ZelUnified
