#pragma once

#include <string>
#include <vector>

namespace lumora_config {

/// One command with its arguments, as the user gave them (UTF-8). A command reads the members that its grammar fills.
struct Command {
    std::string name;
    std::string key;
    std::string value;
    std::string prefix;
    std::string store; ///< A store's name, or the description of one for add-store.
    std::string file;
    std::string htmlFile;
    std::string url;
    std::vector<std::string> companions; ///< Keys to show with each change of another.
    bool origin = false;
    bool admin = false;
    bool confirmed = false;
    bool forced = false;
    bool fromWorker = false; ///< Call from a thread other than the services dispatcher's.
};

} // namespace lumora_config
