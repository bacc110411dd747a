#pragma once

#include <zel/HostExport.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace ZelUnified {

class UnifiedFactory;

/// Loads the plug-in that provides an interface, and calls its entry. Libraries come from one folder only; each is
/// loaded once, whatever came of it, and stays in the process. Any thread; no lock is held during an entry.
class LUMORA_HOST_API PluginLoader {
public:
    /// `libraries` maps the readable name of an interface to a bare file name in `folder`.
    PluginLoader(std::string pluginFolder, std::map<std::string, std::string> libraryNames);

    /// Does nothing for an unknown name, and for a library that is loading or was loaded. Failures go to the log.
    void load(const std::string& typeName, std::shared_ptr<UnifiedFactory> factory);

private:
    void loadLibrary(const std::string& path, const std::shared_ptr<UnifiedFactory>& factory) const;

    const std::string folder;
    const std::map<std::string, std::string> libraries;
    std::mutex mutex; ///< Guards `begun`.
    std::set<std::string> begun;
};

} // namespace ZelUnified
