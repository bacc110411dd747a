#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// A foreign store as the user writes it: "FILE.xml:NAME:PRIORITY[:cache]".
struct StoreSpec {
    std::string file;
    std::string name;
    int priority = 0;
    bool cached = false;

    /// Read from the right, so that the file's path may hold colons. Throws Failure (Usage).
    static StoreSpec parse(std::string_view text);
};

/// An installer's file as the user writes it: "FILE:PRIORITY".
struct BootstrapSpec {
    std::string file;
    int priority = 0;

    /// Throws Failure (Usage).
    static BootstrapSpec parse(std::string_view text);
};

} // namespace lumora_config
