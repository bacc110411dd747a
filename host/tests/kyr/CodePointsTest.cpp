#include "kyr/CodePoints.h"

#include <string>

namespace {

using namespace KyrCoreUtils::codepoints;

template <class Unit>
void expectRoundTrips() {
    for (char32_t value = 0; value <= last; ++value) {
        if (isSurrogate(value)) {
            continue;
        }
        std::basic_string<Unit> wide;
        appendWide(wide, value);
        const std::string narrow = wideToUtf8(std::basic_string_view<Unit>(wide));
        ASSERT_EQ(utf8ToWide<Unit>(narrow), wide) << static_cast<unsigned>(value);
        const Decoded decoded = decodeWide(std::basic_string_view<Unit>(wide), 0);
        ASSERT_TRUE(decoded.wellFormed && decoded.value == value && decoded.length == wide.size());
    }
}

TEST(CodePoints, EveryCharacterRoundTripsThroughUtf16) {
    expectRoundTrips<char16_t>();
}

TEST(CodePoints, EveryCharacterRoundTripsThroughUtf32) {
    expectRoundTrips<char32_t>();
}

TEST(CodePoints, DecodesSurrogatePairs) {
    EXPECT_EQ(wideToUtf8(std::u16string_view(u"\U0001F600")), "\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8ToWide<char16_t>("\xF4\x8F\xBF\xBF"), u"\U0010FFFF");
}

TEST(CodePoints, ReplacesUnpairedSurrogates) {
    const std::u16string highAlone = {u'a', 0xD83D, u'b'};
    const std::u16string lowAlone = {0xDE00, u'b'};
    const std::u16string highAtEnd = {0xD83D};
    const std::u16string highTwice = {0xD83D, 0xD83D, 0xDE00};
    const std::u16string reversed = {0xDE00, 0xD83D};
    EXPECT_EQ(wideToUtf8(std::u16string_view(highAlone)), "a\xEF\xBF\xBD"
                                                          "b");
    EXPECT_EQ(wideToUtf8(std::u16string_view(lowAlone)), "\xEF\xBF\xBD"
                                                         "b");
    EXPECT_EQ(wideToUtf8(std::u16string_view(highAtEnd)), "\xEF\xBF\xBD");
    EXPECT_EQ(wideToUtf8(std::u16string_view(highTwice)), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
    EXPECT_EQ(wideToUtf8(std::u16string_view(reversed)), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(CodePoints, ReplacesUtf32ValuesThatAreNoCodePoints) {
    const std::u32string beyond = {0x110000, 0xFFFFFFFF, 0xD800};
    EXPECT_EQ(wideToUtf8(std::u32string_view(beyond)), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

} // namespace
