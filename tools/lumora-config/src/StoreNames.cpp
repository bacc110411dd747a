#include "StoreNames.h"

#include <kyr/StringUtils.h>

#include <algorithm>

namespace lumora_config {

StoreNames::StoreNames()
    : names{"lumora-config-defaults.xml",    "InMemoryConfigStore",
            "LocalFileConfigStore",          "RegistryConfigStore",
            "UrlProvisioningConfigStore",    "MdmConfigStore",
            "BootstrapConfigStore",          "TaviLyncRegistryConfigStore",
            "devOverrideConfigStore",        "TFTPConfigStore",
            "PresenceConfigStore",           "BrindleConfigStore",
            "CIMigrationConfigStore",        "lumora-config-user.xml",
            "MirroxOrgOrGrpAdminConfigStore"} {}

void StoreNames::OnConfigStoreAdded(const std::string& storeName) {
    const std::lock_guard lock(mutex);
    const auto known = find(storeName);
    if (known != names.end()) {
        names.erase(known);
    }
    names.push_back(storeName);
}

void StoreNames::learn(const std::string& storeName) {
    const std::lock_guard lock(mutex);
    if (!storeName.empty() && find(storeName) == names.end()) {
        names.push_back(storeName);
    }
}

std::vector<std::string> StoreNames::getAll() const {
    const std::lock_guard lock(mutex);
    return names;
}

std::vector<std::string>::iterator StoreNames::find(const std::string& storeName) {
    return std::ranges::find_if(names, [&](const std::string& name) {
        return KyrCoreUtils::caseInsensitiveStringEquals(std::string_view(name), std::string_view(storeName));
    });
}

} // namespace lumora_config
