#include "table/TableCopy.h"

#include "table/ConfigTable.h"

#include <gtest/gtest.h>

#include <string>

namespace ZelUnified {
namespace {

const std::wstring longText(1000, L'x');

} // namespace

TEST(TableCopy, IsEmptyAtFirst) {
    ConfigTable table;
    const TableCopy copy;
    EXPECT_EQ(copy.size(), 0U);
    EXPECT_TRUE(copy.equals(table));
}

TEST(TableCopy, ContainsTheEntriesInTheOrderOfTheTable) {
    ConfigTable table;
    table.store(L"b", longText);
    table.store(L"A", L"");
    const TableCopy copy(table);
    ASSERT_EQ(copy.size(), 2U);
    EXPECT_EQ(copy.getKey(0), L"A");
    EXPECT_EQ(copy.getValue(0), L"");
    EXPECT_EQ(copy.getKey(1), L"b");
    EXPECT_EQ(copy.getValue(1), longText);
}

TEST(TableCopy, KeepsItsEntriesWhenTheTableChanges) {
    ConfigTable table(ConfigMap{{L"a", L"1"}});
    const TableCopy copy(table);
    table.store(L"a", L"2");
    table.remove(L"a");
    ASSERT_EQ(copy.size(), 1U);
    EXPECT_EQ(copy.getValue(0), L"1");
}

TEST(TableCopy, AssigningReplacesTheContents) {
    ConfigTable table(ConfigMap{{L"a", longText}, {L"b", longText}});
    TableCopy copy(table);
    ConfigTable other(ConfigMap{{L"c", L"3"}});
    copy.assign(other);
    ASSERT_EQ(copy.size(), 1U);
    EXPECT_EQ(copy.getKey(0), L"c");
    EXPECT_EQ(copy.getValue(0), L"3");
}

TEST(TableCopy, ReservedMemoryChangesNothing) {
    ConfigTable table(ConfigMap{{L"a", L"1"}});
    EXPECT_EQ(TableCopy::countCharacters(table), 2U);
    TableCopy copy(table);
    copy.reserve(100'000);
    ASSERT_EQ(copy.size(), 1U);
    EXPECT_EQ(copy.getValue(0), L"1");
    copy.assign(table);
    EXPECT_TRUE(copy.equals(table));
}

TEST(TableCopy, SwapsTheContents) {
    ConfigTable table(ConfigMap{{L"a", L"1"}});
    TableCopy copy(table);
    TableCopy other;
    other.swap(copy);
    EXPECT_EQ(copy.size(), 0U);
    EXPECT_TRUE(other.equals(table));
}

TEST(TableCopy, DiffersByAnyKeyOrValueIncludingItsCase) {
    ConfigTable table(ConfigMap{{L"ab", L"c"}, {L"d", L"e"}});
    const TableCopy copy(table);
    for (const auto& other :
         {ConfigMap{{L"ab", L"c"}}, ConfigMap{{L"aB", L"c"}, {L"d", L"e"}}, ConfigMap{{L"ab", L"C"}, {L"d", L"e"}},
          ConfigMap{{L"a", L"bc"}, {L"d", L"e"}}, ConfigMap{{L"ab", L"c"}, {L"d", L"e"}, {L"f", L""}}}) {
        ConfigTable changed(other);
        EXPECT_FALSE(copy.equals(changed));
    }
    EXPECT_TRUE(copy.equals(table));
}

} // namespace ZelUnified
