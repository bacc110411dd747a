#include "RegistryReading.h"

#include <registry/RegistryHive.h>

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace registry_reading;
using testing::ElementsAre;

std::vector<std::wstring> namesOf(const std::vector<RegistryValue>& values) {
    std::vector<std::wstring> names;
    for (const auto& value : values) {
        names.push_back(value.name);
    }
    return names;
}

TEST(RegistryHive, RootsAreOpenAndEmptyAtFirst) {
    RegistryHive hive;
    for (const auto root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        std::uint32_t count = 9;
        EXPECT_EQ(hive.RegQueryInfoKeyW(root, count), RegistryResult::Success);
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(hive.RegCloseKey(root), RegistryResult::Success);
    }
}

TEST(RegistryHive, OpeningIgnoresCaseAndSurplusSeparators) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"Software\\\u00c4cme, Inc.\\Client");
    EXPECT_TRUE(hasKey(hive, L"SOFTWARE\\\u00e4CME, inc.\\client"));
    EXPECT_TRUE(hasKey(hive, L"Software\\\u00c4cme, Inc.\\"));
    EXPECT_FALSE(hasKey(hive, L"Software\\\u00c4cme", HKEY_CURRENT_USER));
    EXPECT_FALSE(hasKey(hive, L"Software\\\u00c4cme, Inc.\\Client", HKEY_LOCAL_MACHINE));
}

TEST(RegistryHive, OpeningAMissingKeyReturnsNotFoundAndKeepsTheHandle) {
    RegistryHive hive;
    HKEY handle{77};
    EXPECT_EQ(hive.RegOpenKeyExW(HKEY_CURRENT_USER, L"Nothing", 0, KEY_READ, handle), RegistryResult::NotFound);
    EXPECT_EQ(handle, HKEY{77});
}

TEST(RegistryHive, ANullPathOpensTheKeyItselfAgain) {
    RegistryHive hive;
    hive.setValue(HKEY_CURRENT_USER, L"A", makeTextValue(L"v", L"1"));
    const Key a(hive, HKEY_CURRENT_USER, L"A");
    HKEY again{};
    ASSERT_EQ(hive.RegOpenKeyExW(a.get(), nullptr, 0, KEY_READ, again), RegistryResult::Success);
    EXPECT_NE(again, a.get());
    EXPECT_EQ(hive.RegCloseKey(again), RegistryResult::Success);
    EXPECT_EQ(hive.getOpenKeyCount(), 1U);
}

TEST(RegistryHive, AKeyIsOpenedRelativeToAnOpenKey) {
    RegistryHive hive;
    hive.setValue(HKEY_CURRENT_USER, L"A\\B\\C", makeTextValue(L"v", L"deep"));
    const Key a(hive, HKEY_CURRENT_USER, L"A");
    const Key c(hive, a.get(), L"B\\C");
    EXPECT_THAT(c.getValues(), ElementsAre(makeTextValue(L"v", L"deep")));
    EXPECT_EQ(hive.getPlace(c.get(), L"x")->path, L"A\\B\\C\\x");
}

TEST(RegistryHive, NullAndClosedHandlesAreInvalidForEveryOperation) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"A");
    HKEY closed{};
    ASSERT_EQ(hive.RegOpenKeyExW(HKEY_CURRENT_USER, L"A", 0, KEY_READ, closed), RegistryResult::Success);
    ASSERT_EQ(hive.RegCloseKey(closed), RegistryResult::Success);
    for (const auto key : {HKEY{}, closed}) {
        std::array<wchar_t, 9> name{};
        std::array<std::uint8_t, 9> data{};
        std::array<char, 9> text{};
        std::uint32_t number = 0;
        std::uint32_t length = 0;
        HKEY opened{};
        EXPECT_EQ(hive.RegOpenKeyExW(key, L"A", 0, KEY_READ, opened), RegistryResult::InvalidHandle);
        EXPECT_EQ(hive.RegQueryInfoKeyW(key, number), RegistryResult::InvalidHandle);
        EXPECT_EQ(hive.RegEnumKeyExW(key, 0, name, length), RegistryResult::InvalidHandle);
        EXPECT_EQ(hive.RegEnumValueW(key, 0, name, length, number, data, length), RegistryResult::InvalidHandle);
        EXPECT_EQ(hive.RegDeleteKeyW(key, L"A"), RegistryResult::InvalidHandle);
        EXPECT_EQ(hive.RegQueryValueExA(key, nullptr, number, text, length), RegistryResult::InvalidHandle);
        EXPECT_EQ(hive.RegCloseKey(key), RegistryResult::InvalidHandle);
    }
}

