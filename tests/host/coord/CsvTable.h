// A table of comma-separated values with a header line, read by column name.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace gpstest {

/// One row. A column that does not exist, or a text that is no number, throws std::runtime_error.
class CsvRow {
public:
    CsvRow(const std::map<std::string, std::size_t>* columns, std::vector<std::string> cells)
        : columns_(columns), cells_(std::move(cells)) {}

    const std::string& Text(const std::string& column) const;
    double Number(const std::string& column) const;

private:
    const std::map<std::string, std::size_t>* columns_;
    std::vector<std::string> cells_;
};

/// Cells may be quoted; a quoted cell may hold commas, and a doubled quote for a quote.
class CsvTable {
public:
    /// Throws std::runtime_error when the file cannot be read.
    explicit CsvTable(const std::string& path);
    CsvTable(const CsvTable&) = delete;
    CsvTable& operator=(const CsvTable&) = delete;

    const std::vector<CsvRow>& Rows() const { return rows_; }

private:
    std::map<std::string, std::size_t> columns_;
    std::vector<CsvRow> rows_;
};

/// Path of a file below the folder of real data.
std::string DataPath(const std::string& name);

/// The whole text as a number; throws std::runtime_error when it is none.
double ToNumber(const std::string& text);

}  // namespace gpstest
