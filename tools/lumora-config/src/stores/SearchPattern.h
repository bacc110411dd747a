#pragma once

#include <optional>
#include <regex>
#include <string>
#include <string_view>

namespace lumora_config {

/// Matches keys or values against the pattern of a search, ignoring case. Any thread.
class SearchPattern {
public:
    /// `Prefix` and `Part`: the wildcards `*` and `?` match the whole text; a pattern without them matches the start of
    /// the text or any part of it.
    enum class Kind { Prefix, Part, Expression };

    /// A text is searched for a regular expression up to this length, because the matching of a longer one could
    /// exhaust the stack.
    static constexpr std::size_t longestSearched = 2000;

    /// Throws Failure (Usage) if the pattern is not a regular expression (ECMAScript) but should be one.
    SearchPattern(std::wstring_view searched, Kind patternKind);

    bool matches(std::wstring_view text) const;

private:
    std::wstring pattern;
    const Kind kind;
    std::optional<std::wregex> expression;
};

} // namespace lumora_config
