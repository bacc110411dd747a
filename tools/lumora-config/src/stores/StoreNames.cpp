#include "StoreNames.h"

#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>

namespace lumora_config {

namespace {

namespace ConfigKeys = ZelUnified::ConfigKeys;

// Converts a name to narrow text; the catalogue contains each name in one width only.
std::string narrow(std::string_view name) {
    return std::string(name);
}

std::string narrow(std::wstring_view name) {
    return KyrCoreUtils::toString(name);
}

} // namespace

StoreNames::StoreNames()
    : names{narrow(ConfigKeys::configDefaultsFile),
            narrow(ConfigKeys::inMemoryConfigStore),
            narrow(ConfigKeys::localFileConfigStore),
            narrow(ConfigKeys::registryConfigStore),
            narrow(ConfigKeys::urlProvisioningConfigStore),
            narrow(ConfigKeys::mdmConfigStore),
            narrow(ConfigKeys::bootstrapConfigStore),
            narrow(ConfigKeys::taviLyncRegistryConfigStore),
            narrow(ConfigKeys::devOverrideConfigStore),
            narrow(ConfigKeys::tftpConfigStore),
            narrow(ConfigKeys::presenceConfigStore),
            narrow(ConfigKeys::brindleConfigStore),
            narrow(ConfigKeys::ciMigrationConfigStore),
            narrow(ConfigKeys::configUserFile),
            narrow(ConfigKeys::mirroxOrgOrGrpAdminConfigStore)} {}

void StoreNames::OnConfigStoreAdded(const std::string& storeName) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const auto known = find(storeName);
    if (known != names.end()) {
        names.erase(known);
    }
    names.push_back(storeName);
}

void StoreNames::addIfNew(const std::string& storeName) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (!storeName.empty() && find(storeName) == names.end()) {
        names.push_back(storeName);
    }
}

std::vector<std::string> StoreNames::getAll() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return names;
}

std::vector<std::string>::iterator StoreNames::find(const std::string& storeName) {
    return std::ranges::find_if(
        names, [&](const std::string& name) { return KyrCoreUtils::caseInsensitiveStringEquals(name, storeName); });
}

} // namespace lumora_config
