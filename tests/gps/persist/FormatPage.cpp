#include "tests/gps/persist/FormatPage.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <fstream>

#include "tests/gps/persist/GoldenRecords.h"

namespace test {

namespace {

std::string Trimmed(std::string text) {
    while (!text.empty() && text.front() == ' ') text.erase(0, 1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\r')) text.pop_back();
    return text;
}

/// The cells of a line "| a | b |".
std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    std::size_t at = 1;
    for (std::size_t end; (end = line.find('|', at)) != std::string::npos; at = end + 1)
        cells.push_back(Trimmed(line.substr(at, end - at)));
    return cells;
}

int NumberIn(const std::string& cell) { return cell.empty() ? 0 : std::atoi(cell.c_str()); }

bool Contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

}  // namespace

PageTables ReadPage(const std::string& path) {
    PageTables tables;
    std::ifstream in(path);
    EXPECT_TRUE(in) << path;
    std::string name;
    std::map<std::string, std::size_t> columns;
    for (std::string line; std::getline(in, line);) {
        line = Trimmed(line);
        if (line.empty() || line.front() != '|') columns.clear();
        if (line.starts_with('#')) name = Trimmed(line.substr(line.find_first_not_of('#')));
        if (line.starts_with("A ") && line.ends_with(':')) name = line.substr(2, line.size() - 3);
        if (!line.starts_with('|')) continue;
        const std::vector<std::string> cells = Cells(line);
        if (columns.empty()) {
            for (std::size_t i = 0; i < cells.size(); ++i) columns[cells[i]] = i;
            continue;
        }
        if (!columns.contains("#") || !columns.contains("type") || line.starts_with("|---")) continue;
        const auto cell = [&](const char* column) {
            const auto found = columns.find(column);
            return found == columns.end() || found->second >= cells.size() ? std::string()
                                                                           : cells[found->second];
        };
        tables[name].push_back(
            {cell("#"), NumberIn(cell("from")), NumberIn(cell("below")), cell("type"), cell("field")});
    }
    return tables;
}

bool PageDecoder::IsSimple(const std::string& type) const {
    for (const char* simple : {"u8", "i16", "u16", "i32", "u32", "i64", "f32", "f64", "bool4", "bool2",
                               "count", "string", "drawing"})
        if (type == simple) return true;
    return false;
}

std::uint64_t PageDecoder::Number(std::size_t size) {
    std::uint64_t value = 0;
    if (at_ + size > bytes_.size()) {
        ADD_FAILURE() << "the page wants more bytes than the record has";
        at_ = bytes_.size();
        return 0;
    }
    for (std::size_t i = 0; i < size; ++i)
        value |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes_[at_ + i])) << (8 * i);
    at_ += size;
    return value;
}

std::string PageDecoder::Value(const std::string& type) {
    if (type == "u8") return std::to_string(Number(1));
    if (type == "i16" || type == "bool2") return std::to_string(static_cast<std::int16_t>(Number(2)));
    if (type == "u16") return std::to_string(Number(2));
    if (type == "i32" || type == "bool4" || type == "count")
        return std::to_string(static_cast<std::int32_t>(Number(4)));
    if (type == "u32") return std::to_string(Number(4));
    if (type == "i64" || type == "drawing") return std::to_string(static_cast<std::int64_t>(Number(8)));
    if (type == "f32") {
        const auto bits = static_cast<std::uint32_t>(Number(4));
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return Text(value);
    }
    if (type == "f64") {
        const std::uint64_t bits = Number(8);
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return Text(value);
    }
    const auto length = static_cast<std::int32_t>(Number(4));
    if (length <= 0) return "";
    const auto size = static_cast<std::size_t>(length);
    if (at_ + size > bytes_.size()) {
        ADD_FAILURE() << "the page finds a text where there is none";
        at_ = bytes_.size();
        return "";
    }
    at_ += size;
    return std::string(bytes_.substr(at_ - size, size));
}