TEST(RegistryHive, SubkeysAreEnumeratedInCaseInsensitiveOrder) {
    RegistryHive hive;
    for (const auto* name : {L"banana", L"Cherry", L"Apple", L"apricot"}) {
        hive.makeKey(HKEY_CURRENT_USER, std::wstring(L"K\\") + name);
    }
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    EXPECT_THAT(key.getSubkeys(), ElementsAre(L"Apple", L"apricot", L"banana", L"Cherry"));
    std::uint32_t count = 0;
    EXPECT_EQ(hive.RegQueryInfoKeyW(key.get(), count), RegistryResult::Success);
    EXPECT_EQ(count, 4U);
    std::array<wchar_t, 20> name{};
    std::uint32_t length = 0;
    EXPECT_EQ(hive.RegEnumKeyExW(key.get(), 4, name, length), RegistryResult::NoMoreItems);
}

TEST(RegistryHive, ASubkeyAddedBetweenTwoQueriesIsCounted) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"K\\b");
    hive.makeKey(HKEY_CURRENT_USER, L"K\\c");
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    EXPECT_THAT(key.getSubkeys(), ElementsAre(L"b", L"c"));
    hive.makeKey(HKEY_CURRENT_USER, L"K\\a");
    EXPECT_THAT(key.getSubkeys(), ElementsAre(L"a", L"b", L"c"));
    hive.removeTree(HKEY_CURRENT_USER, L"K\\b");
    EXPECT_THAT(key.getSubkeys(), ElementsAre(L"a", L"c"));
}

TEST(RegistryHive, ASubkeyNameNeedsRoomForItsTerminator) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"K\\abc");
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    std::array<wchar_t, 4> enough{};
    std::array<wchar_t, 3> tooSmall{};
    std::uint32_t length = 0;
    EXPECT_EQ(hive.RegEnumKeyExW(key.get(), 0, tooSmall, length), RegistryResult::MoreData);
    EXPECT_EQ(hive.RegEnumKeyExW(key.get(), 0, enough, length), RegistryResult::Success);
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(std::wstring(enough.data()), L"abc");
}

TEST(RegistryHive, ValuesAreEnumeratedInTheOrderTheyWereFirstSet) {
    RegistryHive hive;
    hive.setValue(HKEY_CURRENT_USER, L"K", makeTextValue(L"zebra", L"1"));
    hive.setValue(HKEY_CURRENT_USER, L"K", makeTextValue(L"", L"default"));
    hive.setValue(HKEY_CURRENT_USER, L"K", makeTextValue(L"ant", L"2"));
    hive.setValue(HKEY_CURRENT_USER, L"K", makeNumberValue(L"ZEBRA", 7));
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    auto number = makeNumberValue(L"zebra", 7);
    EXPECT_THAT(key.getValues(), ElementsAre(number, makeTextValue(L"", L"default"), makeTextValue(L"ant", L"2")));
}

TEST(RegistryHive, AValueThatDoesNotFitTheBufferReturnsMoreData) {
    RegistryHive hive;
    hive.setValue(HKEY_CURRENT_USER, L"K", {L"name", REG_BINARY, std::vector<std::uint8_t>(10, 1)});
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    std::array<wchar_t, 5> name{};
    std::array<wchar_t, 4> shortName{};
    std::array<std::uint8_t, 10> data{};
    std::array<std::uint8_t, 9> shortData{};
    std::uint32_t nameLength = 0;
    std::uint32_t type = 0;
    std::uint32_t dataLength = 0;
    EXPECT_EQ(hive.RegEnumValueW(key.get(), 0, shortName, nameLength, type, data, dataLength),
              RegistryResult::MoreData);
    EXPECT_EQ(hive.RegEnumValueW(key.get(), 0, name, nameLength, type, shortData, dataLength),
              RegistryResult::MoreData);
    EXPECT_EQ(hive.RegEnumValueW(key.get(), 0, name, nameLength, type, data, dataLength), RegistryResult::Success);
    EXPECT_EQ(dataLength, 10U);
    EXPECT_EQ(hive.RegEnumValueW(key.get(), 1, name, nameLength, type, data, dataLength), RegistryResult::NoMoreItems);
}

TEST(RegistryHive, OnlyAKeyWithoutSubkeysIsDeleted) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"K\\Sub");
    EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, L"k\\SUB"), RegistryResult::Success);
    EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, L"K\\Sub"), RegistryResult::NotFound);
    EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, L"K"), RegistryResult::Success);
    EXPECT_FALSE(hive.hasKey(HKEY_CURRENT_USER, L"K"));
}

TEST(RegistryHive, ARootIsNeverDeleted) {
    RegistryHive hive;
    EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, L""), RegistryResult::AccessDenied);
    EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, nullptr), RegistryResult::AccessDenied);
    EXPECT_TRUE(hasKey(hive, L""));
}

