// The dry reading of exchange files: what is whole, and where others are not.
#include "apps/gpsbook/book/ExchangeCheck.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "apps/gpsbook/commands/CommandError.h"
#include "tests/TempFolder.h"
#include "tests/apps/gpsbook/book/ExchangeSample.h"

namespace gpsbook::test {
namespace {

using ::test::Bytes;
using ::test::ExchangeHead;

constexpr auto kPoints = ExchangeKind::points;
constexpr auto kGroups = ExchangeKind::groups;
constexpr std::int64_t kHead = 18;  // marker, signature, version, count

class ExchangeCheck : public ::testing::Test {
protected:
    ExchangeContent Look(const std::string& bytes, ExchangeKind kind) const {
        ::test::WriteFileBytes(file, bytes);
        return CheckExchangeFile(file, kind);
    }
    void ExpectProblem(const std::string& bytes, ExchangeKind kind, const std::string& problem) const {
        EXPECT_EQ(Look(bytes, kind).Problem(), problem);
    }
    ExitCode CodeOf(const std::string& name) const {
        try {
            CheckExchangeFile(name, kPoints);
        } catch (const CommandError& e) {
            EXPECT_NE(std::string(e.what()).find(name), std::string::npos) << e.what();
            return e.Code();
        }
        return exitDone;
    }

