#include "table/ConfigTable.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

std::optional<std::wstring_view> find(const ConfigTable& table, const std::wstring& key) {
    return table.find(FoldedKey(key));
}

/// Expects each `step`th numbered key, in another case, to have its number as its value.
void expectToHold(const ConfigTable& table, int from, int to, int step) {
    for (int i = from; i < to; i += step) {
        const std::wstring spelling = L"KEY" + std::to_wstring(i);
        const FoldedKey key(spelling);
        ASSERT_TRUE(table.mayHold(key)) << i;
        ASSERT_TRUE(table.find(key)) << i;
        ASSERT_EQ(*table.find(key), std::to_wstring(i));
    }
}

TEST(ConfigTable, FindsAStoredKeyIgnoringCase) {
    ConfigTable table;
    table.store(L"Key", L"value");
    ASSERT_TRUE(find(table, L"KEY"));
    EXPECT_EQ(*find(table, L"KEY"), L"value");
    EXPECT_FALSE(find(table, L"Key2"));
}

TEST(ConfigTable, KeepsTheFirstSpellingOfAKeyAndTheLastValue) {
    ConfigTable table;
    table.store(L"Key", L"old");
    table.store(L"KEY", L"new");
    EXPECT_EQ(table.getKeys(), std::vector<std::wstring>{L"Key"});
    EXPECT_EQ(*find(table, L"key"), L"new");
}

TEST(ConfigTable, DoesNotFindARemovedKey) {
    ConfigTable table(ConfigMap{{L"First", L"1"}, {L"Second", L"2"}});
    EXPECT_TRUE(table.remove(L"FIRST"));
    EXPECT_FALSE(table.remove(L"First"));
    EXPECT_FALSE(find(table, L"First"));
    EXPECT_EQ(table.getKeys(), std::vector<std::wstring>{L"Second"});
}

TEST(ConfigTable, ListsKeysInTheOrderOfTheMap) {
    ConfigTable table;
    for (const auto* key : {L"b", L"C", L"a"}) {
        table.store(key, L"");
    }
    EXPECT_EQ(table.getKeys(), (std::vector<std::wstring>{L"a", L"b", L"C"}));
}

TEST(ConfigTable, LoadKeepsTheFirstValueOfAKeyAndItsLowercaseSpelling) {
    ConfigTable table;
    const std::wstring key = L"KEY";
    const std::wstring again = L"Key";
    EXPECT_TRUE(table.load(FoldedKey(key), L"first"));
    EXPECT_FALSE(table.load(FoldedKey(again), L"second"));
    EXPECT_EQ(table.getKeys(), std::vector<std::wstring>{L"key"});
    EXPECT_EQ(*find(table, L"Key"), L"first");
}

TEST(ConfigTable, KeepsValuesThatGrowAndShrink) {
    ConfigTable table(ConfigMap{{L"a", L"loaded"}, {L"b", L""}});
    table.store(L"c", L"stored");
    for (const std::size_t length : {3U, 0U, 100U, 99U, 1U, 101U, 2U}) {
        for (const std::wstring key : {L"a", L"b", L"c"}) {
            const std::wstring value(length, key.front());
            table.store(key, value);
            ASSERT_EQ(*find(table, key), value);
        }
    }
    EXPECT_EQ(table.getKeys(), (std::vector<std::wstring>{L"a", L"b", L"c"}));
}

TEST(ConfigTable, ReplaceKeepsOnlyTheNewValues) {
    ConfigTable table(ConfigMap{{L"Old", L"1"}});
    table.replace(ConfigMap{{L"New", L"2"}});
    EXPECT_FALSE(find(table, L"Old"));
    EXPECT_EQ(*find(table, L"New"), L"2");
    table.clear();
    EXPECT_FALSE(find(table, L"New"));
    EXPECT_TRUE(table.isEmpty());
}

TEST(ConfigTable, MayHoldReturnsTrueForEveryHeldKey) {
    ConfigTable table;
    for (int i = 0; i < 1000; ++i) {
        const std::wstring key = L"Key" + std::to_wstring(i);
        table.store(key, std::to_wstring(i));
        ASSERT_TRUE(table.mayHold(FoldedKey(key))) << i;
    }
    expectToHold(table, 0, 1000, 1);
    for (int i = 0; i < 1000; i += 3) {
        ASSERT_TRUE(table.remove(L"kEY" + std::to_wstring(i)));
    }
    expectToHold(table, 1, 1000, 3);
    expectToHold(table, 2, 1000, 3);
    table.replace(ConfigMap{{L"New", L""}});
    table.store(L"Newer", L"");
    for (const std::wstring key : {L"NEW", L"newer"}) {
        EXPECT_TRUE(table.mayHold(FoldedKey(key))) << KyrCoreUtils::toString(key);
    }
}

