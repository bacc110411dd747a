#pragma once

#include "Output.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lumora_config {

/// Text in columns that line up. Widths are counted in code points. A cell much longer than its column's others is not
/// made room for: it is printed whole, and its row does not line up.
class TextTable {
public:
    /// A cell of a truncated column is cut on a terminal when its row would be longer than a line there.
    enum class Column { Left, Right, Truncated };
    enum class Style { Plain, Emphasis, Faint };
    enum class Padding { Aligned, None };

    explicit TextTable(std::vector<Column> tableColumns);

    /// The cells must be escaped, see EscapedText.h.
    void addRow(std::vector<std::string> cells, Style style = Style::Plain);
    bool isEmpty() const { return rows.empty(); }
    /// Returns one line for each row, without trailing blanks and without blanks beyond the output's width that only
    /// align.
    std::string toString(const OutputForm& form, Padding padding = Padding::Aligned) const;

private:
    struct Row {
        std::vector<std::string> cells;
        Style style;
    };

    std::vector<std::size_t> measure(const OutputForm& form) const;
    bool isCut(std::size_t column, const OutputForm& form) const;
    std::string layOut(const Row& row, const std::vector<std::size_t>& widths, const OutputForm& form) const;

    std::vector<Column> columns;
    std::vector<Row> rows;
};

} // namespace lumora_config
