// What a person decides about conflicts.
#include <gtest/gtest.h>

#include "gps/cloud/FieldLayout.h"
#include "host/project/ConflictResolution.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/host/cloud/Records.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::AddAgain;
using gpsproject::KeepAsItIs;
using gpsproject::ProjectError;
using gpsproject::TakeTheirs;
using test::AcceptAll;
using test::CloudKind;
using test::CommitAnswer;
using test::DeletionOf;
using test::EverythingOf;
using test::KindOf;
using test::NamesIn;
using test::PageOf;
using test::Project;
using Mode = Project::Mode;

/// Groups 1 and 2 with points 3 and 4, and 5: as everybody has them.
class Resolution : public testing::Test {
protected:
    Resolution() { test::Settle(*project_); }

    /// A commit whose answer brings a conflict; the commit is `id` and the conflict gets the next number.
    void Clash(const std::string& id, const gpsproject::CloudClash& clash) {
        test::RenamePoint(*project_, 0, 0, id.c_str());
        ASSERT_TRUE(project_->GetCloud().BeginCommit(id));
        CommitAnswer answer = AcceptAll(*project_, 2, 100);
        answer.clashes = {clash};
        ASSERT_TRUE(project_->GetCloud().TakeAnswer(answer, 1));
    }

    /// What is on the disk is the book as it is.
    void ExpectSameAfterCrash() {
        project_->GetEdits().Commit();
        const std::string now = EverythingOf(*project_);
        const auto opened = disk_.Open(Mode::read);
        EXPECT_FALSE(opened->GetReport().IsDamaged()) << opened->GetReport().Text();
        EXPECT_EQ(EverythingOf(*opened), now);
    }

    const CCloudTable& Points() { return project_->GetCloud().GetTables().points; }

    test::SharedDisk disk_;
    std::unique_ptr<Project> project_ = disk_.Open(Mode::write);
    CLibGps& book_ = project_->GetBook();
};

gpsproject::CloudClash FieldClash(CloudKind kind, std::int64_t id, std::uint32_t bit,
                                  const std::string& theirs) {
    return {kind, id, "", bit, "mine", theirs, 2, "Bruno", 1};
}

const std::string kC = std::string(32, 'c');
const std::string kD = std::string(32, 'd');

// --- as it is ----------------------------------------------------------------------------------------------

TEST_F(Resolution, KeepAsItIsOnlySettlesTheConflict) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_NOME, "theirs"));
    KeepAsItIs(*project_, 1);
    EXPECT_TRUE(project_->GetCloud().GetState().conflicts.empty());
    EXPECT_EQ(NamesIn(*project_), "A(" + kC + " A2) B(B1)");
    EXPECT_FALSE(project_->GetCloud().HasToSend());
    ExpectSameAfterCrash();
}

TEST_F(Resolution, KeepAsItIsSettlesEveryKind) {
    Clash(kC, FieldClash(CloudKind::point, 5, 0, ""));
    test::RenamePoint(*project_, 0, 1, "mine");
    project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::point, 4)}));
    ASSERT_EQ(project_->GetCloud().GetState().conflicts.size(), 2U);
    KeepAsItIs(*project_, 2);
    KeepAsItIs(*project_, 1);
    EXPECT_TRUE(project_->GetCloud().GetState().conflicts.empty());
    EXPECT_EQ(book_.GetPunArSize(0), 1) << "it stays deleted";
}

TEST_F(Resolution, ConflictThatIsNotThereIsNotFound) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_NOME, "theirs"));
    const std::string before = EverythingOf(*project_);
    std::string message;
    for (const int number : {0, -1, 2, 1000}) {
        EXPECT_EQ(KindOf([&] { KeepAsItIs(*project_, number); }, &message), ProjectError::Kind::notFound);
        EXPECT_NE(message.find("no conflict " + std::to_string(number)), std::string::npos) << message;
        EXPECT_EQ(KindOf([&] { TakeTheirs(*project_, number); }), ProjectError::Kind::notFound);
        EXPECT_EQ(KindOf([&] { AddAgain(*project_, number, 0); }), ProjectError::Kind::notFound);
    }
    EXPECT_EQ(EverythingOf(*project_), before);
}

