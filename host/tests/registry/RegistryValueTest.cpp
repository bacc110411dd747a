#include <registry/RegistryValue.h>

#include <gmock/gmock.h>

namespace {

using namespace zel::registry;
using testing::ElementsAre;

TEST(RegistryValue, TextIsEncodedAsUtf16WithATerminator) {
    EXPECT_THAT(encodeRegistryText(L"a\u00e4"), ElementsAre('a', 0, 0xE4, 0, 0, 0));
    EXPECT_THAT(encodeRegistryText(L""), ElementsAre(0, 0));
}

TEST(RegistryValue, ASupplementaryCharacterRoundTripsAsTwoUnits) {
    EXPECT_THAT(encodeRegistryText(L"\U0001F600"), ElementsAre(0x3D, 0xD8, 0x00, 0xDE, 0, 0));
    EXPECT_EQ(decodeRegistryText(encodeRegistryText(L"x\U0001F600y")), L"x\U0001F600y");
}

TEST(RegistryValue, DecodingStopsAtTheFirstTerminatorOrAtTheEnd) {
    const std::vector<std::uint8_t> two{'a', 0, 0, 0, 'b', 0, 0, 0};
    EXPECT_EQ(decodeRegistryText(two), L"a");
    const std::vector<std::uint8_t> unterminated{'a', 0, 'b', 0};
    EXPECT_EQ(decodeRegistryText(unterminated), L"ab");
}

TEST(RegistryValue, DecodingEverythingKeepsTheTerminators) {
    const std::vector<std::uint8_t> two{'a', 0, 0, 0, 'b', 0};
    EXPECT_EQ(decodeAllRegistryText(two), std::wstring(L"a\0b", 3));
}

TEST(RegistryValue, AnOddLastByteIsIgnored) {
    const std::vector<std::uint8_t> odd{'a', 0, 'b'};
    EXPECT_EQ(decodeRegistryText(odd), L"a");
    const std::vector<std::uint8_t> single{'a'};
    EXPECT_EQ(decodeRegistryText(single), L"");
    EXPECT_EQ(decodeRegistryText({}), L"");
}

TEST(RegistryValue, ALoneSurrogateNeverBecomesACodePoint) {
    const std::vector<std::uint8_t> lone{0x3D, 0xD8, 'x', 0};
    const auto text = decodeRegistryText(lone);
    EXPECT_EQ(text.size(), 2U);
    EXPECT_EQ(text[1], L'x');
    if (sizeof(wchar_t) == 4) {
        EXPECT_EQ(text[0], static_cast<wchar_t>(0xFFFD));
    }
}

TEST(RegistryValue, NumbersAreFourBytesInLittleEndianOrder) {
    const auto value = makeNumberValue(L"n", 0x80000001);
    EXPECT_EQ(value.type, REG_DWORD);
    EXPECT_THAT(value.data, ElementsAre(1, 0, 0, 0x80));
}

TEST(RegistryValue, TextOfAValueIsItsFirstStringOrItsNumber) {
    const std::vector<std::uint8_t> two{'a', 0, 0, 0, 'b', 0, 0, 0};
    for (const auto type : {REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ}) {
        EXPECT_EQ(decodeRegistryValue(type, two), L"a");
    }
    EXPECT_EQ(decodeRegistryValue(REG_DWORD, makeNumberValue(L"n", 0x80000001).data), L"2147483649");
    const std::vector<std::uint8_t> shortNumber{1, 2};
    EXPECT_EQ(decodeRegistryValue(REG_DWORD, shortNumber), L"513");
    const std::vector<std::uint8_t> longNumber{1, 0, 0, 0, 1};
    EXPECT_EQ(decodeRegistryValue(REG_DWORD, longNumber), L"1");
    for (const auto type : {REG_NONE, REG_BINARY, REG_QWORD}) {
        EXPECT_EQ(decodeRegistryValue(type, two), std::nullopt);
    }
}

} // namespace
