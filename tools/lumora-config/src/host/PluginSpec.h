#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// The description of a foreign plug-in on the command line: "NAME=LIBRARY".
struct PluginSpec {
    std::string interfaceName; ///< The readable type name of the interface that the plug-in registers.
    std::string library;       ///< The absolute path of the library.

    /// Parses the text and makes the path absolute. Throws Failure (Usage) if the text is malformed.
    static PluginSpec parse(std::string_view text);
};

} // namespace lumora_config
