#include "ResetLeftovers.h"

#include "SettingsOnDisk.h"
#include "output/Failure.h"
#include "stores/ClientPolicy.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>

namespace lumora_config {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

// Rebuilding the chain writes the last one again from the remaining policy.
constexpr std::array<std::string_view, 5> survivors{"cachedUrlProvisioningConfigStore.dat", "deviceData4.properties",
                                                    "lumora-config-user.xml", "installationId.txt",
                                                    "RegistryConfigStore.txt"};

bool survives(const std::string& fileName) {
    return std::ranges::any_of(
        survivors, [&](std::string_view survivor) { return caseInsensitiveStringEquals(fileName, survivor); });
}

/// Returns true if the user's file contains only an empty record of copies: the rebuilt chain may write such a file.
bool isFreshUserFile(const std::string& path, const std::string& configDirectory) {
    const auto folder = configDirectory + FileUtils::FileSeparator();
    if (path != folder + std::string(ConfigKeys::localConfigFile) &&
        path != folder + std::string(ConfigKeys::localConfigBackupFile)) {
        return false;
    }
    const auto onDisk = readSettings(path);
    return onDisk.state == zel::storage::ReadResult::Ok && std::ranges::all_of(onDisk.values, [](const auto& entry) {
               return caseInsensitiveStringEquals(entry.first, ConfigKeys::primaryConfigStores) && entry.second.empty();
           });
}

/// Returns true if the section is the key of the client's policy or below it.
bool isClientsPolicy(const zel::registry::RegistryTextSection& section) {
    return !section.deletion && isInPolicy(section.path);
}

bool holdsPolicy(const std::string& path) {
    try {
        const auto text = zel::registry::parseRegistryText(readWholeFile(path), zel::registry::HKEY_CURRENT_USER);
        return std::ranges::any_of(text.sections, isClientsPolicy);
    } catch (const Failure&) {
        return false; // an unreadable file contains no policy
    }
}

} // namespace

std::vector<std::string> findResetLeftovers(const std::string& configDirectory) {
    std::vector<std::string> files;
    FileUtils::getFilesFromDirectory(configDirectory, "", files);
    std::erase_if(files, [&](const std::string& path) {
        return survives(FileUtils::getFileName(path)) || isFreshUserFile(path, configDirectory);
    });
    std::vector<std::string> policies;
    FileUtils::getFilesFromDirectory(zel::registry::getUserRegistryFolder(), "reg", policies);
    std::ranges::copy_if(policies, std::back_inserter(files), holdsPolicy);
    return files;
}

} // namespace lumora_config