// --- theirs ------------------------------------------------------------------------------------------------

TEST_F(Resolution, TheirsComesInAsAnEditAndIsSentWithTheNextCommit) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_NOME, "theirs"));
    TakeTheirs(*project_, 1);
    EXPECT_EQ(NamesIn(*project_), "A(theirs A2) B(B1)");
    EXPECT_TRUE(project_->GetCloud().GetState().conflicts.empty());
    ExpectSameAfterCrash();
    ASSERT_TRUE(project_->GetCloud().BeginCommit(kD));
    EXPECT_EQ(project_->GetCloud().GetCommit()->records, "UPTGPS;3;1;theirs");
}

/// A book of its own for each field.
class EveryField : public Resolution {};

TEST_F(EveryField, OfAPointComesIn) {
    for (const FieldGroup& fields : PUN_FIELDS) {
        const auto reply = test::PointReply(3, 1, "theirs");
        std::string theirs;
        for (int i = 0; i < fields.count; ++i)
            theirs += (i > 0 ? ";" : "") +
                      std::string(reply.fields[static_cast<std::size_t>(fields.first + i)].View());
        // Numbers that a covariance holds exactly.
        if (fields.bit == CHG_PUN_POSCOV) theirs = "1000000000;500000000;250000000;125000000;-500000000;0";
        Clash(std::string(31, 'e') + static_cast<char>('a' + fields.first % 26),
              FieldClash(CloudKind::point, 4, fields.bit, theirs));
        TakeTheirs(*project_, project_->GetCloud().GetState().lastConflict);
        CPunGps& point = *book_.GetPunAt(0, 1);
        vex::String now;
        project_->GetCloud().GetTables().points.GetFields(point, fields.bit, now);
        EXPECT_EQ(now.View(), theirs) << fields.name;
        EXPECT_EQ(point.GetCloudFlag(), fields.bit) << fields.name << " is to be sent, and nothing else";
    }
    EXPECT_EQ(book_.GetPunAt(0, 1)->GetTod(), 43200U);
    EXPECT_EQ(book_.GetPunAt(0, 1)->GetGdop(), 2.25);
    ExpectSameAfterCrash();
}

TEST_F(EveryField, OfAGroupComesIn) {
    CGrpGps& group = *book_.GetGrpAt(1);
    group.SetTipoRicevitore(1);
    project_->GetEdits().GroupChanged(1);
    for (const FieldGroup& fields : GRP_FIELDS) {
        const auto reply = test::GroupReply(2, "theirs");
        std::string theirs;
        for (int i = 0; i < fields.count; ++i)
            theirs += (i > 0 ? ";" : "") +
                      std::string(reply.fields[static_cast<std::size_t>(fields.first + i)].View());
        Clash(std::string(31, 'f') + static_cast<char>('a' + fields.first % 26),
              FieldClash(CloudKind::group, 2, fields.bit, theirs));
        ASSERT_EQ(group.GetCloudFlag(), 0U) << fields.name;
        TakeTheirs(*project_, project_->GetCloud().GetState().lastConflict);
        EXPECT_EQ(group.GetCloudFlag(), fields.bit) << fields.name;
        vex::String now;
        project_->GetCloud().GetTables().base.GetFields(group, fields.bit, now);
        EXPECT_TRUE(fields.bit == CHG_GRP_CONVCOORD || now.View() == theirs) << fields.name;
    }
    EXPECT_EQ(group.GetConvCoord()->GetConvDtBaseGps()->GetNome(), "Rome");
    EXPECT_EQ(group.GetConvCoord()->GetImp(1), 1);
    EXPECT_EQ(group.GetConvCoord()->GetConvLocal()->GetTpProiezPla(), 4);
    EXPECT_EQ(project_->GetMap().GetDatAt(0, 0, 0)->GetNome(), "Lib");
    EXPECT_EQ(project_->GetMap().GetConvDtBaseGps()->GetNome(), "Map");
    ExpectSameAfterCrash();
}

