#pragma once

#include "Command.h"
#include "StoreSpec.h"

#include <kyr/FileUtils.h>

#include <string>
#include <vector>

namespace lumora_config {

/// What the user asked for.
struct CommandLine {
    KyrCoreUtils::HostDirectories directories; ///< Empty members: the platform's.
    std::string pluginDirectory;               ///< Empty: found from the program's own place.
    std::vector<std::string> namedDirectories; ///< Those of --profile, --config-dir and --plugin-dir.
    std::vector<StoreSpec> stores;
    std::vector<BootstrapSpec> bootstraps;
    bool json = false;
    bool verbose = false;
    bool showSecrets = false;
    bool trusted = false; ///< Whoever owns the named directories, they are used.
    Command command;

    /// Throws Failure: Usage with a message, Done with the text of --help or --version.
    static CommandLine parse(int argc, const char* const* argv);
};

} // namespace lumora_config
