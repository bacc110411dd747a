#include "stores/SearchPattern.h"

#include "output/Failure.h"

#include <gtest/gtest.h>

namespace lumora_config {

using Kind = SearchPattern::Kind;

TEST(SearchPattern, WithoutWildcardsMatchesTheStartOrAnyPart) {
    EXPECT_TRUE(SearchPattern(L"the", Kind::Prefix).matches(L"Theme"));
    EXPECT_FALSE(SearchPattern(L"eme", Kind::Prefix).matches(L"Theme"));
    EXPECT_TRUE(SearchPattern(L"EME", Kind::Part).matches(L"Theme"));
    EXPECT_TRUE(SearchPattern(L"", Kind::Prefix).matches(L"Theme"));
    EXPECT_TRUE(SearchPattern(L"", Kind::Part).matches(L""));
}

TEST(SearchPattern, WildcardsMatchTheWholeText) {
    for (const auto kind : {Kind::Prefix, Kind::Part}) {
        EXPECT_TRUE(SearchPattern(L"*em?", kind).matches(L"Theme"));
        EXPECT_FALSE(SearchPattern(L"*em", kind).matches(L"Theme"));
        EXPECT_FALSE(SearchPattern(L"h?me", kind).matches(L"Theme"));
    }
}

TEST(SearchPattern, AnExpressionMatchesAnyPartIgnoringCase) {
    const SearchPattern pattern(L"^th.*(me|mes)$", Kind::Expression);
    EXPECT_TRUE(pattern.matches(L"Theme"));
    EXPECT_FALSE(pattern.matches(L"A Theme"));
    EXPECT_TRUE(SearchPattern(L"em", Kind::Expression).matches(L"THEME"));
}

TEST(SearchPattern, RefusesAMalformedExpression) {
    EXPECT_THROW(SearchPattern(L"(", Kind::Expression), Failure);
    EXPECT_NO_THROW(SearchPattern(L"(", Kind::Part));
}

TEST(SearchPattern, AnExpressionSearchesTheStartOfAVeryLongText) {
    auto text = std::wstring(SearchPattern::longestSearched - 1, L'a') + L'b';
    const SearchPattern pattern(L"(a|c)*b", Kind::Expression);
    EXPECT_TRUE(pattern.matches(text));
    text = std::wstring(1000000, L'a') + L'b';
    EXPECT_FALSE(pattern.matches(text));
}

} // namespace lumora_config
