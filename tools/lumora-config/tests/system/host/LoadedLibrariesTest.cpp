#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::HasSubstr;
using testing::Not;

namespace {

/// Returns what the loader would load at the start of the program, without running it.
std::string listLoadedLibraries() {
    return runProcess("/usr/bin/env", {"LD_TRACE_LOADED_OBJECTS=1", LUMORA_CONFIG_PROGRAM}).out;
}

} // namespace

// Each library delays the start of every command.
TEST(LoadedLibraries, DoNotIncludeThoseThatFewCommandsNeed) {
    const auto loaded = listLoadedLibraries();
    EXPECT_THAT(loaded, HasSubstr("liblumora_host.so"));
    for (const auto* library : {"libarchive.so", "libcurl.so", "libedit.so", "libsystemd.so"}) {
        EXPECT_THAT(loaded, Not(HasSubstr(library)));
    }
}

} // namespace program_test
