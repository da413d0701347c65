#include "apps/gpsbook/commands/TextTable.h"

#include <algorithm>

#include "apps/gpsbook/writers/TableText.h"

namespace gpsbook {

std::string Printable(std::string_view text) {
    std::string clean = CleanText(text);
    std::replace_if(
        clean.begin(), clean.end(), [](char c) { return c == '\n' || c == '\t'; }, '?');
    return clean;
}

std::size_t WidthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

TextTable::TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {
    for (const Column& column : columns_) widths_.push_back(WidthOf(column.title));
}

void TextTable::Measure(const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < widths_.size(); ++i) widths_[i] = std::max(widths_[i], WidthOf(cells[i]));
}

std::string TextTable::Head() const {
    std::vector<std::string> titles;
    for (const Column& column : columns_) titles.push_back(column.title);
    return Line(titles);
}

std::string TextTable::Line(const std::vector<std::string>& cells) const {
    std::string line;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        const std::string pad(widths_[i] - std::min(widths_[i], WidthOf(cells[i])), ' ');
        line += "  ";
        line += columns_[i].numbers ? pad + cells[i] : cells[i] + pad;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line + '\n';
}

}  // namespace gpsbook
