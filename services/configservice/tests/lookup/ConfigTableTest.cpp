#include "lookup/ConfigTable.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ZelUnified {
namespace {

const std::wstring* find(const ConfigTable& table, const std::wstring& key) {
    return table.find(FoldedKey(key));
}

/// Each `step`th of the numbered keys, asked for in another case, has its number for a value.
void expectToHold(const ConfigTable& table, int from, int to, int step) {
    for (int i = from; i < to; i += step) {
        const std::wstring spelling = L"KEY" + std::to_wstring(i);
        const FoldedKey key(spelling);
        ASSERT_TRUE(table.mayHold(key)) << i;
        ASSERT_NE(table.find(key), nullptr) << i;
        ASSERT_EQ(*table.find(key), std::to_wstring(i));
    }
}

TEST(ConfigTable, FindsWhatWasStoredUnderAnySpelling) {
    ConfigTable table;
    table.store(L"Key", L"value");
    ASSERT_NE(find(table, L"KEY"), nullptr);
    EXPECT_EQ(*find(table, L"KEY"), L"value");
    EXPECT_EQ(find(table, L"Key2"), nullptr);
}

TEST(ConfigTable, KeepsTheFirstFormOfAKeyAndTheLastValue) {
    ConfigTable table;
    table.store(L"Key", L"old");
    table.store(L"KEY", L"new");
    EXPECT_EQ(table.getKeys(), std::vector<std::wstring>{L"Key"});
    EXPECT_EQ(*find(table, L"key"), L"new");
}

TEST(ConfigTable, ForgetsWhatIsRemoved) {
    ConfigTable table(ConfigMap{{L"First", L"1"}, {L"Second", L"2"}});
    EXPECT_TRUE(table.remove(L"FIRST"));
    EXPECT_FALSE(table.remove(L"First"));
    EXPECT_EQ(find(table, L"First"), nullptr);
    EXPECT_EQ(table.getKeys(), std::vector<std::wstring>{L"Second"});
}

TEST(ConfigTable, ListsKeysInTheOrderOfTheMap) {
    ConfigTable table;
    for (const auto* key : {L"b", L"C", L"a"}) {
        table.store(key, L"");
    }
    EXPECT_EQ(table.getKeys(), (std::vector<std::wstring>{L"a", L"b", L"C"}));
}

TEST(ConfigTable, HoldsOnlyTheNewValuesOnceReplaced) {
    ConfigTable table(ConfigMap{{L"Old", L"1"}});
    table.replace(ConfigMap{{L"New", L"2"}});
    EXPECT_EQ(find(table, L"Old"), nullptr);
    EXPECT_EQ(*find(table, L"New"), L"2");
    table.clear();
    EXPECT_EQ(find(table, L"New"), nullptr);
    EXPECT_TRUE(table.getMap().empty());
}

TEST(ConfigTable, NeverDeniesAKeyThatItHolds) {
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
    ASSERT_NE(find(table, L"KEY"), nullptr);
    EXPECT_EQ(*find(table, L"KEY"), L"1");
    EXPECT_TRUE(table.remove(L"KEY"));
    EXPECT_TRUE(table.remove(L"\u00e4RGER"));
    EXPECT_EQ(find(table, L"\u212Aey"), nullptr);
    EXPECT_TRUE(table.getMap().empty());
}

} // namespace
} // namespace ZelUnified
