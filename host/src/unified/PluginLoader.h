#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/HostExport.h>

#include <map>
#include <memory>
#include <set>
#include <string>

namespace ZelUnified {

class UnifiedFactory;

/// Loads the plug-in that provides an interface and calls its entry point. Loads libraries from one folder only, each
/// at most once, even if loading fails; a loaded library stays in the process. Any thread; no lock is held during an
/// entry point.
class LUMORA_HOST_API PluginLoader {
public:
    /// `libraryNames` maps the readable name of an interface to a plain file name in the folder.
    PluginLoader(std::string pluginFolder, std::map<std::string, std::string> libraryNames);

    /// Loads the library of the interface. Does nothing for an unknown name and for a library that is loading or was
    /// loaded. Logs failures.
    void load(const std::string& typeName, std::shared_ptr<UnifiedFactory> factory);

private:
    void loadLibrary(const std::string& path, const std::shared_ptr<UnifiedFactory>& factory) const;

    const std::string folder;
    const std::map<std::string, std::string> libraries;
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::set<std::string> begun LUMORA_GUARDED_BY(mutex);
};

} // namespace ZelUnified
