#include "unified/PluginLoader.h"

#include <unified/UnifiedFactory.h>
#include <zel/ZelLog.h>

#include <dlfcn.h>

#include <exception>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& logger = ZelLogger_getLogger("UnifiedFactory-PluginLoader");

using Entry = void (*)(std::shared_ptr<UnifiedFactory>);

bool isBareFileName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::string lastError() {
    const char* const text = dlerror();
    return text == nullptr ? "unknown error" : text;
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
        const std::lock_guard lock(mutex);
        if (!begun.insert(library).second) {
            return;
        }
    }
    loadLibrary(folder + "/" + library, factory);
}

void PluginLoader::loadLibrary(const std::string& path, const std::shared_ptr<UnifiedFactory>& factory) const {
    // Never closed: services, their tasks and their type names outlive any moment at which that would be safe.
    void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "Can't load plug-in " + path + ": " + lastError());
        return;
    }
    const auto entry = reinterpret_cast<Entry>(dlsym(library, "InjectConfigService"));
    if (entry == nullptr) {
        ZelLog(logger, ZelLogLevel::Error, ZEL_HERE, "Plug-in " + path + " has no entry: " + lastError());
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
