#include "RegistryConfigStoreFixture.h"

#include <gmock/gmock.h>

namespace ZelUnified {

using namespace zel::registry;
using testing::ElementsAre;

/// Reads trees by stores, which are the only users of the reader.
class RegistryTreeReaderTest : public RegistryConfigStoreTest {};

TEST_F(RegistryTreeReaderTest, KeysMatchIgnoringCaseAndKeepTheFirstSpelling) {
    setText(L"", L"SomeKey", L"value");
    setText(L"\\Sub", L"SOMEKEY", L"hidden");
    EXPECT_EQ(readBack(L"somekey"), L"value");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"SomeKey"));
}

TEST_F(RegistryTreeReaderTest, TextsEndAtTheirFirstTerminatorOrAtTheirSize) {
    setRaw(L"terminated", REG_SZ, {'a', 0, 0, 0, 'b', 0});
    setRaw(L"unterminated", REG_SZ, {'a', 0, 'b', 0});
    setRaw(L"odd", REG_SZ, {'a', 0, 'b'});
    setRaw(L"single", REG_SZ, {'a'});
    setRaw(L"long first", REG_SZ, encodeRegistryText(std::wstring(1000, L'x')));
    setRaw(L"short", REG_SZ, {'y', 0});
    EXPECT_EQ(readBack(L"terminated"), L"a");
    EXPECT_EQ(readBack(L"unterminated"), L"ab");
    EXPECT_EQ(readBack(L"odd"), L"a");
    EXPECT_EQ(readBack(L"single"), L"");
    EXPECT_EQ(readBack(L"short"), L"y");
}

TEST_F(RegistryTreeReaderTest, AnEmptyTextIsAHit) {
    setText(L"", L"Empty", L"");
    setRaw(L"No data", REG_SZ, {});
    EXPECT_EQ(readBack(L"Empty"), L"");
    EXPECT_EQ(readBack(L"No data"), L"");
}

TEST_F(RegistryTreeReaderTest, ExpandableTextsAreNotExpanded) {
    setRaw(L"Path", REG_EXPAND_SZ, encodeRegistryText(L"%HOME%\\x"));
    EXPECT_EQ(readBack(L"Path"), L"%HOME%\\x");
}

TEST_F(RegistryTreeReaderTest, TheFirstTextOfAListIsTheValue) {
    setRaw(L"List", REG_MULTI_SZ, {'o', 0, 'n', 0, 'e', 0, 0, 0, 't', 0, 'w', 0, 'o', 0, 0, 0, 0, 0});
    EXPECT_EQ(readBack(L"List"), L"one");
}

TEST_F(RegistryTreeReaderTest, NumbersAreUnsignedDecimalText) {
    registry->setNumber(HKEY_CURRENT_USER, root, L"Zero", 0);
    registry->setNumber(HKEY_CURRENT_USER, root, L"Many", 0xFFFFFFFF);
    setRaw(L"Short", REG_DWORD, {1, 1});
    setRaw(L"Long", REG_DWORD, {2, 0, 0, 0, 1});
    EXPECT_EQ(readBack(L"Zero"), L"0");
    EXPECT_EQ(readBack(L"Many"), L"4294967295");
    EXPECT_EQ(readBack(L"Short"), L"257");
    EXPECT_EQ(readBack(L"Long"), L"2");
}

TEST_F(RegistryTreeReaderTest, ValuesOfOtherTypesAreSkipped) {
    setRaw(L"Binary", REG_BINARY, {1, 2, 3});
    setRaw(L"Big number", REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});
    setRaw(L"None", REG_NONE, {});
    setRaw(L"Unknown", 99, {1});
    setText(L"", L"Last", L"value");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"Last"));
}

TEST_F(RegistryTreeReaderTest, TheDefaultValueOfAKeyHasTheEmptyKey) {
    setText(L"", L"", L"default");
    EXPECT_EQ(readBack(L""), L"default");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L""));
}

TEST_F(RegistryTreeReaderTest, AValueOfMoreThan4096BytesHidesThoseBehindIt) {
    setText(L"", L"Before", L"1");
    setRaw(L"Fits", REG_SZ, std::vector<std::uint8_t>(4096, 'x'));
    setRaw(L"Too long", REG_SZ, std::vector<std::uint8_t>(4097, 'x'));
    setText(L"", L"Behind", L"2");
    setText(L"\\Sub", L"In a subkey", L"3");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"Before", L"Fits", L"In a subkey"));
    EXPECT_EQ(readBack(L"Fits")->size(), 2048U);
}

