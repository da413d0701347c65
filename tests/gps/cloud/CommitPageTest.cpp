// The page about records and replies, docs/formats/commit.md, against the code: its tables of fields and its
// examples.
#include <gtest/gtest.h>

#include <charconv>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "gps/cloud/FieldLayout.h"
#include "tests/gps/cloud/CloudBook.h"

namespace {

using test::CloudBook;
using test::Split;
using Row = std::vector<std::string>;

std::vector<std::string> Page() {
    std::ifstream in(GPS_SOURCE_DIR "/docs/formats/commit.md");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    EXPECT_GT(lines.size(), 100u);
    return lines;
}

/// The rows of the first table under a heading, without its head.
std::vector<Row> Table(const std::string& heading) {
    std::vector<Row> rows;
    bool here = false;
    for (const std::string& line : Page()) {
        if (line.starts_with("#")) here = line == heading;
        if (here && !rows.empty() && !line.starts_with("|")) break;
        if (!here || !line.starts_with("| ")) continue;
        Row row;
        for (std::size_t at = 2; at < line.size();) {
            const std::size_t next = line.find(" |", at);
            row.push_back(line.substr(at, next - at));
            at = next + 3;
        }
        rows.push_back(row);
    }
    EXPECT_GT(rows.size(), 1u) << heading;
    if (!rows.empty()) rows.erase(rows.begin());
    return rows;
}

std::uint32_t Number(std::string_view text, int base = 10) {
    std::uint32_t value = 0;
    if (base == 16) text.remove_prefix(2);
    std::from_chars(text.data(), text.data() + text.size(), value, base);
    return value;
}

template <std::size_t N>
void ExpectTable(const std::string& heading, const std::array<FieldGroup, N>& layout) {
    const std::vector<Row> rows = Table(heading);
    ASSERT_EQ(rows.size(), N);
    for (std::size_t i = 0; i < N; ++i) {
        ASSERT_EQ(rows[i].size(), 5u);
        EXPECT_EQ(Number(rows[i][0], 16), layout[i].bit) << rows[i][0];
        EXPECT_EQ(rows[i][1], layout[i].name);
        EXPECT_EQ(static_cast<int>(Number(rows[i][2])), layout[i].first) << rows[i][1];
        EXPECT_EQ(static_cast<int>(Number(rows[i][3])), layout[i].count) << rows[i][1];
    }
}

TEST(CommitPage, TablesOfFieldsAreThoseOfTheLayout) {
    ExpectTable("## Fields of a group", GRP_FIELDS);
    ExpectTable("## Fields of a point", PUN_FIELDS);
}

TEST(CommitPage, RepliesHaveTheNumberOfFieldsThatThePageNames) {
    const std::vector<Row> rows = Table("## Replies");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_TRUE(rows[0][1].starts_with(std::to_string(GRP_REPLY_FIELDS) + ":"));
    EXPECT_TRUE(rows[1][1].starts_with(std::to_string(PUN_REPLY_FIELDS) + ":"));
    EXPECT_TRUE(rows[2][1].starts_with(std::to_string(DEL_REPLY_FIELDS) + ":"));
}

TEST(CommitPage, ConversionIsAtThePlacesThatThePageNames) {
    // What the hand-written conversion has there.
    const std::vector<std::pair<const char*, const char*>> expected = {
        {"16", "11"},      {"21", "6378200.5"}, {"23", "1"},       {"24", "16"},
        {"29", "1"},       {"30", "own"},       {"41", "Roma 40"}, {"52", "2"},
        {"53", "library"}, {"64", "1"},         {"65", "0.5"},     {"70", "NULLVAL"},
        {"76", "4"},       {"77", "2"},         {"78", "44.5"},    {"83", "0.5"}};
    const std::vector<Row> rows = Table("### The conversion");
    ASSERT_EQ(rows.size(), expected.size());
    const auto reply = test::GroupReply();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i][0], expected[i].first);
        EXPECT_EQ(reply[Number(rows[i][0])].View(), expected[i].second) << rows[i][1];
    }
}

/// The lines of the page's one block of records.
std::vector<std::string> Examples() {
    std::vector<std::string> examples;
    bool inBlock = false;
    for (const std::string& line : Page()) {
        if (line.starts_with("```")) {
            inBlock = !inBlock;
        } else if (inBlock) {
            examples.push_back(line);
        }
    }
    return examples;
}

TEST(CommitPage, ExamplesAreWhatTheTablesWrite) {
    const std::vector<std::string> examples = Examples();
    ASSERT_EQ(examples.size(), 5u);
    CloudBook book;
    CGrpGps* group = book.AddGroup(0);
    test::FillGroup(*group);
    CPunGps* point = book.AddPoint(0, 0);
    test::FillPoint(*point);
    const std::string cut = "…";
    ASSERT_TRUE(examples[0].ends_with(cut));
    const std::string begin = examples[0].substr(0, examples[0].size() - cut.size());
    EXPECT_EQ(book.Additions(book.bases).substr(0, begin.size()), begin);
    EXPECT_EQ(book.Additions(book.points, 1), examples[2]);
    group->SetCloudId(7);
    point->SetCloudId(8);
    book.bases.AddItemToTable(group);
    book.points.AddItemToTable(point);
    group->CloudItemChanged(CHG_NOME | CHG_GRP_NOMEGRP);
    point->CloudItemChanged(CHG_PUN_DATETIME);
    EXPECT_EQ(book.Changes(book.bases), examples[1]);
    EXPECT_EQ(book.Changes(book.points), examples[3]);
    book.points.ItemDeletedLocally(point);
    vex::String deleted;
    book.points.GenerateCommitString_Del(deleted);
    EXPECT_EQ(deleted.View(), examples[4]);
}

}  // namespace
