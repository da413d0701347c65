#include "apps/gpsbook/writers/CsvWriter.h"

#include <string>
#include <string_view>

#include "apps/gpsbook/writers/Columns.h"

namespace gpsbook {

namespace {

void AppendQuoted(std::string& line, std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += text;
        return;
    }
    line += '"';
    for (const char c : text) {
        if (c == '"') line += '"';
        line += c;
    }
    line += '"';
}

}  // namespace

CsvWriter::CsvWriter(const RowOutput& output) : out_(output) {
    std::string line;
    for (const Column& column : kColumns) {
        if (!line.empty()) line += ',';
        line += column.name;
    }
    out_.Append(line + '\n');
}

void CsvWriter::Write(const PointRow& row) {
    std::string line;
    for (const Column& column : kColumns) {
        if (&column != &kColumns.front()) line += ',';
        if (const auto* text = std::get_if<TextMember>(&column.value))
            AppendQuoted(line, row.*(*text));
        else
            line += CellText(row, column);
    }
    line += '\n';
    out_.Append(line);
}

void CsvWriter::Close() { out_.Close(); }

}  // namespace gpsbook
