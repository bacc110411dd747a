#include "TextTable.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumora_config {

namespace {

constexpr auto gap = "  ";

std::size_t widthOf(const std::string& text) {
    const auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
    return static_cast<std::size_t>(std::ranges::count_if(text, isFirstByte));
}

std::string colour(TextTable::Style style, const std::string& line) {
    switch (style) {
    case TextTable::Style::Emphasis:
        return "\x1b[1;32m" + line + "\x1b[0m";
    case TextTable::Style::Faint:
        return "\x1b[2m" + line + "\x1b[0m";
    case TextTable::Style::Plain:
        break;
    }
    return line;
}

} // namespace

TextTable::TextTable(std::vector<Align> alignments) : columns(std::move(alignments)) {}

void TextTable::addRow(std::vector<std::string> cells, Style style) {
    cells.resize(columns.size());
    rows.push_back({std::move(cells), style});
}

std::string TextTable::toString(bool coloured) const {
    const auto widths = measure();
    std::string text;
    for (const auto& row : rows) {
        const auto line = layOut(row, widths);
        text += (coloured ? colour(row.style, line) : line) + '\n';
    }
    return text;
}

std::vector<std::size_t> TextTable::measure() const {
    std::vector<std::size_t> widths(columns.size());
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], widthOf(row.cells[i]));
        }
    }
    return widths;
}

std::string TextTable::layOut(const Row& row, const std::vector<std::size_t>& widths) const {
    std::string line;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const std::string padding(widths[i] - widthOf(row.cells[i]), ' ');
        line += i == 0 ? "" : gap;
        line += columns[i] == Align::Right ? padding + row.cells[i] : row.cells[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string toOneLine(const std::string& text) {
    constexpr std::array digits{'0', '1', '2', '3', '4', '5', '6', '7', '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
    std::string shown;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\n') {
            shown += "\\n";
        } else if (byte < 0x20U || byte == 0x7FU) {
            shown += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
        } else {
            shown += character;
        }
    }
    return shown;
}

} // namespace lumora_config
