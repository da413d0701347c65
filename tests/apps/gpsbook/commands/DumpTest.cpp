// gpsbook dump: the section as it stands in the file.
#include <gtest/gtest.h>

#include <bit>

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {
namespace {

using nlohmann::json;

json Dumped(const Outcome& outcome) {
    json dump = json::parse(outcome.out, nullptr, false);
    EXPECT_FALSE(dump.is_discarded()) << outcome;
    return dump;
}

json FieldOf(const json& dump, const std::string& record, const std::string& field) {
    for (const json& f : dump["fields"])
        if (f["record"] == record && f["field"] == field) return f;
    ADD_FAILURE() << record << ": no " << field;
    return {};
}

TEST(Dump, FieldsStandWhereTheirOffsetSays) {
    const Site site;
    const std::string bytes = site.Bytes();
    const Outcome outcome = site.Run({"dump", "site.gpsbook", "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const json dump = Dumped(outcome);
    EXPECT_EQ(dump["book"], "site.gpsbook");
    EXPECT_FALSE(dump.contains("file"));
    EXPECT_EQ(dump["version"], 1400);
    EXPECT_EQ(dump["groups"], 2);
    EXPECT_EQ(dump["points"], 6);
    EXPECT_EQ(dump["damage"], nullptr);
    const json lat = FieldOf(dump, "group 0, point 1", "latitude");
    EXPECT_EQ(lat["type"], "f64");
    EXPECT_EQ(lat["value"], 45.6501);
    std::uint64_t raw = 0;
    const std::size_t at = lat["offset"];
    for (std::size_t i = 8; i-- > 0;) raw = raw << 8 | static_cast<unsigned char>(bytes.at(at + i));
    EXPECT_EQ(std::bit_cast<double>(raw), 45.6501);
    const json name = FieldOf(dump, "group 1", "name of the group");
    EXPECT_EQ(name["value"], "Pier");
    EXPECT_EQ(bytes.substr(name["offset"].get<std::size_t>() + 4, 4), "Pier");
    EXPECT_EQ(FieldOf(dump, "group 1, point 0", "latitude")["value"], nullptr) << "unset";
    const json last = dump["fields"].back();
    EXPECT_EQ(last["field"], "post-processing options follow");
    EXPECT_EQ(last["offset"].get<std::int64_t>() + 1,
              dump["offset"].get<std::int64_t>() + dump["size"].get<std::int64_t>());
}

TEST(Dump, TextHasALineForEveryField) {
    const Site site;
    const json dump = Dumped(site.Run({"dump", "site.gpsbook", "--json"}));
    const Outcome outcome = site.Run({"dump", "site.gpsbook"});
    const std::vector<std::string> lines = LinesOf(outcome.out);
    ASSERT_EQ(lines.size(), dump["fields"].size() + 2) << outcome;
    EXPECT_TRUE(lines.front().starts_with("site.gpsbook: version 1400, ")) << lines.front();
    EXPECT_EQ(lines.back(), "2 groups, 6 points; the section ends with its last record");
    const bool found = std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find("group 0, point 1 ") != std::string::npos && line.ends_with("f64      45.6501");
    });
    EXPECT_TRUE(found) << outcome;
}

TEST(Dump, EveryStreamVersionIsTakenApart) {
    for (const int version : {743, 749, 750, 881, 903, 1002, 1003, 1004, 1106, 1300, 1311, 1400}) {
        const Site site([version](gpsproject::Project& project) {
            project.GetBook().GetOpzPostProc();
            project.SetStreamVersion(static_cast<short>(version));
        });
        const Outcome outcome = site.Run({"dump", "site.gpsbook", "--json"});
        EXPECT_EQ(outcome.exitCode, 0) << version << '\n' << outcome.err;
        EXPECT_EQ(Dumped(outcome)["version"], version);
        EXPECT_EQ(Dumped(outcome)["points"], 6) << version;
    }
}

TEST(Dump, BareSectionNeedsItsVersion) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "903"}).exitCode, 0);
    const Outcome outcome = site.Run({"dump", "s.bin", "--version", "903", "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome;
    const json dump = Dumped(outcome);
    EXPECT_EQ(dump["offset"], 0);
    EXPECT_EQ(dump["size"], site.Text("s.bin").size());
    EXPECT_EQ(dump["fields"][0]["offset"], 0);
    EXPECT_EQ(site.Run({"dump", "s.bin"}).exitCode, 4) << "no field book";
    const Outcome other = site.Run({"dump", "s.bin", "--version", "1400"});
    EXPECT_EQ(other.exitCode, 4) << other;
    for (const char* version : {"0", "1401", "new", ""})
        EXPECT_EQ(site.Run({"dump", "s.bin", "--version", version}).exitCode, 2);
}

TEST(Dump, DamagedSectionIsShownUpToTheDamage) {
    const Site site;
    ASSERT_EQ(site.Run({"section", "write", "site.gpsbook", "s.bin", "--version", "1400"}).exitCode, 0);
    const std::string bytes = site.Text("s.bin");
    site.Put("cut.bin", bytes.substr(0, bytes.size() - 100));
    const Outcome outcome = site.Run({"dump", "cut.bin", "--version", "1400", "--json"});
    EXPECT_EQ(outcome.exitCode, 4) << outcome;
    const json dump = Dumped(outcome);
    EXPECT_EQ(dump["groups"], 1);
    EXPECT_EQ(dump["points"], 5);
    EXPECT_EQ(FieldOf(dump, "group 1, point 0", "entity.name")["value"], "A");
    EXPECT_GT(dump["damage"]["offset"].get<std::size_t>(), bytes.size() - 120);
    EXPECT_NE(outcome.err.find("bytes are needed"), std::string::npos) << outcome;
    EXPECT_NE(outcome.err.find("1 groups and 5 points are complete"), std::string::npos) << outcome;
}

TEST(Dump, DamagedBookIsShownAsFarAsItGoes) {
    const Site site;
    const std::string bytes = site.Bytes();
    for (const std::size_t size : {bytes.size() - 1, bytes.size() * 3 / 4, bytes.size() / 2}) {
        site.Put("cut.gpsbook", bytes.substr(0, size));
        const Outcome outcome = site.Run({"dump", "cut.gpsbook", "--json"});
        EXPECT_EQ(outcome.exitCode, 4) << size << '\n' << outcome.err;
        EXPECT_EQ(FieldOf(Dumped(outcome), "group 0", "name of the group")["value"], "Quay") << size;
    }
    for (const std::size_t size : {std::size_t{0}, std::size_t{10}, std::size_t{30}}) {
        site.Put("cut.gpsbook", bytes.substr(0, size));
        const Outcome outcome = site.Run({"dump", "cut.gpsbook"});
        EXPECT_EQ(outcome.exitCode, 4) << size << '\n' << outcome;
        EXPECT_NE(outcome.err, "") << size;
    }
}

TEST(Dump, DamageThatLeavesTheSectionInStepIsTold) {
    const Site site;
    std::string bytes = site.Bytes();
    const std::size_t at = bytes.rfind("P1");
    ASSERT_NE(at, std::string::npos);
    bytes[at] = 'Q';
    bytes[at + 1] = 'Z';
    site.Put("changed.gpsbook", bytes);
    const Outcome outcome = site.Run({"dump", "changed.gpsbook"});
    EXPECT_EQ(outcome.exitCode, 4) << outcome;
    EXPECT_NE(outcome.err.find("gps"), std::string::npos) << outcome;
    EXPECT_NE(outcome.out.find("Quay"), std::string::npos) << outcome;
}

TEST(Dump, NumbersThatAreNoneAreTextsInJson) {
    const Site site([](gpsproject::Project& project) {
        project.GetBook().GetPunAt(0, 0)->SetPdop(std::bit_cast<double>(0x7FF8000000000000ULL));
        project.GetBook().GetPunAt(0, 0)->SetCode("a\"b\\c");
    });
    const json dump = Dumped(site.Run({"dump", "site.gpsbook", "--json"}));
    EXPECT_EQ(FieldOf(dump, "group 0, point 0", "PDOP")["value"], "nan");
    EXPECT_EQ(FieldOf(dump, "group 0, point 0", "entity.secondary text")["value"], "a\"b\\c");
}

TEST(Dump, FileThatIsNotThereIsNotFound) {
    const Site site;
    EXPECT_EQ(site.Run({"dump", "gone.gpsbook"}).exitCode, 5);
    EXPECT_EQ(site.Run({"dump", "gone.bin", "--version", "1400"}).exitCode, 5);
    EXPECT_EQ(site.Run({"dump", "."}).exitCode, 4);
    EXPECT_EQ(site.Run({"dump"}).exitCode, 2);
}

}  // namespace
}  // namespace gpsbook::test
