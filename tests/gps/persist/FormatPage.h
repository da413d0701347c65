// FormatPage: the tables of a page that describes records, and the decoding of bytes by nothing but them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace test {

struct PageRow {
    std::string number;
    int from = 0, below = 0;  // versions; 0: no bound
    std::string type, field;
};

/// The tables of a page by the name of what they describe: their heading, or the line "A thing:" above them.
/// Only tables with a column "type" are records.
using PageTables = std::map<std::string, std::vector<PageRow>>;
PageTables ReadPage(const std::string& path);

/// One row of one record as the page decodes it.
struct DecodedRow {
    std::string place;  // "group 0/point 2/Entity record"
    std::string number, type;
    std::vector<std::string> values;
};

/// What a page says about bytes. Everything it does not understand is a failure of the running test.
class PageDecoder {
public:
    /// How far a record goes that another page describes.
    using Foreign = std::function<std::size_t(const std::string& type, std::string_view bytes)>;

    PageDecoder(const PageTables& tables, std::string_view bytes, short version, Foreign foreign = {})
        : tables_(tables), bytes_(bytes), version_(version), foreign_(std::move(foreign)) {}

    void Record(const std::string& table, const std::string& place);

    const std::vector<DecodedRow>& Rows() const { return rows_; }
    std::size_t Position() const { return at_; }

private:
    void Row(const PageRow& row, const std::string& place);
    void Values(const std::string& type, std::vector<std::string>& values);
    void Groups(const std::string& place);
    void Points(const std::string& place);
    void DatumLists(const std::string& place, int lists);
    void Enveloped(const std::string& table, const std::string& place);
    bool IsSimple(const std::string& type) const;
    std::string Value(const std::string& type);
    std::uint64_t Number(std::size_t size);
    int LastCount() const;

    const PageTables& tables_;
    std::string_view bytes_;
    short version_;
    Foreign foreign_;
    std::size_t at_ = 0;
    std::vector<DecodedRow> rows_;
};

}  // namespace test
