#pragma once

#include "Output.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lumora_config {

/// Prints text in aligned columns. Widths count code points. A cell that is much longer than the others of its column
/// does not widen the column: it is printed in full and its row is not aligned.
class TextTable {
public:
    /// On a terminal, a Truncated cell is truncated if its row would exceed the width.
    enum class Column { Left, Right, Truncated };
    enum class Style { Plain, Emphasis, Faint };
    enum class Padding { Aligned, None };

    explicit TextTable(std::vector<Column> tableColumns);

    /// Adds a row. The cells must be escaped, see EscapedText.h.
    void addRow(std::vector<std::string> cells, Style style = Style::Plain);
    bool isEmpty() const { return rows.empty(); }
    /// Returns one line per row without trailing blanks. Padding does not exceed the width of the output.
    std::string toString(const OutputForm& form, Padding padding = Padding::Aligned) const;

private:
    struct Row {
        std::vector<std::string> cells;
        Style style;
    };

    std::vector<std::size_t> measure(const OutputForm& form) const;
    bool isCut(std::size_t column, const OutputForm& form) const;
    std::string formatRow(const Row& row, const std::vector<std::size_t>& widths, const OutputForm& form) const;

    std::vector<Column> columns;
    std::vector<Row> rows;
};

} // namespace lumora_config
