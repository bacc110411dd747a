#pragma once

#include <unified/UnifiedFactory.h>

#include <map>
#include <string>

namespace lumora_config {

/// The plug-in that answers other processes of the user while this one uses the profile.
class InspectionPlugin {
public:
    /// Returns the plug-in's library by the name of its interface; empty if this platform has none.
    static std::map<std::string, std::string> describe();
    /// Starts the plug-in and returns the path of its socket. The factory must have started the configuration service.
    /// Throws Failure (Environment) if the plug-in is missing or cannot listen.
    static std::string start(ZelUnified::UnifiedFactory& factory, bool changesAllowed);
};

} // namespace lumora_config
