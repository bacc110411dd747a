#pragma once

#include <unified/UnifiedFactory.h>

#include <map>
#include <string>

namespace lumora_config {

/// The plug-in that follows the settings of a fleet. It is a package of its own, so it may be absent.
class FleetServicePlugin {
public:
    /// Returns the plug-in's library by the name of its interface; empty if it is not in the folder.
    static std::map<std::string, std::string> describe(const std::string& pluginFolder);
    /// Starts the plug-in if it is there. The factory must have started the configuration service.
    static void start(ZelUnified::UnifiedFactory& factory, const std::string& pluginFolder);
};

} // namespace lumora_config
