#include "table/WipedValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace ZelUnified {
namespace {

const std::wstring longSecret(50, L's');

bool areZero(const wchar_t* characters, std::size_t count) {
    return std::all_of(characters, characters + count, [](wchar_t c) { return c == L'\0'; });
}

} // namespace

TEST(WipedValues, WipeValuesZeroesEachValueAndKeepsTheKeys) {
    ConfigMap values{{L"a", longSecret}, {L"b", longSecret}};
    const wchar_t* const first = values.at(L"a").data();
    const wchar_t* const second = values.at(L"b").data();
    wipeValues(values);
    EXPECT_EQ(values.size(), 2U);
    EXPECT_TRUE(areZero(first, longSecret.size()));
    EXPECT_TRUE(areZero(second, longSecret.size()));
}

TEST(WipedValues, ValuesWiperZeroesTheValuesAtTheEndOfItsScope) {
    ConfigMap values{{L"a", longSecret}};
    const wchar_t* const characters = values.at(L"a").data();
    {
        const ValuesWiper wiper(values);
        EXPECT_EQ(values.at(L"a"), longSecret);
    }
    EXPECT_TRUE(areZero(characters, longSecret.size()));
}

TEST(WipedValues, OverwriteValueZeroesTheRestOfALongerValue) {
    std::wstring value = longSecret;
    const wchar_t* const characters = value.data();
    overwriteValue(value, L"new");
    EXPECT_EQ(value, L"new");
    EXPECT_EQ(value.data(), characters);
    EXPECT_TRUE(areZero(characters + 3, longSecret.size() - 3));
    overwriteValue(value, std::wstring(1000, L'l'));
    EXPECT_EQ(value, std::wstring(1000, L'l'));
}

} // namespace ZelUnified
