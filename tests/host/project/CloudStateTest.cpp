// Records of what a shared book knows of its project, and of the messages that the journal keeps.
#include <gtest/gtest.h>

#include <limits>

#include "host/project/CloudState.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/host/project/CloudSamples.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::CloudState;
using gpsproject::CommitAnswer;
using gpsproject::PullPage;
using test::Bytes;
using test::Dump;
using test::Project;

template <class Write>
std::string Written(Write write) {
    ofpstream out(Project::kNewestVersion);
    write(out);
    return std::string(out.GetBytes());
}

template <class Read>
auto ReadBack(const std::string& bytes, Read read) {
    ifpstream in(bytes.data(), bytes.size(), Project::kNewestVersion);
    auto value = read(in);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);
    return value;
}

CloudState ReadState(ifpstream& in) {
    CloudState state;
    gpsproject::ReadCloudState(in, state);
    return state;
}

TEST(CloudStateRecord, CommitIsAsThePageSays) {
    const auto commit = test::SampleCommit();
    const auto bytes = Written([&](ofpstream& out) { WriteCommit(out, commit); });
    EXPECT_EQ(Dump(bytes), Dump(test::CommitBytes().Get()));
    EXPECT_EQ(ReadBack(bytes, gpsproject::ReadCommit), commit);
}

TEST(CloudStateRecord, AnswerIsAsThePageSays) {
    const auto answer = test::SampleAnswer();
    const auto bytes = Written([&](ofpstream& out) { WriteAnswer(out, answer); });
    EXPECT_EQ(Dump(bytes), Dump(test::AnswerBytes().Get()));
    EXPECT_EQ(ReadBack(bytes, gpsproject::ReadAnswer), answer);
}

TEST(CloudStateRecord, PageIsAsThePageSays) {
    const auto page = test::SamplePage();
    const auto bytes = Written([&](ofpstream& out) { WritePage(out, page); });
    EXPECT_EQ(Dump(bytes), Dump(test::PageBytes().Get()));
    EXPECT_EQ(ReadBack(bytes, gpsproject::ReadPage), page);
}

TEST(CloudStateRecord, StateIsAsThePageSays) {
    const auto state = test::SampleState();
    const auto bytes = Written([&](ofpstream& out) { WriteCloudState(out, state); });
    EXPECT_EQ(Dump(bytes), Dump(test::StateBytes().Get()));
    EXPECT_EQ(ReadBack(bytes, ReadState), state);
}

TEST(CloudStateRecord, StateWithoutCommitHasNoRoomForOne) {
    CloudState state;
    state.link = {"s", "p", "k"};
    const auto bytes = Written([&](ofpstream& out) { WriteCloudState(out, state); });
    EXPECT_EQ(Dump(bytes), Dump(Bytes()
                                    .Text("s")
                                    .Text("p")
                                    .Text("k")
                                    .I64(0)
                                    .I64(0)
                                    .Text("")
                                    .I64(0)
                                    .I64(-1)
                                    .U8(0)
                                    .I32(0)
                                    .I64(0)
                                    .I64(0)
                                    .Get()));
    EXPECT_EQ(ReadBack(bytes, ReadState), state);
}

// --- the tables --------------------------------------------------------------------------------------------

Bytes SectionHead(bool commit, const std::string& records) {
    Bytes bytes;
    bytes.Text("/s/store")
        .Text("site")
        .Text(test::kLink.key)
        .I64(0)
        .I64(0)
        .Text("")
        .I64(0)
        .I64(-1)
        .U8(commit ? 1 : 0);
    if (commit) bytes.Text(test::kCommit1).I64(0).I64(0).Text("").I64(0).Text(records);
    return bytes.I32(0).I64(0).I64(0);  // conflicts, refusals
}

TEST(CloudSection, NewlyLinkedBookHasItsTickets) {
    Project project;
    test::FillSmall(project);
    project.GetCloud().Link(test::kLink);
    Bytes expected = SectionHead(false, "");
    expected.I64(2).I64(0).U8(0);  // groups: last ticket, deleted, no commit
    expected.I64(3).I64(0).U8(0);
    EXPECT_EQ(Dump(test::CloudBytesOf(project)), Dump(expected.Get()));
}