TEST(RegistryHive, AHandleOfADeletedKeyIsInvalidButCanBeClosed) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"K\\Sub\\Leaf");
    HKEY sub{};
    HKEY leaf{};
    ASSERT_EQ(hive.RegOpenKeyExW(HKEY_CURRENT_USER, L"K\\Sub", 0, KEY_READ, sub), RegistryResult::Success);
    ASSERT_EQ(hive.RegOpenKeyExW(HKEY_CURRENT_USER, L"K\\Sub\\Leaf", 0, KEY_READ, leaf), RegistryResult::Success);
    ASSERT_TRUE(hive.removeTree(HKEY_CURRENT_USER, L"K\\Sub"));
    std::uint32_t count = 0;
    EXPECT_EQ(hive.RegQueryInfoKeyW(sub, count), RegistryResult::InvalidHandle);
    EXPECT_EQ(hive.RegQueryInfoKeyW(leaf, count), RegistryResult::InvalidHandle);
    EXPECT_EQ(hive.RegCloseKey(sub), RegistryResult::Success);
    EXPECT_EQ(hive.RegCloseKey(leaf), RegistryResult::Success);
}

TEST(RegistryHive, DeletingRelativeToAnOpenKeyDeletesItsSubkey) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"K\\Sub");
    hive.makeKey(HKEY_CURRENT_USER, L"Sub");
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    EXPECT_EQ(hive.RegDeleteKeyW(key.get(), L"Sub"), RegistryResult::Success);
    EXPECT_TRUE(hasKey(hive, L"Sub"));
    EXPECT_FALSE(hasKey(hive, L"K\\Sub"));
}

TEST(RegistryHive, TheNarrowQueryReturnsUtf8WithItsTerminator) {
    RegistryHive hive;
    hive.setValue(HKEY_LOCAL_MACHINE, L"K", makeTextValue(L"", L"\u00e4b"));
    hive.setValue(HKEY_LOCAL_MACHINE, L"K", {L"raw", REG_BINARY, {1, 2, 0}});
    const Key key(hive, HKEY_LOCAL_MACHINE, L"K");
    std::array<char, 4> data{};
    std::uint32_t type = 0;
    std::uint32_t length = 0;
    EXPECT_EQ(hive.RegQueryValueExA(key.get(), nullptr, type, data, length), RegistryResult::Success);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(std::string(data.data(), length), std::string("\xC3\xA4"
                                                            "b\0",
                                                            4));
    EXPECT_EQ(hive.RegQueryValueExA(key.get(), "RAW", type, data, length), RegistryResult::Success);
    EXPECT_EQ(length, 3U);
    EXPECT_EQ(hive.RegQueryValueExA(key.get(), "absent", type, data, length), RegistryResult::NotFound);
    std::array<char, 3> tooSmall{};
    EXPECT_EQ(hive.RegQueryValueExA(key.get(), "", type, tooSmall, length), RegistryResult::MoreData);
}

TEST(RegistryHive, ManyKeysAndValuesAreReadByIndexInReasonableTime) {
    RegistryHive hive;
    constexpr int count = 50000;
    for (int i = 0; i < count; ++i) {
        hive.setValue(HKEY_CURRENT_USER, L"K", makeNumberValue(L"v" + std::to_wstring(i), 1));
        hive.makeKey(HKEY_CURRENT_USER, L"K\\k" + std::to_wstring(i));
    }
    const Key key(hive, HKEY_CURRENT_USER, L"K");
    EXPECT_EQ(namesOf(key.getValues()).size(), static_cast<std::size_t>(count));
    EXPECT_EQ(key.getSubkeys().size(), static_cast<std::size_t>(count));
}

TEST(RegistryHive, SeveralThreadsReadAndChangeConcurrently) {
    RegistryHive hive;
    hive.makeKey(HKEY_CURRENT_USER, L"K\\stays");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&hive, t] {
            const auto own = L"K\\own" + std::to_wstring(t);
            for (int i = 0; i < 100; ++i) {
                hive.setValue(HKEY_CURRENT_USER, own, makeNumberValue(L"n", 1));
                EXPECT_TRUE(hasKey(hive, own));
                EXPECT_FALSE(Key(hive, HKEY_CURRENT_USER, L"K").getSubkeys().empty());
                EXPECT_EQ(hive.RegDeleteKeyW(HKEY_CURRENT_USER, own.c_str()), RegistryResult::Success);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(Key(hive, HKEY_CURRENT_USER, L"K").getSubkeys(), ElementsAre(L"stays"));
    EXPECT_EQ(hive.getOpenKeyCount(), 0U);
}

} // namespace
