#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/HostExport.h>

#include <map>
#include <memory>
#include <string>

namespace ZelUnified {

class UnifiedFactory;

/// Loads the plug-in that provides an interface and calls its entry point. Loads each library at most once, even if
/// loading fails; a loaded library stays in the process. Any thread; no lock is held during an entry point.
class LUMORA_HOST_API PluginLoader {
public:
    /// `libraryNames` maps the readable name of an interface to a plain file name in the folder, `libraryPaths` to an
    /// absolute path. No other library is loaded.
    PluginLoader(std::string pluginFolder, std::map<std::string, std::string> libraryNames,
                 std::map<std::string, std::string> libraryPaths = {});

    /// Loads the library of the interface, unless it is loading or was tried. Returns whether it is loaded: false for
    /// an unknown name, while another call loads it, and after a failure, which is logged.
    bool load(const std::string& typeName, std::shared_ptr<UnifiedFactory> factory);

private:
    std::string getPath(const std::string& typeName) const;
    bool loadLibrary(const std::string& path, const std::shared_ptr<UnifiedFactory>& factory) const;

    const std::string folder;
    const std::map<std::string, std::string> names;
    const std::map<std::string, std::string> paths;
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::map<std::string, bool> outcomes LUMORA_GUARDED_BY(mutex);
};

} // namespace ZelUnified
