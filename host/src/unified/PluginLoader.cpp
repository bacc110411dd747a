#include "unified/PluginLoader.h"

#include <kyr/FileUtils.h>
#include <kyr/LockGuard.h>
#include <kyr/SharedLibrary.h>
#include <unified/UnifiedFactory.h>
#include <zel/ZelLog.h>

#include <exception>
#include <filesystem>
#include <optional>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& logger = ZelLogger_getLogger("UnifiedFactory-PluginLoader");

using Entry = void (*)(std::shared_ptr<UnifiedFactory>);

constexpr const char* entryName = "InjectConfigService";

bool isBareFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && std::filesystem::path(name).filename() == name &&
           name.find('\0') == std::string::npos;
}

/// Returns the entry point of the library. If there is none, logs that and returns null.
Entry findEntry(const KyrCoreUtils::SharedLibrary& library, const std::string& path) {
    try {
        return reinterpret_cast<Entry>(library.find(entryName));
    } catch (const std::exception& failure) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "Plug-in " + path + " has no entry: " + failure.what());
        return nullptr;
    }
}

std::optional<KyrCoreUtils::SharedLibrary> open(const std::string& path) {
    try {
        return KyrCoreUtils::SharedLibrary(path);
    } catch (const std::exception& failure) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "Can't load plug-in " + path + ": " + failure.what());
        return std::nullopt;
    }
}

} // namespace

PluginLoader::PluginLoader(std::string pluginFolder, std::map<std::string, std::string> libraryNames)
    : folder(std::move(pluginFolder)), libraries(std::move(libraryNames)) {}

void PluginLoader::load(const std::string& typeName, std::shared_ptr<UnifiedFactory> factory) {
    const auto found = libraries.find(typeName);
    if (found == libraries.end()) {
        return;
    }
    const auto& library = found->second;
    if (folder.empty() || !isBareFileName(library)) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "Not a file of the plug-in folder: [" + library + "]");
        return;
    }
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        if (!begun.insert(library).second) {
            return;
        }
    }
    loadLibrary(folder + KyrCoreUtils::FileUtils::FileSeparator() + library, factory);
}

void PluginLoader::loadLibrary(const std::string& path, const std::shared_ptr<UnifiedFactory>& factory) const {
    const auto library = open(path);
    const auto entry = library ? findEntry(*library, path) : nullptr;
    if (entry == nullptr) {
        return;
    }
    try {
        entry(factory);
    } catch (const std::exception& failure) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "The entry of plug-in " + path + " failed: " + failure.what());
        return;
    } catch (...) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "The entry of plug-in " + path + " failed.");
        return;
    }
    ZelLog(logger, ZelLogLevel::Info, ZEL_HERE, "Loaded plug-in " + path);
}

} // namespace ZelUnified
