// TextTable: columns of text for people.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gpsbook {

/// A text as a line of a terminal can show it: what is no UTF-8, and control characters, as '?'.
std::string Printable(std::string_view text);

/// Characters of a UTF-8 text.
std::size_t WidthOf(std::string_view text);

/// Columns as wide as their widest cell, two blanks between them. Rows are gone through twice, first to
/// measure them, so that a long table needs no memory.
class TextTable {
public:
    struct Column {
        std::string title;
        bool numbers = false;  // to the right
    };

    explicit TextTable(std::vector<Column> columns);

    void Measure(const std::vector<std::string>& cells);

    /// Lines with their ends, indented by two blanks; nothing stands behind the last cell.
    std::string Head() const;
    std::string Line(const std::vector<std::string>& cells) const;

private:
    std::vector<Column> columns_;
    std::vector<std::size_t> widths_;
};

}  // namespace gpsbook
