#pragma once

#include <string>
#include <vector>

namespace lumora_config {

/// Text in columns that line up. Widths are counted in code points.
class TextTable {
public:
    enum class Align { Left, Right };
    enum class Style { Plain, Emphasis, Faint };

    explicit TextTable(std::vector<Align> alignments);

    void addRow(std::vector<std::string> cells, Style style = Style::Plain);
    bool isEmpty() const { return rows.empty(); }
    /// One line for each row, without trailing blanks. Escape sequences only with `coloured`.
    std::string toString(bool coloured) const;

private:
    struct Row {
        std::vector<std::string> cells;
        Style style;
    };

    std::vector<std::size_t> measure() const;
    std::string layOut(const Row& row, const std::vector<std::size_t>& widths) const;

    std::vector<Align> columns;
    std::vector<Row> rows;
};

/// Text made fit for one line of a terminal: control characters are shown, not obeyed.
std::string toOneLine(const std::string& text);

} // namespace lumora_config
