#include "stores/SearchPattern.h"

#include "output/Failure.h"

#include <gtest/gtest.h>

namespace lumora_config {

using PatternKind = SearchPattern::Kind;

TEST(SearchPattern, MatchesTheStartOrAnyPartWithoutWildcards) {
    EXPECT_TRUE(SearchPattern(L"the", PatternKind::Prefix).matches(L"Theme"));
    EXPECT_FALSE(SearchPattern(L"eme", PatternKind::Prefix).matches(L"Theme"));
    EXPECT_TRUE(SearchPattern(L"EME", PatternKind::Part).matches(L"Theme"));
    EXPECT_TRUE(SearchPattern(L"", PatternKind::Prefix).matches(L"Theme"));
    EXPECT_TRUE(SearchPattern(L"", PatternKind::Part).matches(L""));
}

TEST(SearchPattern, WildcardsMatchTheWholeText) {
    for (const auto kind : {PatternKind::Prefix, PatternKind::Part}) {
        EXPECT_TRUE(SearchPattern(L"*em?", kind).matches(L"Theme"));
        EXPECT_FALSE(SearchPattern(L"*em", kind).matches(L"Theme"));
        EXPECT_FALSE(SearchPattern(L"h?me", kind).matches(L"Theme"));
    }
}

TEST(SearchPattern, AnExpressionMatchesAnyPartIgnoringCase) {
    const SearchPattern pattern(L"^th.*(me|mes)$", PatternKind::Expression);
    EXPECT_TRUE(pattern.matches(L"Theme"));
    EXPECT_FALSE(pattern.matches(L"A Theme"));
    EXPECT_TRUE(SearchPattern(L"em", PatternKind::Expression).matches(L"THEME"));
}

TEST(SearchPattern, RefusesAMalformedExpression) {
    EXPECT_THROW(SearchPattern(L"(", PatternKind::Expression), Failure);
    EXPECT_NO_THROW(SearchPattern(L"(", PatternKind::Part));
}

TEST(SearchPattern, AnExpressionSearchesTheStartOfAVeryLongText) {
    auto text = std::wstring(SearchPattern::longestSearched - 1, L'a') + L'b';
    EXPECT_TRUE(SearchPattern(L"(a|c)*b", PatternKind::Expression).matches(text));
    text = std::wstring(1000000, L'a') + L'b';
    EXPECT_FALSE(SearchPattern(L"b", PatternKind::Expression).matches(text));
}

} // namespace lumora_config
