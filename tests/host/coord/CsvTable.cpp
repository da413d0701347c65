#include "tests/host/coord/CsvTable.h"

#include <charconv>
#include <fstream>
#include <stdexcept>

namespace gpstest {

namespace {

std::vector<std::string> Split(const std::string& line) {
    std::vector<std::string> cells(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\r') continue;
        if (c == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"')
            cells.back() += line[++i];
        else if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

}  // namespace

const std::string& CsvRow::Text(const std::string& column) const {
    const auto found = columns_->find(column);
    if (found == columns_->end() || found->second >= cells_.size())
        throw std::runtime_error("no column " + column);
    return cells_[found->second];
}

double CsvRow::Number(const std::string& column) const { return ToNumber(Text(column)); }

CsvTable::CsvTable(const std::string& path) {
    std::ifstream in(path);
    std::string line;
    if (!std::getline(in, line)) throw std::runtime_error("cannot read " + path);
    const std::vector<std::string> names = Split(line);
    for (std::size_t i = 0; i < names.size(); ++i) columns_[names[i]] = i;
    while (std::getline(in, line))
        if (!line.empty()) rows_.emplace_back(&columns_, Split(line));
}

std::string DataPath(const std::string& name) { return std::string(GPS_REAL_DATA) + "/" + name; }

double ToNumber(const std::string& text) {
    double v = 0;
    const auto [at, error] = std::from_chars(text.data(), text.data() + text.size(), v);
    if (error != std::errc() || at != text.data() + text.size())
        throw std::runtime_error("'" + text + "' is no number");
    return v;
}

}  // namespace gpstest