// "f64", "3 f64".
void PageDecoder::Values(const std::string& type, std::vector<std::string>& values) {
    std::string each = type;
    int times = 1;
    if (std::isdigit(static_cast<unsigned char>(type.front()))) {
        times = NumberIn(type);
        each = Trimmed(type.substr(type.find(' ')));
    }
    if (!IsSimple(each)) {
        ADD_FAILURE() << "the page has a type that it does not explain: " << type;
        return;
    }
    while (times-- > 0) values.push_back(Value(each));
}

int PageDecoder::LastCount() const { return NumberIn(rows_.back().values.front()); }

void PageDecoder::Enveloped(const std::string& table, const std::string& place) {
    EXPECT_EQ(Value("i32"), "1") << "form of a " << table;
    const std::size_t size = static_cast<std::size_t>(Number(4));
    const std::size_t end = at_ + size;
    Record(table, place);
    EXPECT_EQ(at_, end) << "a " << table << " ends where its envelope says";
}

void PageDecoder::Groups(const std::string& place) {
    const int groups = LastCount();
    for (int g = 0; g < groups && !testing::Test::HasFailure(); ++g) {
        const std::string group = place + "/group " + std::to_string(g);
        Record("Group record", group);
        const int points = NumberIn(Value("count"));
        for (int p = 0; p < points && !testing::Test::HasFailure(); ++p)
            Record("Point record", group + "/point " + std::to_string(p));
    }
}

void PageDecoder::Points(const std::string& place) {
    const int points = LastCount();
    for (int p = 0; p < points && !testing::Test::HasFailure(); ++p)
        Record("Point record", place + "/point " + std::to_string(p));
}

void PageDecoder::DatumLists(const std::string& place, int lists) {
    for (int i = 0; i < lists && !testing::Test::HasFailure(); ++i) {
        const std::string list = place + "/list " + std::to_string(i);
        rows_.push_back({list, "", "selectors", {}});
        std::vector<std::string> selectors;
        Values("2 i32", selectors);
        rows_.back().values = selectors;
        const int datums = NumberIn(Value("count"));
        for (int d = 0; d < datums && !testing::Test::HasFailure(); ++d)
            Record("datum", list + "/datum " + std::to_string(d));
    }
}

void PageDecoder::Row(const PageRow& row, const std::string& place) {
    if (row.type == "G times" && row.field == "group record, count P, P point records") return Groups(place);
    if (row.type == "N times" && row.field == "point record") return Points(place);
    if (row.type.empty() && row.field == "for each list: selectors (2 i32), count, as many datums")
        return DatumLists(place, LastCount());
    rows_.push_back({place, row.number, row.type, {}});
    if (row.type == "entity record") return Record("Entity record", place + "/entity");
    if (row.type == "cloud record") return Record("Cloud record", place + "/cloud");
    if (row.type == "conversion record") return Enveloped("Conversion record", place + "/conversion");
    if (row.type == "map library record") return Enveloped("Map library record", place + "/map");
    if (row.type == "datum" || row.type == "projection") return Record(row.type, place + "/" + row.number);
    if (row.type.starts_with('[') && foreign_) {
        const std::string name = row.type.substr(1, row.type.find(']') - 1);
        at_ += foreign_(name, bytes_.substr(at_));
        return;
    }
    std::vector<std::string> values;
    Values(row.type, values);
    rows_.back().values = values;
}

void PageDecoder::Record(const std::string& table, const std::string& place) {
    const auto found = tables_.find(table);
    if (found == tables_.end()) {
        ADD_FAILURE() << "the page has no table of a " << table;
        return;
    }
    bool skip = false;
    for (const PageRow& row : found->second) {
        if (version_ < row.from || (row.below != 0 && version_ >= row.below)) continue;
        if (std::exchange(skip, false)) continue;
        Row(row, place);
        if (testing::Test::HasFailure()) return;
        // A mark tells whether what comes behind it is there.
        if (row.type != "u8" || rows_.back().values != std::vector<std::string>{"0"}) continue;
        if (Contains(row.field, "0: nothing more")) return;
        skip = Contains(row.field, "0: none");
    }
}

}  // namespace test
