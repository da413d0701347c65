// The page about the state of a shared book, docs/formats/cloud-state.md, against the bytes: its tables alone
// decode them.
#include <gtest/gtest.h>

#include <fstream>

#include "host/project/CloudState.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/host/project/CloudSamples.h"
#include "tests/host/project/SharedBook.h"

namespace {

using test::Project;
using Values = std::vector<std::string>;

/// A row "| type | field |".
struct Row {
    std::string type, field;
};

std::string Trimmed(const std::string& text) {
    const auto from = text.find_first_not_of(' ');
    return from == std::string::npos ? "" : text.substr(from, text.find_last_not_of(' ') - from + 1);
}

// "list of [conflicts](#conflict)" is "list of conflicts".
std::string WithoutLinks(std::string text) {
    for (std::size_t at; (at = text.find('[')) != std::string::npos;) {
        const auto end = text.find(']', at), behind = text.find(')', at);
        text = text.substr(0, at) + text.substr(at + 1, end - at - 1) + text.substr(behind + 1);
    }
    return text;
}

std::vector<Row> Table(const std::string& heading) {
    std::vector<Row> rows;
    std::ifstream in(GPS_SOURCE_DIR "/docs/formats/cloud-state.md");
    EXPECT_TRUE(in);
    bool here = false;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with('#')) here = line.substr(line.find(' ') + 1) == heading;
        if (!here || !line.starts_with("| ") || line.starts_with("| type")) continue;
        const auto middle = line.find('|', 1);
        rows.push_back({WithoutLinks(Trimmed(line.substr(1, middle - 1))),
                        Trimmed(line.substr(middle + 1, line.rfind('|') - middle - 1))});
    }
    EXPECT_FALSE(rows.empty()) << heading;
    return rows;
}

/// Reads bytes as the page says, every value as a text.
class Decoder {
public:
    explicit Decoder(const std::string& bytes) : in_(bytes.data(), bytes.size(), Project::kNewestVersion) {}

    Values All(const std::string& heading) {
        Record(heading);
        EXPECT_TRUE(in_.IsOk()) << heading;
        EXPECT_EQ(in_.GetRemaining(), 0) << heading;
        return values_;
    }

    void Record(const std::string& heading) {
        std::string last;
        for (const Row& row : Table(heading)) {
            if (row.field == "only then" && last != "1") continue;
            if (row.field.ends_with("it is left out") && in_.GetRemaining() == 0) continue;
            if (row.type == "list of replies") {
                EXPECT_TRUE(row.field.starts_with("each: u8 as in a clash; u8, 1: deleted; i32, "))
                    << row.field;
                EXPECT_NE(row.field.find("; i64, its revision; u8, 1: "), std::string::npos) << row.field;
                EXPECT_NE(row.field.find("; list of strings, "), std::string::npos) << row.field;
            }
            Type(row.type);
            last = values_.back();
            if (row.field.ends_with("and nothing follows") && last == "0") return;
        }
    }

private:
    // "string, i64" are two, "list of i64, u32" is a list of two.
    void Type(const std::string& type) {
        static const std::string list = "list of ";
        if (type.starts_with(list)) {
            const std::int64_t count = in_.ReadInt64();
            values_.push_back(std::to_string(count));
            for (std::int64_t i = 0; i < count && in_.IsOk(); ++i) Type(type.substr(list.size()));
            return;
        }
        if (const auto comma = type.find(", "); comma != std::string::npos) {
            Type(type.substr(0, comma));
            return Type(type.substr(comma + 2));
        }
        One(type);
    }

    void One(const std::string& type) {
        if (type == "u8") return values_.push_back(std::to_string(in_.ReadUChar()));
        if (type == "u32") return values_.push_back(std::to_string(in_.ReadUInt()));
        if (type == "i32") return values_.push_back(std::to_string(in_.ReadInt()));
        if (type == "f64") return values_.push_back(std::to_string(in_.ReadDouble()));
        if (type == "i64") return values_.push_back(std::to_string(in_.ReadInt64()));
        if (type == "string" || type == "strings") return values_.push_back(in_.ReadString());
        if (type == "replies") return Type("u8, u8, i32, i64, u8, list of strings");
        static const std::map<std::string, std::string> records{
            {"commit", "Commit"},           {"conflicts", "Conflict"},
            {"refusals", "Refusal"},        {"clash", "Clash"},
            {"clashes", "Clash"},           {"sent", "Sent"},
            {"table state", "Table state"}, {"positions", "Position"}};
        const auto found = records.find(type);
        ASSERT_NE(found, records.end()) << type;
        Record(found->second);
    }

