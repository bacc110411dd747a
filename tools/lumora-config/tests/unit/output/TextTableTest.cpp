#include "output/TextTable.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

namespace lumora_config {

using Column = TextTable::Column;
using Padding = TextTable::Padding;
using Style = TextTable::Style;

namespace {

constexpr OutputForm pipe;
constexpr OutputForm narrowTerminal{true, 40, false};

/// Returns the length of the longest line in code points.
std::size_t widestLine(const std::string& text) {
    std::size_t widest = 0;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
        widest = std::max(widest, static_cast<std::size_t>(std::ranges::count_if(line, isFirstByte)));
    }
    return widest;
}

/// Returns a table like that of `list`.
TextTable makeList(const std::string& key, const std::string& value) {
    TextTable table({Column::Left, Column::Left, Column::Truncated, Column::Left});
    table.addRow({"", "KEY", "VALUE", "STORE"});
    table.addRow({"", key, value, "A"});
    table.addRow({"*", "short", "1", "Second"});
    return table;
}

} // namespace

TEST(TextTable, AlignsColumnsByCodePoints) {
    TextTable table({Column::Right, Column::Left, Column::Left});
    table.addRow({"7", "größe", "x"});
    table.addRow({"600", "a", "y"});
    EXPECT_EQ(table.toString(pipe), "  7  größe  x\n600  a      y\n");
}

TEST(TextTable, RemovesTrailingBlanks) {
    TextTable table({Column::Left, Column::Left});
    table.addRow({"a", ""});
    table.addRow({"", "long"});
    EXPECT_EQ(table.toString(pipe), "a\n   long\n");
}

TEST(TextTable, ColoursOnlyIfRequested) {
    TextTable table({Column::Left});
    table.addRow({"x"}, Style::Emphasis);
    EXPECT_EQ(table.toString(pipe), "x\n");
    EXPECT_EQ(table.toString({true, 80, true}), "\x1b[1;32mx\x1b[0m\n");
}

TEST(TextTable, TruncatesACellToTheWidthOfATerminal) {
    const auto table = makeList("key", std::string(1000, 'v'));
    EXPECT_EQ(table.toString(narrowTerminal), "   KEY    VALUE                   STORE\n"
                                              "   key    vvvvvvvvvvvvvvvvvvvvv…  A\n"
                                              "*  short  1                       Second\n");
    EXPECT_EQ(widestLine(table.toString(narrowTerminal)), narrowTerminal.columns);
}

TEST(TextTable, DoesNotTruncateACellThatFits) {
    EXPECT_EQ(makeList("key", "größer").toString(narrowTerminal), "   KEY    VALUE   STORE\n"
                                                                  "   key    größer  A\n"
                                                                  "*  short  1       Second\n");
}

TEST(TextTable, TruncatesByCodePoints) {
    TextTable table({Column::Truncated});
    table.addRow({"äöüäöüäöüäöüäöü"});
    EXPECT_EQ(table.toString({true, 12, false}), "äöüäöüäöüäö…\n");
    EXPECT_EQ(table.toString({true, 15, false}), "äöüäöüäöüäöüäöü\n");
}

TEST(TextTable, DoesNotTruncateForAPipe) {
    const std::string value(1000, 'v');
    for (const auto padding : {Padding::Aligned, Padding::None}) {
        EXPECT_THAT(makeList("key", value).toString(pipe, padding), testing::HasSubstr("  " + value + "  A\n"));
    }
}

TEST(TextTable, OnlyGapsSeparateCellsWithoutPadding) {
    EXPECT_EQ(makeList("key", "value").toString(pipe, Padding::None), "  KEY  VALUE  STORE\n"
                                                                      "  key  value  A\n"
                                                                      "*  short  1  Second\n");
}

TEST(TextTable, DoesNotPadARowBeyondTheWidthForALongCellOfAnother) {
    TextTable table({Column::Left, Column::Right, Column::Left, Column::Left});
    const std::string longCell(1000, 'x');
    table.addRow({longCell, longCell, longCell, longCell});
    table.addRow({"a", "b", "c", "d"});
    for (const auto& form : {pipe, narrowTerminal}) {
        std::istringstream text(table.toString(form));
        std::string line;
        std::getline(text, line);
        EXPECT_EQ(line, longCell + "  " + longCell + "  " + longCell + "  " + longCell);
        std::getline(text, line);
        EXPECT_LE(line.size(), form.columns + 6); // the last two cells and their gaps
    }
}

} // namespace lumora_config
