#include "PathText.h"
#include "PlatformFiles.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/FileUtils.h>
#include <kyr/LockGuard.h>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace KyrCoreUtils {

namespace {

/// The folders set by the host. Process-wide, because the getters have no other context.
class Overrides {
public:
    static Overrides& instance() {
        static Overrides overrides;
        return overrides;
    }

    void set(HostDirectories directories) {
        const LockGuard lock(mutex);
        current = std::move(directories);
    }

    std::string get(std::string HostDirectories::*member) const {
        const LockGuard lock(mutex);
        return current.*member;
    }

private:
    mutable AnnotatedMutex<> mutex;
    HostDirectories current LUMORA_GUARDED_BY(mutex);
};

/// Returns the absolute path without a trailing separator, with links resolved where possible; an empty path stays
/// empty.
fs::path resolved(const fs::path& path) {
    if (path.empty()) {
        return {};
    }
    std::error_code error;
    fs::path result = fs::weakly_canonical(path, error);
    if (error) {
        result = path.lexically_normal();
    }
    return result.has_filename() || !result.has_relative_path() ? result : result.parent_path();
}

/// Returns the absolute path without a trailing separator; links are not resolved.
std::string toAbsolute(const std::string& directory) {
    const auto path = pathFromText(directory);
    if (!path) {
        return {};
    }
    std::error_code error;
    fs::path result = fs::absolute(*path, error).lexically_normal();
    if (error) {
        return {};
    }
    return textFromPath(result.has_filename() || !result.has_relative_path() ? result : result.parent_path());
}

bool isSameOrAbove(const fs::path& upper, const fs::path& lower) {
    return std::mismatch(upper.begin(), upper.end(), lower.begin(), lower.end()).first == upper.end();
}

std::string directoryOf(std::string HostDirectories::*member) {
    std::string overridden = Overrides::instance().get(member);
    return overridden.empty() ? toAbsolute(platform::defaultDirectories().*member) : overridden;
}

/// Returns true if a reset may empty the directory: it contains neither the home folder, nor the application data, nor
/// the logs.
bool isSafeToEmpty(const std::string& directory) {
    const auto path = pathFromText(directory);
    if (!path) {
        return false;
    }
    const fs::path config = resolved(*path);
    if (config == config.root_path()) {
        return false;
    }
    const auto holds = [&](const fs::path& kept) { return !kept.empty() && isSameOrAbove(config, resolved(kept)); };
    return !holds(platform::homeDirectory()) &&
           !holds(pathFromText(FileUtils::getUserLocalAppDir()).value_or(fs::path())) &&
           !holds(pathFromText(FileUtils::getStateDirectory()).value_or(fs::path()));
}

} // namespace

void FileUtils::overrideDirectories(HostDirectories directories) {
    Overrides::instance().set({toAbsolute(directories.config), toAbsolute(directories.applicationData),
                               toAbsolute(directories.state), toAbsolute(directories.resources)});
}

std::string FileUtils::getConfigDirectory() {
    std::string directory = directoryOf(&HostDirectories::config);
    return isSafeToEmpty(directory) ? directory : std::string();
}

std::string FileUtils::getUserLocalAppDir() {
    return directoryOf(&HostDirectories::applicationData);
}

std::string FileUtils::getStateDirectory() {
    return directoryOf(&HostDirectories::state);
}

std::string FileUtils::getResourcesDirectory() {
    return directoryOf(&HostDirectories::resources);
}

} // namespace KyrCoreUtils
