// The walk through a section finds every record where it stands.
#include "host/project/SectionWalk.h"

#include <gtest/gtest.h>

#include "host/project/GpsReader.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/host/project/Samples.h"

namespace {

using namespace gpsproject;

struct Records : SectionListener {
    void Record(const SectionRecord& record) override { all.push_back(record); }
    std::vector<SectionRecord> all;
};

class SectionWalk : public testing::TestWithParam<short> {};

TEST_P(SectionWalk, RecordsFollowOneAnotherToTheEnd) {
    const short version = GetParam();
    Project project(version);
    test::Fill(project, 1, 2, 3);
    ofpstream out(version);
    project.GetBook().SalvaInFile(out, version, "", nullptr, nullptr);
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), version);
    Records records;
    EXPECT_EQ(WalkSection(in, &records), CountItems(project.GetBook()));
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);

    std::vector<std::string> names;
    std::int64_t at = 0;
    for (const SectionRecord& record : records.all) {
        EXPECT_EQ(record.begin, at);
        at = record.end;
        names.push_back(record.Text());
    }
    EXPECT_EQ(at, out.GetPosition());
    std::vector<std::string> expected{version < 1004 ? "map library" : "drawing",
                                      "field-book options",
                                      "display options",
                                      "number of groups",
                                      "group 0",
                                      "group 0, point 0",
                                      "group 0, point 1",
                                      "group 0, point 2",
                                      "group 1",
                                      "group 1, point 0",
                                      "group 1, point 1",
                                      "group 1, point 2"};
    if (version >= 1002) expected.emplace_back("post-processing options");
    EXPECT_EQ(names, expected);
}

INSTANTIATE_TEST_SUITE_P(Versions, SectionWalk,
                         testing::Values(743, 750, 881, 903, 1001, 1002, 1003, 1004, 1106, 1311, 1400));

// A point's record stands where its own bytes begin.
TEST(SectionWalkPositions, AreThoseOfThePointsBytes) {
    Project project;
    test::Fill(project, 1, 1, 2);
    ofpstream out(1400);
    project.GetBook().SalvaInFile(out, 1400, "", nullptr, nullptr);
    const std::string bytes(out.GetBytes());
    ofpstream one(1400);
    project.GetBook().GetPunAt(0, 1)->SalvaInFile(one, false);
    ifpstream in(bytes.data(), bytes.size(), 1400);
    Records records;
    WalkSection(in, &records);
    const SectionRecord& second = records.all[6];
    ASSERT_EQ(second.Text(), "group 0, point 1");
    EXPECT_EQ(bytes.substr(static_cast<std::size_t>(second.begin),
                           static_cast<std::size_t>(second.end - second.begin)),
              one.GetBytes());
}

TEST(SectionWalkPositions, AbsurdCountEndsWithTheStreamsLimit) {
    Project project;
    ofpstream out(1400);
    project.GetBook().SalvaInFile(out, 1400, "", nullptr, nullptr);
    std::string bytes(out.GetBytes());
    bytes.resize(bytes.size() - 1);                          // the mark of post-processing options
    bytes.replace(bytes.size() - 4, 4, "\xff\xff\xff\x7f");  // the number of groups
    ifpstream in(bytes.data(), bytes.size(), 1400);
    in.SetPastEndLimit(4096);
    EXPECT_THROW(WalkSection(in, nullptr), StreamExhausted);
}

}  // namespace
