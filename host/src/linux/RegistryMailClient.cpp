#include "RegistryMailClient.h"

#include "kyr/PlatformFiles.h"

#include <kyr/FstreamUtils.h>
#include <kyr/StringUtils.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace zel::registry {

namespace {

/// Returns the absolute paths in a list in the environment, or in the default if the variable is missing.
std::vector<fs::path> listFromEnvironment(const char* name, const std::string& otherwise) {
    const char* value = std::getenv(name);
    std::vector<std::string> pieces;
    KyrCoreUtils::split(value != nullptr && *value != '\0' ? std::string(value) : otherwise, pieces, ":");
    std::vector<fs::path> folders;
    for (const auto& piece : pieces) {
        if (fs::path folder = piece; folder.is_absolute()) {
            folders.push_back(std::move(folder));
        }
    }
    return folders;
}

std::vector<fs::path> userFolder(const char* variable, const char* belowHome) {
    return listFromEnvironment(variable, (KyrCoreUtils::platform::homeDirectory() / belowHome).string());
}

std::vector<fs::path> below(std::vector<fs::path> folders, const char* name) {
    for (auto& folder : folders) {
        folder /= name;
    }
    return folders;
}

std::vector<fs::path> joined(std::vector<fs::path> first, const std::vector<fs::path>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Returns the value of a key in one group of a desktop file; empty if it does not exist.
std::string readEntry(const fs::path& path, std::string_view group, std::string_view key) {
    std::fstream stream;
    KyrCoreUtils::FstreamUtils::open(stream, path.string(), KyrCoreUtils::StreamMode::Read);
    bool inGroup = false;
    for (std::string line; std::getline(stream, line);) {
        line = KyrCoreUtils::trim(line);
        if (line.starts_with('[')) {
            inGroup = line == group;
            continue;
        }
        const auto equals = line.find('=');
        if (inGroup && equals != std::string::npos && KyrCoreUtils::trim(line.substr(0, equals)) == key) {
            return KyrCoreUtils::trim(line.substr(equals + 1));
        }
    }
    return {};
}

/// Returns the program name in the first of the folders that contains the desktop file with a name.
std::string findProgramName(const std::string& desktopFile, const std::vector<fs::path>& folders) {
    if (desktopFile.find('/') != std::string::npos) {
        return {};
    }
    for (const auto& folder : folders) {
        if (auto name = readEntry(folder / desktopFile, "[Desktop Entry]", "Name"); !name.empty()) {
            return name;
        }
    }
    return {};
}

} // namespace

std::wstring findDefaultMailClient(HKEY root) {
    const auto userData = below(userFolder("XDG_DATA_HOME", ".local/share"), "applications");
    const auto systemData = below(listFromEnvironment("XDG_DATA_DIRS", "/usr/local/share:/usr/share"), "applications");
    const auto associations = root == HKEY_CURRENT_USER
                                  ? joined(userFolder("XDG_CONFIG_HOME", ".config"), userData)
                                  : joined(listFromEnvironment("XDG_CONFIG_DIRS", "/etc/xdg"), systemData);
    const auto programs = root == HKEY_CURRENT_USER ? joined(userData, systemData) : systemData;
    for (const auto& file : below(associations, "mimeapps.list")) {
        // Several programs may be listed; the first installed one is used.
        std::vector<std::string> candidates;
        KyrCoreUtils::split(readEntry(file, "[Default Applications]", "x-scheme-handler/mailto"), candidates, ";");
        for (const auto& candidate : candidates) {
            if (const auto name = findProgramName(KyrCoreUtils::trim(candidate), programs); !name.empty()) {
                return KyrCoreUtils::toWideString(name);
            }
        }
    }
    return {};
}

} // namespace zel::registry