TEST_F(RegistryTreeReaderTest, AValueNameOf260CharactersHidesThoseBehindIt) {
    const std::wstring longest(259, L'n');
    setText(L"", longest, L"1");
    setText(L"", longest + L'n', L"2");
    setText(L"", L"Behind", L"3");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(longest));
}

TEST_F(RegistryTreeReaderTest, AKeyOverridesItsSubkeysAndALowerIndexAHigherOne) {
    setText(L"", L"InAll", L"root");
    setText(L"\\Alpha", L"InAll", L"alpha");
    setText(L"\\Alpha", L"InSubkeys", L"alpha");
    setText(L"\\Alpha\\Deep", L"InDeep", L"alpha deep");
    setText(L"\\Beta", L"InSubkeys", L"beta");
    setText(L"\\Beta", L"InDeep", L"beta");
    EXPECT_EQ(readBack(L"InAll"), L"root");
    EXPECT_EQ(readBack(L"InSubkeys"), L"alpha");
    EXPECT_EQ(readBack(L"InDeep"), L"alpha deep");
}

TEST_F(RegistryTreeReaderTest, AllSubkeysOfTheRootAreRead) {
    for (const auto* name : {L"a", L"b", L"c", L"d"}) {
        setText(std::wstring(L"\\") + name, name, L"1");
    }
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"a", L"b", L"c", L"d"));
}

TEST_F(RegistryTreeReaderTest, ASubkeyIsReadOnlyAsFarAsItsParentHasSubkeys) {
    // The root has two subkeys: two of the three below "A" are read, and below "A\1" as many as "A" has.
    for (const auto* name : {L"\\A\\1\\w", L"\\A\\1\\x", L"\\A\\1\\y", L"\\A\\1\\z", L"\\A\\2", L"\\A\\3", L"\\B"}) {
        setText(name, std::wstring(name).substr(1), L"1");
    }
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"A\\1\\w", L"A\\1\\x", L"A\\1\\y", L"A\\2", L"B"));
}

TEST_F(RegistryTreeReaderTest, AnIndexThatFailsIsSkipped) {
    setText(L"\\A", L"a", L"1");
    setText(L"\\B", L"b", L"1");
    setText(L"\\C", L"c", L"1");
    registry->failEnumerating(1);
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"a", L"c"));
}

TEST_F(RegistryTreeReaderTest, ASubkeyNameOf255CharactersIsSkipped) {
    setText(L"\\" + std::wstring(255, L'k'), L"too long", L"1");
    setText(L"\\" + std::wstring(254, L'k'), L"fits", L"1");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"fits"));
}

TEST_F(RegistryTreeReaderTest, ASubkeyThatCannotBeOpenedIsSkipped) {
    setText(L"\\A", L"a", L"1");
    setText(L"\\B", L"b", L"1");
    registry->failOpening(root + L"\\A", RegistryResult::AccessDenied);
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"b"));
}

TEST_F(RegistryTreeReaderTest, PathsThatDoNotFitTheBufferAreNotTruncatedAndOpened) {
    std::wstring deep;
    while (root.size() + deep.size() + 201 < 1023) {
        deep += L"\\" + std::wstring(200, L'd');
    }
    const auto room = 1023 - root.size() - deep.size() - 1;
    const std::wstring fits(room, L'f');
    setText(deep + L"\\" + fits, L"fits", L"1");
    setText(deep + L"\\" + fits + L"f", L"does not fit", L"1");
    // Adds enough keys at the levels above, so that the read reaches the second of the two.
    setText(L"\\z", L"other", L"1");
    for (std::size_t end = 201; end < deep.size(); end += 201) {
        setText(deep.substr(0, end) + L"\\z", L"other", L"1");
    }
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"fits", L"other"));
    for (const auto& opened : registry->getOpened()) {
        EXPECT_LE(opened.path.size(), 1023U);
    }
}

TEST_F(RegistryTreeReaderTest, EveryKeyThatWasOpenedIsClosed) {
    setText(L"\\A\\B", L"a", L"1");
    setText(L"\\C", L"b", L"1");
    makeStore();
    EXPECT_EQ(registry->getOpenKeyCount(), 0U);
    EXPECT_EQ(registry->getClosed().size(), registry->getOpened().size());
}

} // namespace ZelUnified
