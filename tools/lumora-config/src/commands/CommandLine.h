#pragma once

#include "CommandGrammar.h"
#include "host/PluginSpec.h"
#include "stores/StoreSpec.h"

#include <kyr/FileUtils.h>

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lumora_config {

/// The parsed command line.
struct CommandLine {
    KyrCoreUtils::HostDirectories directories; ///< An empty member means the default of the platform.
    std::string pluginDirectory;               ///< If empty, searched relative to the program.
    /// The directories and libraries that must be trusted: all that the options name, the directories in that of
    /// --profile, and those of the libraries of --plugin.
    std::vector<std::string> namedDirectories;
    std::vector<PluginSpec> plugins;
    std::vector<StoreSpec> stores;
    std::vector<BootstrapSpec> bootstraps;
    bool json = false;
    bool verbose = false;
    bool showSecrets = false;
    bool live = false;    ///< Requires a running client.
    bool offline = false; ///< Does not ask a running client.
    bool trusted = false; ///< Uses the named directories and libraries whoever owns them.
    Command command;

    /// Parses the arguments. Throws Failure: Usage with a message; Done with the text of --help or --version.
    static CommandLine parse(int argc, const char* const* argv);
    /// Calls `use` with the grammar of the command line, which exists during the call only.
    static void withGrammar(const std::function<void(const CLI::App& grammar)>& use);
};

/// Returns the absolute paths of the four folders of a profile.
KyrCoreUtils::HostDirectories directoriesOfProfile(const std::string& profile);

/// Returns the directories that must be trusted: that of the profile, if one is named, and the named ones of `folders`.
std::vector<std::string> nameDirectories(const std::string& profile, const KyrCoreUtils::HostDirectories& folders);

} // namespace lumora_config
