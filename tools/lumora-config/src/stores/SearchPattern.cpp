#include "SearchPattern.h"

#include "KnownKeys.h"
#include "output/Failure.h"

#include <kyr/StringUtils.h>

namespace lumora_config {

SearchPattern::SearchPattern(std::wstring_view searched, Kind patternKind) : pattern(searched), kind(patternKind) {
    if (kind == Kind::Prefix && pattern.find_first_of(L"*?") == std::wstring::npos) {
        pattern += L'*';
    }
    if (kind != Kind::Expression) {
        return;
    }
    try {
        expression.emplace(pattern, std::regex_constants::ECMAScript | std::regex_constants::icase);
    } catch (const std::regex_error& error) {
        throw Failure(ExitCode::Usage, "the pattern is not a regular expression: " + std::string(error.what()));
    }
}

bool SearchPattern::matches(std::wstring_view text) const {
    if (kind != Kind::Expression) {
        return matchesPattern(text, pattern);
    }
    const auto part = text.substr(0, longestSearched);
    return std::regex_search(part.begin(), part.end(), *expression);
}

} // namespace lumora_config
