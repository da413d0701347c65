// The tables of the layout are those of the pages.
#include <gtest/gtest.h>

#include <charconv>

#include "apps/gpsbook/dump/Layout.h"
#include "tests/apps/gpsbook/writers/TestFolder.h"

namespace gpsbook::test {
namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::vector<std::string> CellsOf(const std::string& line) {
    std::vector<std::string> cells;
    for (std::size_t at = 1; at < line.size();) {
        const std::size_t end = line.find('|', at);
        if (end == std::string::npos) break;
        cells.push_back(Trimmed(line.substr(at, end - at)));
        at = end + 1;
    }
    return cells;
}

using Table = std::vector<std::vector<std::string>>;

/// The first table behind `mark` on a page, its titles first.
Table TableBehind(const std::string& page, const std::string& mark) {
    const std::string text = ReadFile(std::string(GPSBOOK_PAGES) + "/formats/" + page);
    Table table;
    const std::size_t begin = text.find(mark);
    EXPECT_NE(begin, std::string::npos) << mark;
    if (begin == std::string::npos) return table;
    std::istringstream in(text.substr(begin + mark.size()));
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("|---"))
            continue;
        else if (line.starts_with("|"))
            table.push_back(CellsOf(line));
        else if (!table.empty())
            break;
    }
    return table;
}

int ColumnOf(const Table& table, const std::string& title) {
    const auto found = std::find(table[0].begin(), table[0].end(), title);
    return found == table[0].end() ? -1 : static_cast<int>(found - table[0].begin());
}

std::string Cell(const std::vector<std::string>& row, int column) {
    return column < 0 ? std::string() : row.at(static_cast<std::size_t>(column));
}

/// "from below type", as often as the row of the page says: "3 f64" three times.
void AppendRow(std::vector<std::string>& out, const std::string& from, const std::string& below,
               std::string type) {
    int times = 1;
    const auto [end, error] = std::from_chars(type.data(), type.data() + type.size(), times);
    if (error == std::errc{}) type = Trimmed(type.substr(static_cast<std::size_t>(end - type.data())));
    for (int i = 0; i < times; ++i) out.push_back(from + "|" + below + "|" + type);
}

std::vector<std::string> RowsOfPage(const Table& table, std::size_t rows = 1000) {
    std::vector<std::string> out;
    const int from = ColumnOf(table, "from"), below = ColumnOf(table, "below"),
              type = ColumnOf(table, "type");
    for (std::size_t i = 1; i < table.size() && i <= rows; ++i)
        AppendRow(out, Cell(table[i], from), Cell(table[i], below), Cell(table[i], type));
    return out;
}

const char* RecordText(RecordId id) {
    switch (id) {
        case RecordId::entity:
            return "entity record";
        case RecordId::cloud:
            return "cloud record";
        case RecordId::conversion:
            return "conversion record";
        case RecordId::mapLibrary:
            return "map library record";
        case RecordId::datum:
            return "datum";
        case RecordId::projection:
            return "projection";
        case RecordId::bookOptions:
            return "[field-book options](options.md)";
        case RecordId::displayOptions:
            return "[display options](options.md)";
        case RecordId::none:
            break;
    }
    return "";
}

std::vector<std::string> RowsOfLayout(std::span<const Row> rows) {
    std::vector<std::string> out;
    for (const Row& row : rows)
        AppendRow(out, row.from == kAlways ? "" : std::to_string(row.from),
                  row.below == kNoEnd ? "" : std::to_string(row.below),
                  row.record == RecordId::none ? NameOf(row.type) : RecordText(row.record));
    return out;
}

TEST(LayoutPages, RecordsOfTheSectionAreThoseOfThePage) {
    struct Case {
        const char* heading;
        std::span<const Row> rows;
        std::size_t first;  // rows of the page that are meant
    };
    const Case cases[] = {
        {"## Field-book record", BookRows(), 5},         {"## Group record", GroupRows(), 1000},
        {"## Point record", PointRows(), 1000},          {"### Cloud record", CloudRows(), 1000},
        {"### Conversion record", ConversionRows(), 11}, {"A datum:", DatumRows(), 1000},
        {"A projection:", ProjectionRows(), 1000},       {"### Map library record", MapLibraryRows(), 3},
    };
    for (const Case& c : cases)
        EXPECT_EQ(RowsOfLayout(c.rows), RowsOfPage(TableBehind("records.md", c.heading), c.first))
            << c.heading;
}

TEST(LayoutPages, EntityRecordIsThatOfThePage) {
    std::vector<std::string> rows = RowsOfLayout(EntityRows());
    const std::vector<std::string> more = RowsOfLayout(EntityMoreRows());
    rows.insert(rows.end(), more.begin(), more.end());
    EXPECT_EQ(rows, RowsOfPage(TableBehind("records.md", "### Entity record")));
}

/// "type field", with the name of the field.
std::vector<std::string> NamedRows(const Table& table) {
    std::vector<std::string> out;
    const int type = ColumnOf(table, "type"), field = ColumnOf(table, "field");
    for (std::size_t i = 1; i < table.size(); ++i)
        if (Cell(table[i], field).starts_with('`')) {
            const std::string name = Cell(table[i], field);
            out.push_back(Cell(table[i], type) + ' ' + name.substr(1, name.size() - 2));
        }
    return out;
}

std::vector<std::string> NamedRows(std::span<const Row> rows) {
    std::vector<std::string> out;
    for (const Row& row : rows) out.push_back(std::string(NameOf(row.type)) + ' ' + row.name);
    return out;
}

TEST(LayoutPages, RecordsOfOptionsAreThoseOfThePageToTheirNames) {
    EXPECT_EQ(NamedRows(BookOptionRows()), NamedRows(TableBehind("options.md", "The record, 14 bytes")));
    EXPECT_EQ(NamedRows(DisplayEntryRows()), NamedRows(TableBehind("options.md", "An entry:")));
    EXPECT_EQ(NamedRows(PostProcessingRows()), NamedRows(TableBehind("options.md", "The record, 124 bytes")));
    EXPECT_EQ(NamedRows(ObservationFileRows()), NamedRows(TableBehind("options.md", "A file:")));
    EXPECT_EQ(RowsOfLayout(ObservationFileRows()), RowsOfPage(TableBehind("options.md", "A file:")));
}

}  // namespace
}  // namespace gpsbook::test
