#include "KeyPattern.h"

#include <gtest/gtest.h>

namespace inspection {
namespace {

TEST(KeyPattern, MatchesWithoutRegardToCase) {
    EXPECT_TRUE(matchesPattern(L"ServicesDomain", L"servicesdomain"));
    EXPECT_FALSE(matchesPattern(L"ServicesDomain", L"services"));
}

TEST(KeyPattern, AStarMatchesAnyText) {
    EXPECT_TRUE(matchesPattern(L"", L"*"));
    EXPECT_TRUE(matchesPattern(L"abc", L"*"));
    EXPECT_TRUE(matchesPattern(L"abc", L"a*c"));
    EXPECT_TRUE(matchesPattern(L"abcbc", L"a*bc"));
    EXPECT_TRUE(matchesPattern(L"abc", L"**abc**"));
    EXPECT_FALSE(matchesPattern(L"abc", L"*d*"));
    EXPECT_FALSE(matchesPattern(L"abc", L"*ab"));
}

TEST(KeyPattern, AQuestionMarkMatchesOneCharacter) {
    EXPECT_TRUE(matchesPattern(L"abc", L"a?c"));
    EXPECT_FALSE(matchesPattern(L"abc", L"abc?"));
    EXPECT_FALSE(matchesPattern(L"abc", L""));
}

} // namespace
} // namespace inspection