    const ::test::TempFolder folder;
    const std::string file = folder / "file";
};

TEST_F(ExchangeCheck, WholeFileOfEveryVersionIsWhole) {
    int tried = 0;
    for (const short version : ::test::VersionsAroundThresholds()) {
        if (version < 743 || version > 1400) continue;
        ++tried;
        for (const ExchangeKind kind : {kPoints, kGroups}) {
            const ExchangeContent found = Look(SampleFile(kind, version), kind);
            EXPECT_EQ(found.wrong, "") << version;
            EXPECT_EQ(found.version, version);
            EXPECT_EQ(found.count, kind == kPoints ? 3 : 2);
            EXPECT_EQ(found.groups, kind == kPoints ? 0 : 2);
            EXPECT_EQ(found.points, 3);
            EXPECT_EQ(found.missing, 0);
        }
    }
    EXPECT_GT(tried, 10);
}

TEST_F(ExchangeCheck, EmptyFileIsWholeAsBothKinds) {
    const std::string empty = ExchangeHead(0).I32(0);
    EXPECT_EQ(empty.size(), 22u);
    for (const ExchangeKind kind : {kPoints, kGroups}) {
        const ExchangeContent found = Look(empty, kind);
        EXPECT_TRUE(found.IsWhole()) << found.Problem();
        EXPECT_EQ(found.groups + found.points, 0);
    }
}

TEST_F(ExchangeCheck, PointsWithPlaneCoordinatesAndFixesAreCounted) {
    CPunGps none(nullptr, false, nullptr), fix(nullptr, false, nullptr), plane(nullptr, false, nullptr);
    SetFix(fix, 45, 13, 60, 2);
    plane.SetCoord(1, 2, GPS_VAL_UNSET);
    Bytes bytes = ExchangeHead(3);
    for (CPunGps* point : {&none, &fix, &plane}) bytes.Raw(::test::Saved(*point, 1400, true));
    const ExchangeContent found = Look(bytes.I32(0), kPoints);
    EXPECT_TRUE(found.IsWhole()) << found.Problem();
    EXPECT_EQ(found.withFix, 1);
    EXPECT_EQ(found.withPlane, 1);
}

TEST_F(ExchangeCheck, FirstThingThatIsWrongIsTold) {
    const std::string point = SamplePoint(), group = SampleGroup();
    const auto at = [](std::int64_t offset) { return "byte " + std::to_string(kHead + offset); };
    const auto size = static_cast<std::int64_t>(point.size());
    const auto groupSize = static_cast<std::int64_t>(group.size());
    const std::string whole = SampleFile(kPoints);
    const auto with = [&](std::size_t offset, char byte) {
        std::string bytes = whole;
        bytes[offset] = byte;
        return bytes;
    };
    ExpectProblem("", kPoints, "byte 0: it does not begin as an exchange file");
    ExpectProblem(with(0, ';'), kPoints, "byte 0: it does not begin as an exchange file");
    ExpectProblem(with(3, 1), kPoints, "byte 0: it does not begin as an exchange file");
    ExpectProblem(with(9, 'f'), kPoints, "byte 5: its signature is not that of an exchange file");
    ExpectProblem(whole.substr(0, 13), kPoints, "byte 12: the file ends within its head");
    ExpectProblem(whole.substr(0, 17), kPoints, "byte 14: the file ends within its head");
    for (const int version : {742, 1401, -1, 0})
        ExpectProblem(ExchangeHead(0, version).I32(0), kPoints,
                      "byte 12: its records are of version " + std::to_string(version) +
                          "; those from 743 to 1400 can be read");
    ExpectProblem(ExchangeHead(-2).I32(0), kPoints, "byte 14: the number of points is -2");
    ExpectProblem(ExchangeHead(-1).I32(0), kGroups, "byte 14: the number of groups is -1");
    ExpectProblem(ExchangeHead(2).Raw(point), kPoints, at(size) + ", point 1: the file ends before it");
    ExpectProblem(ExchangeHead(2).Raw(point).I32(0), kPoints,
                  at(size + 4) + ", point 1: the record wants more from here on than there is");
    ExpectProblem(ExchangeHead(2).Raw(point).Raw(point.substr(0, point.size() - 1)), kPoints,
                  at(2 * size - 8) + ", point 1: the record wants more from here on than there is");
    ExpectProblem(ExchangeHead(1).Raw(point), kPoints,
                  at(size) + ": the 0 behind the last record is missing");
    ExpectProblem(ExchangeHead(1).Raw(point).I32(7), kPoints,
                  at(size) + ": behind the last record stands 7 in the place of 0");
    ExpectProblem(ExchangeHead(1).Raw(point).I32(0).U8(0), kPoints,
                  at(size + 4) + ": 1 byte left over behind the end");
    ExpectProblem(ExchangeHead(1).Raw(group).I32(-4).I32(0), kGroups,
                  at(groupSize) + ", group 0: the number of its points is -4");
    ExpectProblem(ExchangeHead(1).Raw(group).I32(2).Raw(point), kGroups,
                  at(groupSize + 4 + size) + ", group 0, point 1: the file ends before it");
    ExpectProblem(ExchangeHead(2).Raw(group).I32(0), kGroups,
                  at(groupSize + 4) + ", group 1: the file ends before it");
}

TEST_F(ExchangeCheck, RecordsThatAreNotThereAreCounted) {
    const std::string point = SamplePoint(), group = SampleGroup();
    EXPECT_EQ(Look(ExchangeHead(7).Raw(point), kPoints).missing, 6);
    EXPECT_EQ(Look(ExchangeHead(0x7FFFFFFF).Raw(point).Raw(point), kPoints).missing, 0x7FFFFFFFLL - 2);
    EXPECT_EQ(Look(ExchangeHead(3).Raw(group).I32(5).Raw(point), kGroups).missing, 4 + 2);
    EXPECT_EQ(Look(ExchangeHead(0x7FFFFFFF).Raw(group).I32(0x7FFFFFFF), kGroups).missing,
              0x7FFFFFFFLL + 0x7FFFFFFFLL - 1);
    EXPECT_EQ(Look(ExchangeHead(-5).I32(0), kPoints).missing, 0);
    EXPECT_EQ(Look(ExchangeHead(2).Raw(point).Raw(point.substr(0, 40)), kPoints).missing, 0)
        << "it has begun: a load reads what is there";
}

TEST_F(ExchangeCheck, OtherKindIsNoWholeFile) {
    EXPECT_FALSE(Look(SampleFile(kPoints), kGroups).IsWhole());
    EXPECT_FALSE(Look(SampleFile(kGroups), kPoints).IsWhole());
}

TEST_F(ExchangeCheck, EveryCutIsFound) {
    for (const ExchangeKind kind : {kPoints, kGroups}) {
        const std::string whole = SampleFile(kind);
        for (std::size_t size = 0; size < whole.size(); ++size)
            ASSERT_FALSE(Look(whole.substr(0, size), kind).IsWhole()) << size;
    }
}

TEST_F(ExchangeCheck, FileThatIsNoneHasTheExitCodeOfItsReason) {
    EXPECT_EQ(CodeOf(folder / "gone"), exitNotFound);
    ::test::WriteFileBytes(file, "");
    EXPECT_EQ(CodeOf(file + "/below"), exitNotFound);
    EXPECT_EQ(CodeOf(folder.Path()), exitRefused);
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(CodeOf(folder / "pipe"), exitRefused) << "nobody waits for its writer";
    if (::geteuid() == 0) return;  // who may read everything
    ASSERT_EQ(::chmod(file.c_str(), 0), 0);
    EXPECT_EQ(CodeOf(file), exitFailure);
}

}  // namespace
}  // namespace gpsbook::test