TEST(CloudSection, CommitUnderWayHasTicketsOfWhatWasAdded) {
    Project project;
    test::FillSmall(project);
    project.GetCloud().Link(test::kLink);
    ASSERT_TRUE(project.GetCloud().BeginCommit(test::kCommit1));
    Bytes expected = SectionHead(true, project.GetCloud().GetCommit()->records);
    expected.I64(2).I64(0).U8(1).I64(2).I64(1).I64(2).I64(0).I64(0);
    expected.I64(3).I64(0).U8(1).I64(3).I64(1).I64(2).I64(3).I64(0).I64(0);
    EXPECT_EQ(Dump(test::CloudBytesOf(project)), Dump(expected.Get()));
}

TEST(CloudSection, CommitUnderWayHasIdsAndBitsOfChangesAndIdsOfDeletions) {
    Project project;
    test::FillSmall(project);
    project.GetCloud().Link(test::kLink);
    test::Settle(project);
    CLibGps& book = project.GetBook();
    book.GetGrpAt(0)->SetNomeGrp("A*");
    book.GetPunAt(0, 0)->SetNome("A1*");
    book.GetPunAt(0, 0)->SetQua(4);
    test::DeletePoint(project, 1, 0);
    ASSERT_TRUE(project.GetCloud().BeginCommit(test::kCommit2));
    test::DeletePoint(project, 0, 1);
    Bytes expected;
    expected.Text("/s/store").Text("site").Text(test::kLink.key).I64(0).I64(1).Text(test::kCommit1);
    expected.I64(1).I64(1).I64(-1).U8(1);
    expected.Text(test::kCommit2)
        .I64(0)
        .I64(1)
        .Text(test::kCommit1)
        .I64(1)
        .I64(1)
        .Text("UBAS;1;16;A*\r\nUPTGPS;3;33;A1*;4\r\nDEL;4;5");
    expected.I32(0).I64(0).I64(0);
    expected.I64(2).I64(0).U8(1).I64(0).I64(1).I64(1).U32(0x10).I64(0);
    expected.I64(3).I64(2).I64(4).I64(5).U8(1).I64(0).I64(1).I64(3).U32(0x21).I64(1).I64(5);
    EXPECT_EQ(Dump(test::CloudBytesOf(project)), Dump(expected.Get()));
}

// --- damage ------------------------------------------------------------------------------------------------

/// Whether `part` has nothing that `whole` has not, in the same place.
template <class T>
bool Begins(const std::vector<T>& part, const std::vector<T>& whole) {
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

TEST(CloudStateDamage, CutAnswerHoldsNothingThatWasNotThere) {
    const std::string bytes = test::AnswerBytes();
    const CommitAnswer whole = test::SampleAnswer();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        ifpstream in(bytes.data(), size, Project::kNewestVersion);
        const CommitAnswer read = gpsproject::ReadAnswer(in);
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_TRUE(Begins(read.ids, whole.ids)) << size;
        EXPECT_TRUE(Begins(read.refused, whole.refused)) << size;
        EXPECT_TRUE(Begins(read.clashes, whole.clashes)) << size;
    }
}

TEST(CloudStateDamage, CutPageHoldsNothingThatWasNotThere) {
    const std::string bytes = test::PageBytes();
    const PullPage whole = test::SamplePage();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        ifpstream in(bytes.data(), size, Project::kNewestVersion);
        const PullPage read = gpsproject::ReadPage(in);
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_TRUE(Begins(read.replies, whole.replies)) << size;
        for (const auto& author : read.authors) EXPECT_TRUE(whole.authors.contains(author.first)) << size;
    }
}

