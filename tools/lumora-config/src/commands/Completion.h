#pragma once

#include "CommandLineCursor.h"

#include <functional>
#include <string>
#include <vector>

namespace lumora_config {

/// A word that fits at the cursor, and its meaning in a few words.
struct Candidate {
    std::string text;
    std::string description;
};

/// What fits at the cursor of an unfinished command line.
struct Completion {
    enum class Paths { None, Files, Directories };

    Paths paths = Paths::None; ///< The paths that the shell adds itself.
    std::string pathLead;      ///< The part of the word before the path, such as "--profile=".
    std::vector<Candidate> candidates;

    /// Returns one line for the paths (":none", ":files" or ":directories" and, after a tab, the part of the word
    /// before the path) and one for each candidate: its text and, after a tab, its description. The scripts in the
    /// folder "completions" read this format.
    std::string toString() const;
};

/// The names that the grammar does not contain. Called only when they are needed.
struct CompletionNames {
    std::function<std::vector<Candidate>()> keys;
    std::function<std::vector<Candidate>()> stores;
    /// Returns the values that the key accepts, or an empty list if it accepts any text.
    std::function<std::vector<Candidate>(const std::string& key)> values;
};

/// Returns the words that begin, ignoring case, with the word at the cursor. The grammar determines them: the type name
/// of an option or the name of a positional argument says what its value is.
Completion complete(const CommandLineCursor& cursor, const CompletionNames& names);

} // namespace lumora_config