TEST_F(Resolution, TheirsThatDiffersInADatumOfTheMapLibraryOnlyIsSentToo) {
    project_->GetCloud().TakePage(PageOf(2, {test::GroupReply(2, "B")}));
    const std::string datum = "Other;0;1;2;3;4;5;6;7;NULLVAL;NULLVAL";
    Clash(kC, FieldClash(CloudKind::group, 2, CHG_GRP_CONVCOORD, test::Conversion(datum)));
    ASSERT_FALSE(project_->GetCloud().HasToSend());
    TakeTheirs(*project_, 1);
    EXPECT_EQ(project_->GetMap().GetDatAt(0, 0, 0)->GetNome(), "Other");
    EXPECT_EQ(book_.GetGrpAt(1)->GetCloudFlag(), CHG_GRP_CONVCOORD);
    ExpectSameAfterCrash();
}

TEST_F(Resolution, TheirsOfAnEmptyTextIsTheEmptyText) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_NOME, ""));
    TakeTheirs(*project_, 1);
    EXPECT_EQ(NamesIn(*project_), "A( A2) B(B1)");
}

TEST_F(Resolution, TheirsOfADeletionOrAKeptItemIsNotHeld) {
    Clash(kC, FieldClash(CloudKind::point, 5, 0, "name"));
    test::RenamePoint(*project_, 0, 1, "mine");
    project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::point, 4)}));
    const std::string before = EverythingOf(*project_);
    for (const int number : {1, 2})
        EXPECT_EQ(KindOf([&] { TakeTheirs(*project_, number); }), ProjectError::Kind::notHeld) << number;
    EXPECT_EQ(EverythingOf(*project_), before);
}

TEST_F(Resolution, TheirsOfAnItemThatIsGoneIsNotFound) {
    Clash(kC, FieldClash(CloudKind::point, 4, CHG_NOME, "theirs"));
    Clash(kD, FieldClash(CloudKind::group, 2, CHG_NOME, "theirs"));
    test::DeletePoint(*project_, 0, 1);  // here, not sent yet
    project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::group, 2)}));
    const std::string before = EverythingOf(*project_);
    for (const int number : {1, 2})
        EXPECT_EQ(KindOf([&] { TakeTheirs(*project_, number); }), ProjectError::Kind::notFound) << number;
    EXPECT_EQ(EverythingOf(*project_), before);
    KeepAsItIs(*project_, 1);
    KeepAsItIs(*project_, 2);
    EXPECT_TRUE(project_->GetCloud().GetState().conflicts.empty());
}

TEST_F(Resolution, TheirsWithAnotherNumberOfFieldsIsDamaged) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_COORD, "1;2"));
    Clash(kD, FieldClash(CloudKind::point, 3, CHG_NOME, "a;b"));
    Clash(std::string(32, 'e'), FieldClash(CloudKind::point, 3, 0x80000000, "x"));  // no such bit
    Clash(std::string(32, 'f'), FieldClash(CloudKind::point, 3, CHG_NOME | CHG_SECSCRI, "x;y"));  // two
    const std::string before = EverythingOf(*project_);
    for (const int number : {1, 2, 3, 4})
        EXPECT_EQ(KindOf([&] { TakeTheirs(*project_, number); }), ProjectError::Kind::damaged) << number;
    EXPECT_EQ(EverythingOf(*project_), before);
}

// --- again -------------------------------------------------------------------------------------------------

TEST_F(Resolution, KeptGroupIsAddedAgainAsANewOneAndSurvivesACrash) {
    test::RenamePoint(*project_, 0, 1, "mine");
    project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::group, 1)}));
    EXPECT_EQ(NamesIn(*project_), "B(B1)");
    EXPECT_EQ(AddAgain(*project_, 1, -1), 1);
    EXPECT_EQ(NamesIn(*project_), "B(B1) A(A1 mine)");
    EXPECT_TRUE(project_->GetCloud().GetState().conflicts.empty());
    ExpectSameAfterCrash();
    ASSERT_TRUE(project_->GetCloud().BeginCommit(kC));
    ASSERT_TRUE(project_->GetCloud().TakeAnswer(AcceptAll(*project_, 4, 21), 1));
    EXPECT_EQ(test::IdOfGroup(*project_, 1), 21);
    EXPECT_EQ(test::IdOfPoint(*project_, 1, 1), 23);
    EXPECT_FALSE(project_->GetCloud().HasToSend());
}