TEST(ConfigTable, FindsAndRemovesKeysBeyondAsciiInAnotherCase) {
    ConfigTable table;
    table.store(L"\u212Aey", L"1"); // the Kelvin sign, whose lower case is an ASCII letter
    table.store(L"\u00c4rger", L"2");
    ASSERT_TRUE(find(table, L"KEY"));
    EXPECT_EQ(*find(table, L"KEY"), L"1");
    EXPECT_TRUE(table.remove(L"KEY"));
    EXPECT_TRUE(table.remove(L"\u00e4RGER"));
    EXPECT_FALSE(find(table, L"\u212Aey"));
    EXPECT_TRUE(table.isEmpty());
}

std::vector<std::pair<std::wstring, std::wstring>> listOf(ConfigTable& table) {
    std::vector<std::pair<std::wstring, std::wstring>> pairs;
    for (const auto& entry : table.list()) {
        pairs.emplace_back(entry->getKey(), entry->getValue());
    }
    return pairs;
}

std::vector<std::wstring> toVector(const KeyList& keys) {
    std::vector<std::wstring> all;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        all.emplace_back(keys[i]);
    }
    return all;
}

/// Returns one of a few keys of all kinds, so that equal ones meet: empty, with a zero, beyond ASCII and the basic
/// plane, and very long. The case is random.
std::wstring someKey(std::mt19937& chance) {
    static const std::vector<std::wstring> keys = {
        L"",
        L"a",
        L"_",
        L"[",
        L"`",
        L"z",
        std::wstring(L"a\0b", 3),
        std::wstring(L"a\0", 2),
        L"\u00e4rger",
        L"k\u00f6nig",
        L"key",
        L"\u212Aey",
        L"\U00010428",
        L"\uff5a",
        L"stra\u00dfe",
        L"numbered1",
        L"numbered12",
        L"numbered123",
        std::wstring(64, L'l'),
        std::wstring(65, L'l'),
        std::wstring(64, L'l') + L"\u00e9",
        std::wstring(200, L'm'),
    };
    std::wstring key = keys[chance() % keys.size()];
    for (auto& unit : key) {
        if (chance() % 2 == 0 && unit >= L'a' && unit <= L'z') {
            unit = static_cast<wchar_t>(unit - L'a' + L'A');
        } else if (chance() % 2 == 0 && unit == L'\u00e4') {
            unit = L'\u00c4';
        }
    }
    return key;
}

TEST(ConfigTable, EqualsAnOrderedMapAfterRandomOperations) {
    std::mt19937 chance(20); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same steps in each run
    for (int round = 0; round < 300; ++round) {
        ConfigTable table;
        ConfigMap map;
        for (int step = 0; step < 60; ++step) {
            const std::wstring key = someKey(chance);
            const std::wstring value(chance() % 3 == 0 ? chance() % 50 : chance() % 3,
                                     static_cast<wchar_t>('A' + step));
            switch (chance() % 16) {
            case 0:
                table.clear();
                map.clear();
                break;
            case 1: {
                ConfigMap next{{key, value}, {someKey(chance), L"x"}, {someKey(chance), L"y"}};
                map = next;
                table.replace(std::move(next));
                break;
            }
            case 2:
            case 3:
            case 4:
            case 5:
                ASSERT_EQ(table.remove(key), map.erase(key) == 1);
                break;
            case 6:
            case 7:
            case 8:
                ASSERT_EQ(table.load(FoldedKey(key), value), map.emplace(KyrCoreUtils::toLowercase(key), value).second);
                break;
            case 9:
                ASSERT_EQ(table.getKeys(), toVector(table.listKeys()));
                break;
            default:
                table.store(key, value);
                map.insert_or_assign(key, value);
            }
            const std::wstring asked = someKey(chance);
            const auto held = map.find(asked);
            const auto found = find(table, asked);
            ASSERT_EQ(found.has_value(), held != map.end());
            ASSERT_TRUE(!found || (*found == held->second && table.mayHold(FoldedKey(asked))));
            if (chance() % 4 == 0) {
                ASSERT_EQ(listOf(table), (std::vector<std::pair<std::wstring, std::wstring>>(map.begin(), map.end())));
            }
        }
    }
}

TEST(ConfigTable, StoresAPartOfItsOwnValue) {
    ConfigTable table;
    table.store(L"k", L"0123456789");
    table.store(L"k", find(table, L"k")->substr(3));
    EXPECT_EQ(*find(table, L"k"), L"3456789");
    table.store(L"other", L"0123456789ABCDEF");
    table.store(L"k", *find(table, L"other")); // outgrows its capacity
    table.store(L"k", find(table, L"k")->substr(10));
    EXPECT_EQ(*find(table, L"k"), L"ABCDEF");
    table.store(L"new", *find(table, L"k"));
    table.store(L"k", L"");
    EXPECT_EQ(*find(table, L"k"), L"");
    EXPECT_EQ(*find(table, L"new"), L"ABCDEF");
}

} // namespace
} // namespace ZelUnified
