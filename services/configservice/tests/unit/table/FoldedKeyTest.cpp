#include "table/FoldedKey.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

namespace ZelUnified {
namespace {

std::uint32_t hashOf(const std::wstring& key) {
    return FoldedKey(key).getHash();
}

TEST(FoldedKey, RefersToTheTextOfTheCaller) {
    const std::wstring key = L"TftpServer1";
    EXPECT_EQ(&FoldedKey(key).getText(), &key);
}

TEST(FoldedKey, HashesAllSpellingsOfAKeyEqually) {
    EXPECT_EQ(hashOf(L"TftpServer1"), hashOf(L"TFTPSERVER1"));
    EXPECT_EQ(hashOf(L"\u00C4rger"), hashOf(L"\u00E4RGER"));
    EXPECT_EQ(hashOf(L"\u212Aelvin"), hashOf(L"kelvin")); // the sign for kelvin folds to an ASCII letter
    EXPECT_EQ(hashOf(std::wstring(200, L'A')), hashOf(std::wstring(200, L'a')));
}

TEST(FoldedKey, HashesKeysThatDifferInOneCharacterDifferently) {
    std::set<std::uint32_t> hashes;
    const std::wstring key = L"PresenceServerPrimaryAddress";
    for (std::size_t place = 0; place < key.size(); ++place) {
        for (wchar_t character = L'0'; character <= L'9'; ++character) {
            std::wstring other = key;
            other[place] = character;
            hashes.insert(hashOf(other));
        }
    }
    EXPECT_EQ(hashes.size(), key.size() * 10);
}

/// Returns texts at the limits of letters, of the usual length and of well-formed text.
std::vector<std::wstring> oddTexts() {
    std::vector<std::wstring> texts{L"",
                                    L"a",
                                    L"A",
                                    L"@",
                                    L"`",
                                    L"[",
                                    L"{",
                                    L"z",
                                    L"Z",
                                    L"k",
                                    L"\u212A",
                                    L"\u00DF",
                                    L"ss",
                                    L"\u00C4",
                                    L"\u00E4",
                                    L"\U00010400",
                                    L"\U00010428",
                                    std::wstring(1, L'\0'),
                                    std::wstring(1, static_cast<wchar_t>(0xD800)),
                                    std::wstring(1, static_cast<wchar_t>(0xDC00))};
    for (const std::size_t length : {63U, 64U, 65U, 200U}) {
        texts.emplace_back(length, L'x');
        texts.emplace_back(length, L'X');
        texts.push_back(std::wstring(length - 1, L'X') + L'y');
    }
    return texts;
}

TEST(FoldedKey, EqualsTheKeysThatTheComparisonOfKeysTreatsAsEqual) {
    for (const auto& left : oddTexts()) {
        const FoldedKey key(left);
        for (const auto& right : oddTexts()) {
            const bool equal = KyrCoreUtils::caseInsensitiveStringEquals(std::wstring_view(left), right);
            EXPECT_EQ(key.equals(right), equal)
                << KyrCoreUtils::toString(left) << " and " << KyrCoreUtils::toString(right);
            if (equal) {
                EXPECT_EQ(key.getHash(), hashOf(right)) << KyrCoreUtils::toString(left);
            }
        }
    }
}

TEST(FoldedKey, FoldsAllAsciiCharactersAtEachPositionOfABlock) {
    for (const std::size_t length : {1U, 2U, 3U, 4U, 5U, 63U, 64U, 65U, 66U}) {
        for (wchar_t unit = 0; unit < 0x80; ++unit) {
            for (const std::wstring& key : {std::wstring(length, unit), std::wstring(length - 1, L'[') + unit}) {
                const FoldedKey folded(key);
                ASSERT_EQ(folded.getFolded(), KyrCoreUtils::toLowercase(std::wstring_view(key)));
                ASSERT_EQ(folded.getHash(), hashOf(KyrCoreUtils::toLowercase(std::wstring_view(key))));
            }
        }
    }
}

TEST(FoldedKey, FoldsCharactersBesideInvalidUnits) {
    for (const auto unit : {std::numeric_limits<wchar_t>::max(), std::numeric_limits<wchar_t>::min()}) {
        const std::wstring key = std::wstring(L"Ab") + unit + L"Cd" + unit + unit + L"E";
        EXPECT_TRUE(FoldedKey(key).equals(std::wstring(L"aB") + unit + L"cD" + unit + unit + L"e"));
        EXPECT_FALSE(FoldedKey(key).equals(std::wstring(L"aB") + unit + L"cD" + unit + unit + L"f"));
    }
}

TEST(FoldedKey, SpreadsKeysThatDifferInTheUpperBitsOfTheirCharacters) {
    std::set<std::uint32_t> hashes;
    std::size_t count = 0;
    for (wchar_t first = 1; first <= 20; ++first) {
        for (wchar_t second = 1; second <= 20; ++second) {
            // The same in the lower bits, because only they counted in an earlier hash.
            const auto shifted = [](wchar_t number) { return static_cast<wchar_t>(0x3400 + number * 0x400); };
            const std::wstring key = std::wstring(L"aaa") + shifted(first) + L"bbb" + shifted(second);
            hashes.insert(FoldedKey(key).getHash());
            ++count;
        }
    }
    EXPECT_GT(hashes.size(), count - 5);
}

} // namespace
} // namespace ZelUnified
