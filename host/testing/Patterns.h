#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>

/// \file
/// ContainsRegex() and MatchesRegex() with extended regular expressions on every platform. On some, the test framework
/// has expressions without groups and classes.

namespace testing_host {

#if GTEST_USES_POSIX_RE
using testing::ContainsRegex;
using testing::MatchesRegex;
#else
inline std::regex compilePattern(const std::string& pattern) {
    auto syntax = std::regex::extended;
#ifdef __GLIBCXX__
    syntax |= std::regex_constants::__polynomial; // the other algorithm needs a deep stack for a long text
#endif
    return std::regex(pattern, syntax);
}

MATCHER_P(ContainsRegex, pattern, "contains the regular expression " + testing::PrintToString(pattern)) {
    return std::regex_search(std::string(arg), compilePattern(pattern));
}

MATCHER_P(MatchesRegex, pattern, "matches the regular expression " + testing::PrintToString(pattern)) {
    return std::regex_match(std::string(arg), compilePattern(pattern));
}
#endif

} // namespace testing_host
