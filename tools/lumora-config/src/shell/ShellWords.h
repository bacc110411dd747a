#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// The words of a line of the shell that may be unfinished.
struct UnfinishedLine {
    std::vector<std::string> words; ///< The last one is the word at the end of the line; it may be empty.
    std::size_t lastStart = 0;      ///< The position of the last word in the line, including its quote.
};

/// Splits a line at blanks. Single and double quotes enclose one word. A backslash escapes the next character, except
/// in single quotes. Throws Failure (Usage) if a quote is not closed.
std::vector<std::string> splitWords(std::string_view line);

/// Like splitWords(), for a line that is being typed. Accepts an open quote.
UnfinishedLine splitUnfinished(std::string_view line);

/// Returns the word quoted, if necessary, so that splitWords() returns it unchanged as one word.
std::string quoteWord(const std::string& word);

} // namespace lumora_config
