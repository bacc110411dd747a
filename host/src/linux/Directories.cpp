#include "kyr/PlatformFiles.h"

#include <dlfcn.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace fs = std::filesystem;

namespace KyrCoreUtils::platform {

namespace {

/// Returns the path in an environment variable; empty for a relative path, which is invalid there.
fs::path absoluteFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    const fs::path path = value != nullptr ? value : "";
    return path.is_absolute() ? path : fs::path();
}

fs::path homeFromUserDatabase() {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
        return {};
    }
    const fs::path path = found->pw_dir != nullptr ? found->pw_dir : "";
    return path.is_absolute() ? path : fs::path();
}

/// Returns the folder of an XDG variable, or its default below the home folder, or "".
std::string userFolder(const char* variable, const char* belowHome, const char* leaf) {
    fs::path base = absoluteFromEnvironment(variable);
    if (base.empty()) {
        const fs::path home = homeDirectory();
        base = home.empty() ? home : home / belowHome;
    }
    return base.empty() ? std::string() : (base / leaf).string();
}

/// Returns the data folder of the installation that contains this library; also works after the whole tree was moved.
fs::path resourcesBesideLibrary() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<const void*>(&defaultDirectories), &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    std::error_code error;
    const fs::path library = fs::weakly_canonical(info.dli_fname, error);
    if (error) {
        return {};
    }
    fs::path folder = (library.parent_path() / LUMORA_DATA_FROM_LIBRARY).lexically_normal();
    return fs::is_directory(folder, error) ? folder : fs::path();
}

} // namespace

fs::path homeDirectory() {
    const fs::path home = absoluteFromEnvironment("HOME");
    return home.empty() ? homeFromUserDatabase() : home;
}

HostDirectories defaultDirectories() {
    const fs::path beside = resourcesBesideLibrary();
    return {userFolder("XDG_CONFIG_HOME", ".config", "Lumora/Config"),
            userFolder("XDG_DATA_HOME", ".local/share", "Lumora"),
            userFolder("XDG_STATE_HOME", ".local/state", "Lumora"),
            beside.empty() ? std::string(LUMORA_DATA_FOLDER) : beside.string()};
}

} // namespace KyrCoreUtils::platform
