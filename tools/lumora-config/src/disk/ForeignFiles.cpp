#include "ForeignFiles.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace lumora_config {

namespace {

constexpr std::array<std::string_view, 6> namesAtTheTop{"lumoraLocalConfig.dat",   "lumoraLocalConfig_backup.dat",
                                                        "RegistryConfigStore.txt", "home-fenn-info.dat",
                                                        "service-location.dat",    "SSOAuthInfoStore.dat"};
/// Files that a reset keeps: it searches them in every folder, case-insensitively.
constexpr std::array<std::string_view, 4> namesAnywhere{
    "cachedUrlProvisioningConfigStore.dat", "deviceData4.properties", "lumora-config-user.xml", "installationId.txt"};

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

} // namespace

bool isFileOfTheClient(std::string_view path) {
    const auto folder = path.substr(0, path.rfind('/') + 1); // Includes the separator; npos + 1 is 0.
    const auto name = dropMovedAsideParts(dropTemporaryParts(path.substr(folder.size())));
    const auto isName = [name](std::string_view other) {
        return KyrCoreUtils::caseInsensitiveStringEquals(name, other);
    };
    return (folder.empty() && std::ranges::find(namesAtTheTop, name) != namesAtTheTop.end()) ||
           std::ranges::any_of(namesAnywhere, isName) || isCachedCopy(std::string(folder).append(name));
}

std::vector<std::string> findForeignFiles(const std::string& configDirectory) {
    std::vector<std::string> files;
    KyrCoreUtils::FileUtils::getFilesFromDirectory(configDirectory, "", files);
    std::vector<std::string> foreign;
    for (const auto& file : files) {
        auto path = std::filesystem::path(file).lexically_relative(configDirectory).generic_string();
        if (!isFileOfTheClient(path)) {
            foreign.push_back(std::move(path));
        }
    }
    return foreign;
}

} // namespace lumora_config
