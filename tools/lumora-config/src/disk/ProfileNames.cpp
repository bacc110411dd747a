#include "ProfileNames.h"

#include "SettingsOnDisk.h"
#include "output/Failure.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>

#include <ConfigKeys.h>

#include <functional>
#include <set>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

using Keys = std::set<std::wstring, ZelUnified::caseInsensitiveMapComparator>;

/// A file that cannot be read is no reason to complete nothing.
void ignoringFailures(const std::function<void()>& read) {
    try {
        read();
    } catch (const std::exception&) {
        return;
    }
}

void addDefaults(Keys& keys) {
    const auto path =
        FileUtils::getResourcesDirectory() + FileUtils::FileSeparator() + std::string(ConfigKeys::configDefaultsFile);
    for (const auto& setting : readXmlSettings(path)) {
        keys.insert(setting.key);
    }
}

void addPolicy(Keys& keys, const std::string& path) {
    const auto policyPath = L"Software\\" + KyrCoreUtils::toWideString(std::string(ConfigKeys::policyRegistryPath));
    const auto text = zel::registry::parseRegistryText(readWholeFile(path), zel::registry::HKEY_CURRENT_USER);
    for (const auto& section : text.sections) {
        if (section.deletion || !KyrCoreUtils::caseInsensitiveStringEquals(section.path, policyPath)) {
            continue;
        }
        for (const auto& entry : section.entries) {
            keys.insert(entry.value.name);
        }
    }
}

void addPolicies(Keys& keys, const std::string& folder) {
    std::vector<std::string> files;
    FileUtils::getFilesFromDirectory(folder, "reg", files);
    for (const auto& path : files) {
        ignoringFailures([&] { addPolicy(keys, path); });
    }
}

void addProtectedFiles(Keys& keys) {
    for (const auto& file : examineProtectedFiles(FileUtils::getConfigDirectory())) {
        for (const auto& [key, value] : readSettings(file.path).values) {
            keys.insert(key);
        }
    }
}

} // namespace

std::vector<std::wstring> readKeysOfProfile() {
    Keys keys;
    ignoringFailures([&] { addDefaults(keys); });
    addPolicies(keys, zel::registry::getUserRegistryFolder());
    if (const auto folder = zel::registry::getAdministratorRegistryFolder(); !folder.empty()) {
        addPolicies(keys, folder + FileUtils::FileSeparator() + "HKEY_CURRENT_USER");
    }
    ignoringFailures([&] { addProtectedFiles(keys); });
    keys.erase(L"");
    return {keys.begin(), keys.end()};
}

std::vector<std::string> readStoresOfProfile() {
    std::vector<std::string> stores{
        std::string(ConfigKeys::localFileConfigStore), std::string(ConfigKeys::registryConfigStore),
        std::string(ConfigKeys::urlProvisioningConfigStore), std::string(ConfigKeys::inMemoryConfigStore),
        std::string(ConfigKeys::configDefaultsFile)};
    ignoringFailures([&] {
        const auto settings = readUserSettings(FileUtils::getConfigDirectory());
        const auto record = settings.values.find(std::wstring(ConfigKeys::primaryConfigStores));
        std::vector<std::wstring> entries;
        if (record != settings.values.end()) {
            KyrCoreUtils::split(record->second, entries, L";");
        }
        for (const auto& entry : entries) {
            stores.push_back(KyrCoreUtils::toString(entry.substr(0, entry.find(L':'))));
        }
    });
    std::erase(stores, "");
    return stores;
}

} // namespace lumora_config
