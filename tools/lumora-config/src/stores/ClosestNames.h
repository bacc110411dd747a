#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Returns the candidates that a mistyped word probably means: those with the smallest edit distance to it, in the
/// order of `candidates`, at most three. A difference of case does not count; exchanged neighbours count as one edit.
/// Returns an empty list if every candidate needs more than three edits or, for a short word, more than one per three
/// letters. Compares bytes, so a letter outside ASCII counts as several. Any thread.
std::vector<std::string> closestNames(std::string_view word, const std::vector<std::string>& candidates);

/// Returns "; did you mean 'a', 'b' or 'c'?" for these names, or an empty text for none. Any thread.
std::string suggestNames(const std::vector<std::string>& names);
/// Returns the question for the candidates closest to the word, or an empty text. Any thread.
std::string suggest(std::string_view word, const std::vector<std::string>& candidates);

} // namespace lumora_config