TEST_F(Resolution, KeptPointGoesIntoItsGroupOrAnotherOne) {
    test::RenamePoint(*project_, 0, 0, "x");
    test::RenamePoint(*project_, 0, 1, "y");
    project_->GetCloud().TakePage(
        PageOf(3, {DeletionOf(CloudKind::point, 3), DeletionOf(CloudKind::point, 4)}));
    EXPECT_EQ(NamesIn(*project_), "A() B(B1)");
    EXPECT_EQ(AddAgain(*project_, 1, -1), 0);
    EXPECT_EQ(AddAgain(*project_, 2, 1), 1);
    EXPECT_EQ(NamesIn(*project_), "A(x) B(B1 y)");
    EXPECT_EQ(Points().GetAdded().size(), 2U);
    ExpectSameAfterCrash();
}

TEST_F(Resolution, KeptPointFindsItsGroupAtItsNewPlace) {
    test::RenamePoint(*project_, 0, 0, "x");
    project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::point, 3)}));
    book_.GrpGpsSwap(0, 1);
    project_->GetEdits().GroupsSwapped(0, 1);
    EXPECT_EQ(AddAgain(*project_, 1, -1), 1);
    EXPECT_EQ(NamesIn(*project_), "B(B1) A(A2 x)");
}

TEST_F(Resolution, KeptPointWhoseGroupIsGoneWantsAnother) {
    test::RenamePoint(*project_, 0, 0, "x");
    project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::point, 3)}));
    project_->GetCloud().TakePage(PageOf(4, {DeletionOf(CloudKind::group, 1)}));
    const std::string before = EverythingOf(*project_);
    std::string message;
    EXPECT_EQ(KindOf([&] { AddAgain(*project_, 1, -1); }, &message), ProjectError::Kind::notFound);
    EXPECT_NE(message.find("group 'A'"), std::string::npos) << message;
    EXPECT_EQ(KindOf([&] { AddAgain(*project_, 1, 7); }), ProjectError::Kind::notFound);
    EXPECT_EQ(EverythingOf(*project_), before);
    EXPECT_EQ(AddAgain(*project_, 1, 0), 0);
    EXPECT_EQ(NamesIn(*project_), "B(B1 x)");
}

/// Point "x" was kept, and then its group with the point "y".
class KeptApart : public Resolution {
protected:
    KeptApart() {
        test::RenamePoint(*project_, 0, 0, "x");
        test::RenamePoint(*project_, 0, 1, "y");
        project_->GetCloud().TakePage(PageOf(3, {DeletionOf(CloudKind::point, 3)}));
        project_->GetCloud().TakePage(PageOf(4, {DeletionOf(CloudKind::group, 1)}));
    }

    std::int64_t GroupOfKept() { return project_->GetCloud().FindConflict(1)->groupId; }
};

TEST_F(KeptApart, PointFindsItsGroupThatWasAddedAgainBefore) {
    EXPECT_EQ(AddAgain(*project_, 2, -1), 1);
    ExpectSameAfterCrash();
    EXPECT_EQ(AddAgain(*project_, 1, -1), 1);
    EXPECT_EQ(NamesIn(*project_), "B(B1) A(y x)");
    ExpectSameAfterCrash();
}

TEST_F(KeptApart, PointFindsItsGroupThatWasAddedAgainInAnotherRun) {
    AddAgain(*project_, 2, -1);
    project_->Save();
    project_.reset();
    const auto opened = disk_.Open(Mode::write);
    EXPECT_EQ(AddAgain(*opened, 1, -1), 1);
    EXPECT_EQ(NamesIn(*opened), "B(B1) A(y x)");
}

TEST_F(KeptApart, PointFindsItsGroupThatHasBeenSentMeanwhile) {
    AddAgain(*project_, 2, -1);
    ASSERT_TRUE(project_->GetCloud().BeginCommit(kC));
    ASSERT_TRUE(project_->GetCloud().TakeAnswer(AcceptAll(*project_, 5, 21), 1));
    EXPECT_EQ(GroupOfKept(), 21);
    ExpectSameAfterCrash();
    EXPECT_EQ(AddAgain(*project_, 1, -1), 1);
    EXPECT_EQ(NamesIn(*project_), "B(B1) A(y x)");
}

