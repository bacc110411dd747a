#include "ClientPolicy.h"

#include <kyr/StringUtils.h>
#include <registry/Registry.h>

#include <ConfigKeys.h>

namespace lumora_config {

std::wstring getPolicyKey() {
    return L"Software\\" + KyrCoreUtils::toWideString(ZelUnified::ConfigKeys::policyRegistryPath);
}

bool isInPolicy(std::wstring_view path) {
    const auto key = getPolicyKey();
    return KyrCoreUtils::caseInsensitiveStringEquals(path.substr(0, key.size()), key) &&
           (path.size() == key.size() || path[key.size()] == L'\\');
}

bool isReadByClient(std::uint32_t valueType) {
    using namespace zel::registry;
    return valueType == REG_SZ || valueType == REG_EXPAND_SZ || valueType == REG_MULTI_SZ || valueType == REG_DWORD;
}

std::wstring getPolicyText(const zel::registry::RegistryValue& value) {
    if (value.type != zel::registry::REG_DWORD) {
        return zel::registry::decodeRegistryText(value.data);
    }
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < value.data.size() && i < sizeof(number); ++i) {
        number |= static_cast<std::uint32_t>(value.data[i]) << (8 * i);
    }
    return KyrCoreUtils::toWideString(number);
}

} // namespace lumora_config
