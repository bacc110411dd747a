#include "unified/PluginLoader.h"

#include <kyr/FileUtils.h>
#include <kyr/LockGuard.h>
#include <kyr/Paths.h>
#include <kyr/SharedLibrary.h>
#include <unified/UnifiedFactory.h>
#include <zel/ZelLog.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& pluginLogger = ZelLogger_getLogger("UnifiedFactory-PluginLoader");

using Entry = void (*)(std::shared_ptr<UnifiedFactory>);

constexpr const char* entryName = "InjectConfigService";

bool isOnePart(const std::string& name) {
    const auto path = KyrCoreUtils::toPath(name);
    return path.filename() == path;
}

bool isBareFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && isOnePart(name) && name.find('\0') == std::string::npos;
}

/// Returns the entry point of the library. If there is none, logs that and returns null.
Entry findEntry(const KyrCoreUtils::SharedLibrary& library, const std::string& path) {
    try {
        return reinterpret_cast<Entry>(library.find(entryName));
    } catch (const std::exception& failure) {
        ZelLog(pluginLogger, ZelLogLevel::Error, ZEL_HERE, "Plug-in " + path + " has no entry: " + failure.what());
        return nullptr;
    }
}

std::optional<KyrCoreUtils::SharedLibrary> open(const std::string& path) {
    try {
        return KyrCoreUtils::SharedLibrary(path);
    } catch (const std::exception& failure) {
        ZelLog(pluginLogger, ZelLogLevel::Error, ZEL_HERE, "Can't load plug-in " + path + ": " + failure.what());
        return std::nullopt;
    }
}

} // namespace

PluginLoader::PluginLoader(std::string pluginFolder, std::map<std::string, std::string> libraryNames,
                           std::map<std::string, std::string> libraryPaths)
    : folder(std::move(pluginFolder)), names(std::move(libraryNames)), paths(std::move(libraryPaths)) {}

bool PluginLoader::load(const std::string& typeName, std::shared_ptr<UnifiedFactory> factory) {
    const auto path = getPath(typeName);
    if (path.empty()) {
        return false;
    }
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        const auto [outcome, isFirst] = outcomes.emplace(path, false);
        if (!isFirst) {
            return outcome->second;
        }
    }
    const bool loaded = loadLibrary(path, factory);
    const KyrCoreUtils::LockGuard lock(mutex);
    outcomes[path] = loaded;
    return loaded;
}

/// Returns the path of the library of the interface; "" if there is none. Logs a path that is not permitted.
std::string PluginLoader::getPath(const std::string& typeName) const {
    if (const auto found = names.find(typeName); found != names.end()) {
        const auto& library = found->second;
        if (!folder.empty() && isBareFileName(library)) {
            return folder + KyrCoreUtils::FileUtils::FileSeparator() + library;
        }
        ZelLog(pluginLogger, ZelLogLevel::Error, ZEL_HERE, "Not a file of the plug-in folder: [" + library + "]");
        return "";
    }
    const auto found = paths.find(typeName);
    if (found == paths.end() || KyrCoreUtils::toPath(found->second).is_absolute()) {
        return found == paths.end() ? "" : found->second;
    }
    ZelLog(pluginLogger, ZelLogLevel::Error, ZEL_HERE, "Not an absolute path: [" + found->second + "]");
    return "";
}

bool PluginLoader::loadLibrary(const std::string& path, const std::shared_ptr<UnifiedFactory>& factory) const {
    const auto library = open(path);
    const auto entry = library ? findEntry(*library, path) : nullptr;
    if (entry == nullptr) {
        return false;
    }
    try {
        entry(factory);
    } catch (const std::exception& failure) {
        ZelLog(pluginLogger, ZelLogLevel::Error, ZEL_HERE,
               "The entry of plug-in " + path + " failed: " + failure.what());
        return false;
    } catch (...) {
        ZelLog(pluginLogger, ZelLogLevel::Error, ZEL_HERE, "The entry of plug-in " + path + " failed.");
        return false;
    }
    ZelLog(pluginLogger, ZelLogLevel::Info, ZEL_HERE, "Loaded plug-in " + path);
    return true;
}

} // namespace ZelUnified
