#pragma once

#include "CommandGrammar.h"
#include "stores/StoreSpec.h"

#include <kyr/FileUtils.h>

#include <string>
#include <vector>

namespace lumora_config {

/// The parsed command line.
struct CommandLine {
    KyrCoreUtils::HostDirectories directories; ///< An empty member means the default of the platform.
    std::string pluginDirectory;               ///< If empty, searched relative to the program.
    std::vector<std::string> namedDirectories; ///< The directories of --profile, --config-dir and --plugin-dir.
    std::vector<StoreSpec> stores;
    std::vector<BootstrapSpec> bootstraps;
    bool json = false;
    bool verbose = false;
    bool showSecrets = false;
    bool live = false;    ///< Requires a running client.
    bool offline = false; ///< Does not ask a running client.
    bool trusted = false; ///< Uses the named directories whoever owns them.
    Command command;

    /// Parses the arguments. Throws Failure: Usage with a message; Done with the text of --help or --version.
    static CommandLine parse(int argc, const char* const* argv);
};

} // namespace lumora_config
