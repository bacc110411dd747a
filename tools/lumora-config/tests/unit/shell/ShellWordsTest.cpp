#include "shell/ShellWords.h"

#include "output/Failure.h"

#include <gmock/gmock.h>

namespace lumora_config {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ShellWords, AreSplitAtBlanks) {
    EXPECT_THAT(splitWords("  set\tKey   value \r"), ElementsAre("set", "Key", "value"));
}

TEST(ShellWords, KeepQuotedTextTogether) {
    EXPECT_THAT(splitWords(R"(set "a key" 'it is "so"')"), ElementsAre("set", "a key", R"(it is "so")"));
    EXPECT_THAT(splitWords(R"(pre"fix and"suffix)"), ElementsAre("prefix andsuffix"));
}

TEST(ShellWords, IncludeAnEmptyQuotedWord) {
    EXPECT_THAT(splitWords(R"(set Key "")"), ElementsAre("set", "Key", ""));
}

TEST(ShellWords, KeepTheCharacterAfterABackslash) {
    EXPECT_THAT(splitWords(R"(a\ b "c\"d" 'e\f')"), ElementsAre("a b", R"(c"d)", R"(e\f)"));
    EXPECT_THAT(splitWords("a\\"), ElementsAre("a\\"));
}

/// A split with quadratic time would take hours.
TEST(ShellWords, AreSplitInLinearTime) {
    const std::string longWord(5'000'000, 'x');
    EXPECT_THAT(splitWords("set Key " + longWord), ElementsAre("set", "Key", longWord));
    EXPECT_THAT(splitWords("set Key \"" + longWord + '"'), ElementsAre("set", "Key", longWord));
    std::string escaped;
    for (std::size_t i = 0; i < longWord.size() / 2; ++i) {
        escaped += "\\y";
    }
    EXPECT_THAT(splitWords(escaped), ElementsAre(std::string(longWord.size() / 2, 'y')));
}

TEST(ShellWords, RefuseAnOpenQuote) {
    EXPECT_THROW(splitWords("set 'Key"), Failure);
}

TEST(ShellWords, AnEmptyLineHasNone) {
    EXPECT_THAT(splitWords(" \t"), IsEmpty());
}

TEST(ShellWords, AnUnfinishedLineEndsWithTheWordAtItsEnd) {
    EXPECT_THAT(splitUnfinished("get ").words, ElementsAre("get", ""));
    EXPECT_EQ(splitUnfinished("get ").lastStart, 4U);
    EXPECT_THAT(splitUnfinished(R"(get "a ke)").words, ElementsAre("get", "a ke"));
    EXPECT_EQ(splitUnfinished(R"(get "a ke)").lastStart, 4U);
    EXPECT_THAT(splitUnfinished("").words, ElementsAre(""));
}

TEST(ShellWords, AreUnchangedByQuoting) {
    for (const std::string word : {"Theme", "a store", R"(it's "so" \)", "", "#", "\t"}) {
        EXPECT_THAT(splitWords(quoteWord(word)), ElementsAre(word));
    }
    EXPECT_EQ(quoteWord("Theme"), "Theme");
}

} // namespace lumora_config
