// The page about journals, docs/formats/journal.md, against the bytes: its tables alone decode them.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tests/Bytes.h"
#include "tests/host/base/JournalParts.h"

namespace {

/// A row "| byte | type | field |".
struct Row {
    std::size_t byte;
    std::string type;
    std::string field;  // up to its first ':', ',' or '.'
    std::string value;  // of a row that gives its bytes: "marker: 4A 01"
};

std::string Trimmed(const std::string& text) {
    const auto from = text.find_first_not_of(' ');
    return from == std::string::npos ? "" : text.substr(from, text.find_last_not_of(' ') - from + 1);
}

std::vector<Row> Table(const std::string& heading) {
    std::vector<Row> rows;
    std::ifstream in(GPS_SOURCE_DIR "/docs/formats/journal.md");
    EXPECT_TRUE(in);
    bool here = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with('#')) here = line == "## " + heading;
        if (!here || !line.starts_with("| ") || !std::isdigit(static_cast<unsigned char>(line[2]))) continue;
        std::vector<std::string> cells;
        for (std::size_t at = 1, end; (end = line.find('|', at)) != std::string::npos; at = end + 1)
            cells.push_back(Trimmed(line.substr(at, end - at)));
        const std::size_t name = cells[2].find_first_of(":,.");
        std::string value = name == std::string::npos ? "" : cells[2].substr(name + 1);
        value = Trimmed(value.substr(0, value.find('.')));
        rows.push_back({std::stoul(cells[0]), cells[1], cells[2].substr(0, name), value});
    }
    return rows;
}

std::size_t SizeOf(const std::string& type) {
    if (type.ends_with(" bytes")) return std::stoul(type);
    static const std::map<std::string, std::size_t> sizes{{"u16", 2}, {"u32", 4}, {"u64", 8}, {"", 0}};
    const auto found = sizes.find(type);
    EXPECT_NE(found, sizes.end()) << type;
    return found == sizes.end() ? 0 : found->second;
}

/// The numbers of a header or frame by their names on the page; fields that are bytes are compared.
std::map<std::string, std::uint64_t> Decode(const std::vector<Row>& rows, const std::string& bytes) {
    std::map<std::string, std::uint64_t> values;
    std::size_t next = 0;
    for (const Row& row : rows) {
        EXPECT_EQ(row.byte, next) << row.field;
        const std::size_t size = SizeOf(row.type);
        next += size;
        if (row.type.ends_with(" bytes")) {
            std::string digits = row.value;
            for (char& c : digits) c = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
            EXPECT_EQ(test::Dump(bytes.substr(row.byte, size)), test::Dump(test::Bytes().Hex(digits).Get()));
            continue;
        }
        std::uint64_t value = 0;
        for (std::size_t i = size; i-- > 0;)
            value = value << 8 | static_cast<unsigned char>(bytes[row.byte + i]);
        values[row.field] = value;
    }
    values["size"] = next;
    return values;
}

TEST(JournalPage, HeaderIsAsThePageSays) {
    auto values = Decode(Table("Header"), JournalHeaderBytes({7, 8, 9}));
    EXPECT_EQ(values["size"], kJournalHeaderSize);
    EXPECT_EQ(values["journal id"], 7u);
    EXPECT_EQ(values["base"], 8u);
    EXPECT_EQ(values["first sequence"], 9u);
}

TEST(JournalPage, FrameIsAsThePageSays) {
    auto values = Decode(Table("Frame"), FrameBytes({0, 0, 7, 12, 11, 3002, kMoreFollows}, "payload"));
    EXPECT_EQ(values["size"], kFrameHeadSize);
    EXPECT_EQ(values["payload length"], 7u);
    EXPECT_EQ(values["journal id"], 7u);
    EXPECT_EQ(values["sequence"], 12u);
    EXPECT_EQ(values["durable sequence"], 11u);
    EXPECT_EQ(values["code"], 3002u);
    EXPECT_EQ(values["flags"], 1u);
}

bool PageSays(const std::string& text) {
    std::string page;
    std::ifstream in(GPS_SOURCE_DIR "/docs/formats/journal.md");
    for (std::string line; std::getline(in, line);) page += line + ' ';
    return page.find(text) != std::string::npos;
}

TEST(JournalPage, FiguresOfThePageAreTheWriters) {
    EXPECT_TRUE(PageSays("when " + std::to_string(JournalWriter::kMostEntries) + " wait"));
    EXPECT_TRUE(
        PageSays("waited for " +
                 std::to_string(
                     std::chrono::duration_cast<std::chrono::milliseconds>(JournalWriter::kWindow).count()) +
                 " ms"));
    EXPECT_TRUE(PageSays("longer than " + std::to_string(JournalWriter::kMostWaiting >> 20) + " MiB"));
    EXPECT_TRUE(PageSays("code " + std::to_string(kEditGivenUp)));
    EXPECT_TRUE(PageSays("version, " + std::to_string(kJournalVersion)));
}

}  // namespace
