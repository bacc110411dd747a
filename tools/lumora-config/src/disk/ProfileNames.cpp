#include "ProfileNames.h"

#include "SettingsOnDisk.h"
#include "output/Failure.h"
#include "stores/ClientPolicy.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <registry/Registry.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>

#include <ConfigKeys.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

using Keys = std::set<std::wstring, ZelUnified::caseInsensitiveMapComparator>;

/// The sizes of the service's buffers.
constexpr std::size_t nameBufferSize = 260;
constexpr std::size_t dataBufferSize = 4096;

/// Calls `read` and drops its exceptions: an unreadable file adds no names.
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
    const auto policyPath = getPolicyKey();
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

/// The policy key of the registry, opened for reading.
class OpenPolicyKey {
public:
    OpenPolicyKey() {
        using namespace zel::registry;
        registry->RegOpenKeyExW(HKEY_CURRENT_USER, getPolicyKey().c_str(), 0, KEY_READ, key);
    }
    ~OpenPolicyKey() { registry->RegCloseKey(key); }
    OpenPolicyKey(const OpenPolicyKey&) = delete;
    OpenPolicyKey& operator=(const OpenPolicyKey&) = delete;

    /// Returns the name of the value at `index`. Returns nullopt past the last value, and for a value that does not fit
    /// the buffers: the service stops reading there too.
    std::optional<std::wstring> readName(std::uint32_t index) {
        auto nameLength = static_cast<std::uint32_t>(name.size());
        auto dataLength = static_cast<std::uint32_t>(data.size());
        std::uint32_t type = zel::registry::REG_NONE;
        const auto result = registry->RegEnumValueW(key, index, name, nameLength, type, data, dataLength);
        return result == zel::registry::RegistryResult::Success ? std::optional(std::wstring(name.data(), nameLength))
                                                                : std::nullopt;
    }

private:
    const std::shared_ptr<zel::registry::Registry> registry = zel::registry::getRegistry();
    zel::registry::HKEY key{};
    std::array<wchar_t, nameBufferSize> name{};
    std::array<std::uint8_t, dataBufferSize> data{};
};

void addPolicyOfTheRegistry(Keys& keys) {
    OpenPolicyKey policy;
    std::uint32_t index = 0;
    for (auto name = policy.readName(index); name; name = policy.readName(++index)) {
        keys.insert(*name);
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
    if (const auto folder = zel::registry::getAdministratorRegistryFolder(); !folder.empty()) {
        addPolicies(keys, zel::registry::getUserRegistryFolder());
        addPolicies(keys, folder + FileUtils::FileSeparator() + "HKEY_CURRENT_USER");
    } else {
        ignoringFailures([&] { addPolicyOfTheRegistry(keys); });
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