TEST(CloudStateDamage, CutStateHoldsNothingThatWasNotThere) {
    const std::string bytes = test::StateBytes();
    const CloudState whole = test::SampleState();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        ifpstream in(bytes.data(), size, Project::kNewestVersion);
        const CloudState read = ReadState(in);
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_TRUE(Begins(read.own, whole.own)) << size;
        EXPECT_TRUE(Begins(read.conflicts, whole.conflicts)) << size;
        EXPECT_TRUE(Begins(read.refusals, whole.refusals)) << size;
        EXPECT_TRUE(!read.commit || read.commit == whole.commit) << size;
    }
}

TEST(CloudStateDamage, CutSectionLeavesNoTicketOrIdInTheTables) {
    Project project;
    test::FillSmall(project);
    project.GetCloud().Link(test::kLink);
    test::Settle(project);
    project.GetBook().GetPunAt(0, 0)->SetNome("A1*");
    test::AddPoint(project, 0, "A3");
    test::DeletePoint(project, 1, 0);
    ASSERT_TRUE(project.GetCloud().BeginCommit(test::kCommit2));
    const std::string bytes = test::CloudBytesOf(project);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        Project cut;
        ifpstream in(bytes.data(), size, Project::kNewestVersion);
        cut.GetCloud().LeggeDaFile(in);
        EXPECT_FALSE(in.IsOk()) << size;
        EXPECT_FALSE(cut.GetCloud().IsLinked()) << size;
        const CCloudTable& points = cut.GetCloud().GetTables().points;
        EXPECT_FALSE(points.IsCommitUnderWay()) << size;
        for (const long long id : points.GetDeleted()) EXPECT_EQ(id, 5) << size;
        EXPECT_TRUE(points.GetAdded().empty()) << size;
    }
}

TEST(CloudStateDamage, HostileCountsEndWithTheStream) {
    for (const std::int64_t count : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(),
                                     std::int64_t{1} << 40, std::numeric_limits<std::int64_t>::max()}) {
        const std::string answer = Bytes().Text("c").I64(1).I64(count).I64(9);
        ifpstream in(answer.data(), answer.size(), Project::kNewestVersion);
        EXPECT_LE(gpsproject::ReadAnswer(in).ids.size(), 1U) << count;

        const std::string page =
            Bytes().I64(1).I64(1).Text("").U8(1).Text("").I64(count).U8(3).U8(0).I32(1).I64(1).U8(0).I64(
                count);
        ifpstream in2(page.data(), page.size(), Project::kNewestVersion);
        EXPECT_LE(gpsproject::ReadPage(in2).replies.size(), 1U) << count;

        const std::string state =
            Bytes().Text("s").Text("p").Text("k").I64(0).I64(0).Text("").I64(count).I64(7);
        ifpstream in3(state.data(), state.size(), Project::kNewestVersion);
        EXPECT_LE(ReadState(in3).own.size(), 1U) << count;

        const std::string commit = Bytes().Text("c").I64(1).I64(1).Text("").I64(count).I64(7);
        ifpstream in4(commit.data(), commit.size(), Project::kNewestVersion);
        EXPECT_LE(gpsproject::ReadCommit(in4).own.size(), 1U) << count;
    }
}

TEST(CloudStateDamage, LengthsBeyondTheStreamGiveWhatRemains) {
    for (const std::int32_t length : {-1, std::numeric_limits<std::int32_t>::min(), 1 << 30}) {
        const std::string bytes = Bytes().I32(length).Raw("abc");
        ifpstream in(bytes.data(), bytes.size(), Project::kNewestVersion);
        EXPECT_LE(gpsproject::ReadCommit(in).id.size(), 3U) << length;
    }
}

TEST(CloudStateDamage, UnknownKindsAreReadAsTheLastOnes) {
    std::string bytes = test::ClashBytes();
    bytes[0] = 99;
    const std::string answer = Bytes().Text("c").I64(1).I64(0).I64(0).I64(1).Raw(bytes);
    ifpstream in(answer.data(), answer.size(), Project::kNewestVersion);
    const CommitAnswer read = gpsproject::ReadAnswer(in);
    ASSERT_EQ(read.clashes.size(), 1U);
    EXPECT_EQ(read.clashes[0].kind, gpsproject::CloudKind::point);
}

}  // namespace
