#include "StorePriorities.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "secure/FipsValueOverride.h"
#include "table/ConfigTable.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>
#include <MdmConfigRetriever.h>
#include <MdmConfigStore.h>

#include <utility>

namespace ZelUnified {

MdmConfigStore::MdmConfigStore(std::nullptr_t) : values(std::make_unique<ConfigTable>()) {}

MdmConfigStore::MdmConfigStore(const std::string& configXml) : MdmConfigStore(nullptr) {
    ConfigMap read;
    ConfigKeySet unused;
    XmlConfigParser::readFromMemory(configXml, read, unused);
    values->replace(std::move(read));
}

MdmConfigStore::MdmConfigStore(std::shared_ptr<MdmConfigRetriever> retriever) : MdmConfigStore(nullptr) {
    if (retriever) {
        values->replace(retriever->retrieveMdmConfig());
    }
}

MdmConfigStore::~MdmConfigStore() = default;

bool MdmConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return lookUp(FoldedKey(key), value);
}

bool MdmConfigStore::lookUp(const FoldedKey& key, std::wstring& value) {
    const auto found = values->find(key);
    const auto held = KyrCoreUtils::trim(found.value_or(std::wstring_view()));
    // The FIPS override applies on a miss too: a key that device management does not set must still return the forced
    // value.
    value = zel::withFipsOverride(key.getText(), held); // last: `key` may refer to `value`
    return found.has_value();
}

std::vector<std::wstring> MdmConfigStore::getKeys() {
    return values->getKeys();
}

KeyList MdmConfigStore::listKeys() {
    return values->listKeys();
}

std::string MdmConfigStore::getName() {
    return std::string(ConfigKeys::mdmConfigStore);
}

int MdmConfigStore::getPriority() {
    return StorePriorities::mdm;
}

} // namespace ZelUnified
