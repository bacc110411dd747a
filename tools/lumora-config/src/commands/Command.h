#pragma once

#include <string>
#include <vector>

namespace lumora_config {

/// One command with its arguments in UTF-8, as the user typed them. A command reads only the members that its grammar
/// sets.
struct Command {
    std::string name;
    std::string key;
    std::string value;
    std::string prefix;
    std::string store; ///< The name of a store. For add-store: the description of the store.
    std::string file;
    std::string htmlFile;
    std::string url;
    std::vector<std::string> companions; ///< Keys whose values are shown with each change of the observed key.
    bool origin = false;
    bool admin = false;
    bool confirmed = false;
    bool forced = false;
    bool dryRun = false;
    bool fromWorker = false; ///< Runs the call on a thread other than the services dispatcher's.
};

} // namespace lumora_config
