#pragma once

#include "Json.h"

#include <chrono>
#include <string>

namespace inspection {

/// Returns the health of the protected files, as the program's `doctor` prints them. Reads every file completely, so it
/// belongs on the background dispatcher.
Json reportStorage();

/// A file that a change must have written before it is reported as done.
struct ExpectedWrite {
    std::string what; ///< The failure in words, without its reason.
    std::string file; ///< The name of the protected file.
    std::chrono::system_clock::time_point since;
    bool mustBeNew = true;  ///< If false, nothing was changed, and an earlier write is enough.
    std::string obstacle{}; ///< The reason if it is known that the client writes no such file.
};

/// Throws RequestError (Environment) with the reason if the host has not written the file. Like reportStorage(), reads
/// every protected file.
void requireWritten(const ExpectedWrite& expected);

} // namespace inspection
