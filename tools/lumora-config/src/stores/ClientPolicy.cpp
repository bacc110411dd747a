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

} // namespace lumora_config
