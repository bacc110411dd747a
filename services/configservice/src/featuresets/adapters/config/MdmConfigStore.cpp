#include "ConfigMapKeys.h"
#include "StorePriorities.h"
#include "XmlConfigParser.h"
#include "secure/FipsValueOverride.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>
#include <MdmConfigRetriever.h>
#include <MdmConfigStore.h>

#include <utility>

namespace ZelUnified {

MdmConfigStore::MdmConfigStore(const std::string& configXml) {
    ConfigKeySet unused;
    XmlConfigParser::readFromMemory(configXml, values, unused);
}

MdmConfigStore::MdmConfigStore(std::shared_ptr<MdmConfigRetriever> retriever) {
    if (retriever) {
        values = retriever->retrieveMdmConfig();
    }
}

MdmConfigStore::~MdmConfigStore() = default;

bool MdmConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    const auto found = values.find(key);
    const bool isHeld = found != values.end();
    std::wstring answer = isHeld ? KyrCoreUtils::trim(std::wstring_view(found->second)) : std::wstring();
    // Also on a miss: device management can't leave the answer open here.
    zel::applyFipsValueOverride(key, answer);
    value = std::move(answer); // last: the caller may hand in one string for both
    return isHeld;
}

std::vector<std::wstring> MdmConfigStore::getKeys() {
    return keysOf(values);
}

std::string MdmConfigStore::getName() {
    return std::string(ConfigKeys::mdmConfigStore);
}

int MdmConfigStore::getPriority() {
    return StorePriorities::mdm;
}

} // namespace ZelUnified