    ifpstream in_;
    Values values_;
};

Values Joined(std::initializer_list<Values> parts) {
    Values all;
    for (const Values& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

template <class Write>
std::string Written(Write write) {
    ofpstream out(Project::kNewestVersion);
    write(out);
    return std::string(out.GetBytes());
}

const Values kClash{"3", "7", "base", "4096", "a;b", "c;", "12", "Bruno", "1000000000000"};
const Values kNoClash{"4", "0", "", "0", "", "", "0", "", "0"};

TEST(CloudStatePage, AnswerIsAsThePageSays) {
    const auto bytes = Written([](ofpstream& out) { WriteAnswer(out, test::SampleAnswer()); });
    EXPECT_EQ(Decoder(bytes).All("Answer"),
              Joined({{"c0ffee", "42", "3", "9", "0", "10", "2", "2", "no", "5", "", "2"},
                      kClash,
                      kNoClash,
                      {"d0d0"}}));
}

TEST(CloudStatePage, PageIsAsThePageSays) {
    const auto bytes = Written([](ofpstream& out) { WritePage(out, test::SamplePage()); });
    EXPECT_EQ(
        Decoder(bytes).All("Page"),
        (Values{"50", "51",  "cafe", "0", "2:0:17", "2",  "3", "0", "2", "46", "0",      "3",  "1",
                "",   "x;y", "4",    "1", "-1",     "47", "1", "0", "2", "46", "nobody", "47", "Bruno"}));
}

TEST(CloudStatePage, SectionIsAsThePageSays) {
    Project project;
    test::FillSmall(project);
    project.GetCloud().Link(test::kLink);
    test::Settle(project);
    project.GetBook().GetPunAt(0, 0)->SetNome("A1*");
    test::DeletePoint(project, 1, 0);
    test::AddPoint(project, 0, "A3");
    ASSERT_TRUE(project.GetCloud().BeginCommit(test::kCommit2));
    const std::string records = project.GetCloud().GetCommit()->records;
    EXPECT_EQ(Decoder(test::CloudBytesOf(project)).All("Section"),
              Joined({{"/s/store", "site", test::kLink.key, "0", "1", test::kCommit1, "1", "1", "-1", "1"},
                      {test::kCommit2, "0", "1", test::kCommit1, "1", "1", records, "0", "0", "0"},
                      {"2", "0", "1", "0", "0", "0"},  // groups
                      {"4", "1", "5", "1", "1", "4", "1", "3", "1", "1", "5"}}));
}

TEST(CloudStatePage, PositionsOfTheSectionAreAsThePageSays) {
    test::SharedDisk disk;
    const auto project = disk.Open(test::Mode::write);
    test::Settle(*project);
    CPunGps& point = *project->GetBook().GetPunAt(1, 0);  // its id is 5
    point.SetElev(1);
    // Not the last page; the point has no plane coordinates, as little as its fix has.
    test::PullPage page = test::PageOf(2, {test::PointReply(5, 2, "B1*")});
    page.last = false;
    project->GetCloud().TakePage(page);
    const Values all = Decoder(test::CloudBytesOf(*project)).All("Section");
    const std::string unset = std::to_string(GPS_VAL_UNSET);
    const Values positions{"1", "4", "5", "0", unset, unset, unset};
    ASSERT_GT(all.size(), positions.size());
    EXPECT_EQ(Values(all.end() - static_cast<std::ptrdiff_t>(positions.size()), all.end()), positions);
}

TEST(CloudStatePage, ConflictsAndRefusalsOfTheSectionAreAsThePageSays) {
    // The tables of a book that is not linked stand behind.
    Project project;
    const std::string tables = test::CloudBytesOf(project).substr(
        Written([](ofpstream& out) { gpsproject::WriteCloudState(out, {}); }).size());
    const auto bytes = Written([](ofpstream& out) { WriteCloudState(out, test::SampleState()); }) + tables;
    EXPECT_EQ(
        Decoder(bytes).All("Section"),
        Joined({{"/s/store", "site", "key", "40", "44", "f00d", "2", "41", "43", "12", "1"},
                {"c0ffee", "41", "45", "beef", "2", "42", "44", "DEL;3;1\r\nDEL;4;2", "8", "3", "3", "0"},
                kClash,
                {"", "0", "", "0", "8", "2"},
                kNoClash,
                {"A", "1", std::string("\0\xFF", 2), "5", "7", "1"},
                kNoClash,
                {"", "0", "", "0", "2", "4", "0", "P1", "no", "3", "6", "", "not there"},
                {"0", "0", "0"},
                {"0", "0", "0"}}));
}

}  // namespace
