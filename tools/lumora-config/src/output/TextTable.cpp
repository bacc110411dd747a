#include "TextTable.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

namespace lumora_config {

namespace {

constexpr std::string_view gap = "  ";
constexpr std::string_view ellipsis = "…";
constexpr std::size_t narrowestTruncated = 10;

bool isFirstByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, isFirstByte));
}

/// Truncates the text to `width` code points; the last one marks the truncation.
std::string truncate(const std::string& text, std::size_t width) {
    std::size_t count = 0;
    std::size_t end = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isFirstByte(text[i])) {
            continue;
        }
        ++count;
        if (count == width) {
            end = i;
        } else if (count > width) {
            return text.substr(0, end).append(ellipsis);
        }
    }
    return text;
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

TextTable::TextTable(std::vector<Column> tableColumns) : columns(std::move(tableColumns)) {}

void TextTable::addRow(std::vector<std::string> cells, Style style) {
    cells.resize(columns.size());
    rows.push_back({std::move(cells), style});
}

std::string TextTable::toString(const OutputForm& form, Padding padding) const {
    const auto widths = padding == Padding::Aligned ? measure(form) : std::vector<std::size_t>(columns.size());
    std::string text;
    for (const auto& row : rows) {
        const auto line = formatRow(row, widths, form);
        text += form.coloured ? colour(row.style, line) : line;
        text += '\n';
    }
    return text;
}

std::vector<std::size_t> TextTable::measure(const OutputForm& form) const {
    std::vector<std::size_t> widths(columns.size());
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const auto widest = isCut(i, form) ? form.columns : form.columns / 2;
        for (const auto& row : rows) {
            widths[i] = std::max(widths[i], std::min(widthOf(row.cells[i]), widest));
        }
    }
    for (std::size_t i = 0; i < widths.size(); ++i) {
        if (isCut(i, form)) {
            const auto all = std::accumulate(widths.begin(), widths.end(), gap.size() * (widths.size() - 1));
            const auto others = all - widths[i];
            const auto room = form.columns > others ? form.columns - others : 0;
            widths[i] = std::min(widths[i], std::max(room, narrowestTruncated));
        }
    }
    return widths;
}

bool TextTable::isCut(std::size_t column, const OutputForm& form) const {
    return form.terminal && columns[column] == Column::Truncated;
}

std::string TextTable::formatRow(const Row& row, const std::vector<std::size_t>& widths, const OutputForm& form) const {
    std::string line;
    std::size_t position = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        if (i != 0) {
            line += gap;
            position += gap.size();
        }
        const auto cell = isCut(i, form) && widths[i] != 0 ? truncate(row.cells[i], widths[i]) : row.cells[i];
        const auto width = widthOf(cell);
        position += width;
        const auto wanted = widths[i] > width ? widths[i] - width : 0;
        const std::string padding(std::min(wanted, form.columns > position ? form.columns - position : 0), ' ');
        position += padding.size();
        line += columns[i] == Column::Right ? padding + cell : cell + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace lumora_config
