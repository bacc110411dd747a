#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// The description of a foreign store on the command line: "FILE.xml:NAME:PRIORITY[:cache]".
struct StoreSpec {
    std::string file;
    std::string name;
    int priority = 0;
    bool cached = false;

    /// Parses from the right, so that the path may contain colons. Throws Failure (Usage) if the text is malformed.
    static StoreSpec parse(std::string_view text);
};

/// The description of an installer's file on the command line: "FILE:PRIORITY".
struct BootstrapSpec {
    std::string file;
    int priority = 0;

    /// Parses the text. Throws Failure (Usage) if it is malformed.
    static BootstrapSpec parse(std::string_view text);
};

} // namespace lumora_config