TEST_F(KeptApart, PointWaitsForAGroupThatWasRefused) {
    AddAgain(*project_, 2, -1);
    ASSERT_TRUE(project_->GetCloud().BeginCommit(kC));
    CommitAnswer answer = AcceptAll(*project_, 5, 21);
    answer.ids = {0, 0};
    answer.refused = {{1, "no"}, {2, "no"}};
    ASSERT_TRUE(project_->GetCloud().TakeAnswer(answer, 1));
    EXPECT_LT(GroupOfKept(), 0);
    EXPECT_EQ(AddAgain(*project_, 1, -1), 1);
}

TEST_F(KeptApart, PointFindsNoGroupThatWasDeletedAgain) {
    AddAgain(*project_, 2, -1);
    test::DeleteGroup(*project_, 1);
    EXPECT_EQ(KindOf([&] { AddAgain(*project_, 1, -1); }), ProjectError::Kind::notFound);
}

TEST_F(Resolution, ManySettledAtOnceLeaveTheListTogether) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_NOME, "theirs"));
    Clash(kD, FieldClash(CloudKind::point, 3, CHG_SECSCRI, "theirs"));
    Clash(std::string(32, 'e'), FieldClash(CloudKind::point, 4, CHG_NOME, "theirs"));
    {
        const gpsproject::BookCloud::Settling settling(project_->GetCloud());
        KeepAsItIs(*project_, 1);
        TakeTheirs(*project_, 3);
        EXPECT_EQ(project_->GetCloud().GetState().conflicts.size(), 3U);
        EXPECT_EQ(project_->GetCloud().FindConflict(1), nullptr);
        EXPECT_EQ(KindOf([&] { KeepAsItIs(*project_, 1); }), ProjectError::Kind::notFound);
    }
    ASSERT_EQ(project_->GetCloud().GetState().conflicts.size(), 1U);
    EXPECT_EQ(project_->GetCloud().GetState().conflicts[0].number, 2);
    ExpectSameAfterCrash();
}

TEST_F(Resolution, AddAgainOfAnotherKindIsNotHeld) {
    Clash(kC, FieldClash(CloudKind::point, 3, CHG_NOME, "theirs"));
    Clash(kD, FieldClash(CloudKind::point, 5, 0, "name"));
    const std::string before = EverythingOf(*project_);
    for (const int number : {1, 2})
        EXPECT_EQ(KindOf([&] { AddAgain(*project_, number, 0); }), ProjectError::Kind::notHeld) << number;
    EXPECT_EQ(EverythingOf(*project_), before);
}

TEST(ResolutionDamage, DamagedRecordAddsNothingAndTheConflictStays) {
    gpsproject::CloudState state;
    state.link = test::kLink;
    state.lastConflict = 2;
    for (const CloudKind kind : {CloudKind::group, CloudKind::point}) {
        gpsproject::CloudConflict kept;
        kept.number = kind == CloudKind::group ? 1 : 2;
        kept.kind = gpsproject::CloudConflict::Kind::kept;
        kept.clash.kind = kind;
        kept.record = "damaged";
        state.conflicts.push_back(kept);
    }
    ofpstream out(Project::kNewestVersion);
    WriteCloudState(out, state);
    for (int table = 0; table < 2; ++table) {  // no ticket, no deletion, no commit
        out.WriteInt64(0);
        out.WriteInt64(0);
        out.WriteUChar(0);
    }
    Project project;
    ifpstream in(out.GetBytes().data(), out.GetBytes().size(), Project::kNewestVersion);
    project.GetCloud().LeggeDaFile(in);
    project.GetCloud().GoOnAsRead();
    ASSERT_TRUE(in.IsOk());
    test::AddGroup(project, "A");
    for (const int number : {1, 2})
        EXPECT_EQ(KindOf([&] { AddAgain(project, number, 0); }), ProjectError::Kind::damaged) << number;
    EXPECT_EQ(NamesIn(project), "A()");
    EXPECT_EQ(project.GetCloud().GetState().conflicts.size(), 2U);
}

}  // namespace
