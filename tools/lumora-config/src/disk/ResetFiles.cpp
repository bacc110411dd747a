#include "ResetFiles.h"

#include "SettingsOnDisk.h"
#include "output/Failure.h"
#include "stores/ClientPolicy.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/Paths.h>
#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>
#include <registry/RegistryTextFile.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>

namespace lumora_config {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// The service writes this file again when it rebuilds the chain after a reset.
constexpr std::string_view policyCacheFile = "RegistryConfigStore.txt";
constexpr std::array<std::string_view, 6> namesAtTheTop{"lumoraLocalConfig.dat", "lumoraLocalConfig_backup.dat",
                                                        policyCacheFile,         "home-fenn-info.dat",
                                                        "service-location.dat",  "SSOAuthInfoStore.dat"};
/// The files that a reset keeps in every folder. Their names are case-insensitive.
constexpr std::array<std::string_view, 4> namesKeptByReset{
    "cachedUrlProvisioningConfigStore.dat", "deviceData4.properties", "lumora-config-user.xml", "installationId.txt"};

bool isKeptByReset(std::string_view fileName) {
    return std::ranges::any_of(namesKeptByReset,
                               [&](std::string_view kept) { return caseInsensitiveStringEquals(fileName, kept); });
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isDecimalDigit(char c) {
    return c >= '0' && c <= '9';
}

/// ".NAME.RANDOM.tmp" becomes "NAME".
std::string_view dropTemporaryParts(std::string_view name) {
    constexpr std::string_view suffix = ".tmp";
    constexpr std::size_t randomDigits = 16;
    constexpr auto tail = 1 + randomDigits + suffix.size();
    if (name.size() <= 1 + tail || name.front() != '.' || !name.ends_with(suffix)) {
        return name;
    }
    const auto kept = name.substr(1, name.size() - 1 - tail);
    const auto random = name.substr(1 + kept.size() + 1, randomDigits);
    return name[1 + kept.size()] == '.' && std::ranges::all_of(random, isHexDigit) ? kept : name;
}

/// "NAME.unreadable" and "NAME.unreadable.2" become "NAME".
std::string_view dropMovedAsideParts(std::string_view name) {
    constexpr std::string_view mark = ".unreadable";
    const auto at = name.rfind(mark);
    if (at == std::string_view::npos) {
        return name;
    }
    const auto number = name.substr(at + mark.size());
    const bool isNumber =
        number.size() > 1 && number.front() == '.' && std::ranges::all_of(number.substr(1), isDecimalDigit);
    return number.empty() || isNumber ? name.substr(0, at) : name;
}

/// Returns true for a cached copy. The name of its store may contain separators.
bool isCachedCopy(std::string_view path) {
    return path.starts_with("Cache/cached") && (path.ends_with(".dat") || path.ends_with(".xml"));
}

/// Returns true if the user's file contains only an empty record of copies: the rebuilt chain may write
/// such a file.
bool isEmptyUserFile(const std::string& path, const std::string& configDirectory) {
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
bool isClientPolicy(const zel::registry::RegistryTextSection& section) {
    return !section.deletion && isInPolicy(section.path);
}

bool containsPolicy(const std::string& path) {
    try {
        const auto text = zel::registry::parseRegistryText(readWholeFile(path), zel::registry::HKEY_CURRENT_USER);
        return std::ranges::any_of(text.sections, isClientPolicy);
    } catch (const Failure&) {
        return false; // an unreadable file contains no policy
    }
}

} // namespace

bool isClientFile(std::string_view path) {
    const auto folder = path.substr(0, path.rfind('/') + 1); // Includes the separator; npos + 1 is 0.
    const auto name = dropMovedAsideParts(dropTemporaryParts(path.substr(folder.size())));
    return (folder.empty() && std::ranges::find(namesAtTheTop, name) != namesAtTheTop.end()) || isKeptByReset(name) ||
           isCachedCopy(std::string(folder).append(name));
}

std::vector<std::string> findForeignFiles(const std::string& configDirectory) {
    using KyrCoreUtils::toPath;
    std::vector<std::string> files;
    FileUtils::getFilesFromDirectory(configDirectory, "", files);
    std::vector<std::string> foreign;
    for (const auto& file : files) {
        auto path = KyrCoreUtils::toGenericText(toPath(file).lexically_relative(toPath(configDirectory)));
        if (!isClientFile(path)) {
            foreign.push_back(std::move(path));
        }
    }
    return foreign;
}

std::vector<std::string> findResetLeftovers(const std::string& configDirectory) {
    using KyrCoreUtils::toPath;
    std::vector<std::string> files;
    FileUtils::getFilesFromDirectory(configDirectory, "", files);
    std::erase_if(files, [&](const std::string& path) {
        const auto name = FileUtils::getFileName(path);
        return isKeptByReset(name) || caseInsensitiveStringEquals(name, policyCacheFile) ||
               isEmptyUserFile(path, configDirectory);
    });
    std::vector<std::string> policies;
    FileUtils::getFilesFromDirectory(zel::registry::getUserRegistryFolder(), "reg", policies);
    std::ranges::copy_if(policies, std::back_inserter(files), containsPolicy);
    return files;
}

} // namespace lumora_config
