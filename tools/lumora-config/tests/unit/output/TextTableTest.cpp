#include "output/TextTable.h"

#include <gtest/gtest.h>

namespace lumora_config {

using Align = TextTable::Align;
using Style = TextTable::Style;

TEST(TextTable, LinesUpColumnsByCodePoints) {
    TextTable table({Align::Right, Align::Left, Align::Left});
    table.addRow({"7", "größe", "x"});
    table.addRow({"600", "a", "y"});
    EXPECT_EQ(table.toString(false), "  7  größe  x\n600  a      y\n");
}

TEST(TextTable, LeavesNoBlanksAtTheEnd) {
    TextTable table({Align::Left, Align::Left});
    table.addRow({"a", ""});
    table.addRow({"", "long"});
    EXPECT_EQ(table.toString(false), "a\n   long\n");
}

TEST(TextTable, ColoursOnlyWhenAsked) {
    TextTable table({Align::Left});
    table.addRow({"x"}, Style::Emphasis);
    EXPECT_EQ(table.toString(false), "x\n");
    EXPECT_EQ(table.toString(true), "\x1b[1;32mx\x1b[0m\n");
}

TEST(ToOneLine, ShowsControlCharactersInsteadOfObeyingThem) {
    EXPECT_EQ(toOneLine("a\nb\x1b[31m\tü"), "a\\nb\\x1b[31m\\x09ü");
}

} // namespace lumora_config
