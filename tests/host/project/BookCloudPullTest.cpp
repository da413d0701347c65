// The book's side of a shared project: what others did.
#include <gtest/gtest.h>

#include <functional>
#include <iterator>

#include "gps/cloud/FieldLayout.h"
#include "gps/model/ChangeBits.h"
#include "host/project/KeptItem.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::ProjectError;
using test::AcceptAll;
using test::BookCloud;
using test::CloudKind;
using test::CloudReply;
using test::DeletionOf;
using test::EverythingOf;
using test::GroupReply;
using test::IdOfGroup;
using test::IdOfPoint;
using test::kCommit2;
using test::KindOf;
using test::NamesIn;
using test::PageOf;
using test::PointReply;
using test::Project;
using test::PullPage;
using Mode = Project::Mode;
using Kind = gpsproject::CloudConflict::Kind;

/// Groups 1 and 2 with points 3 and 4, and 5: as everybody has them.
class Pull : public testing::Test {
protected:
    Pull() { test::Settle(*project_); }

    test::SharedDisk disk_;
    std::unique_ptr<Project> project_ = disk_.Open(Mode::write);
    BookCloud& cloud_ = project_->GetCloud();
    CLibGps& book_ = project_->GetBook();

    /// The newest revision that the server is told of, and its commit.
    std::string Newest() {
        const auto request = cloud_.GetPullRequest();
        return std::to_string(request.known) + " " + request.head;
    }
    const CCloudTable& Points() { return cloud_.GetTables().points; }
    const std::vector<gpsproject::CloudConflict>& Conflicts() { return cloud_.GetState().conflicts; }
};

TEST_F(Pull, NewItemsComeInUnderTheirIdsAndAreNotSent) {
    const auto taken = cloud_.TakePage(PageOf(2, {GroupReply(11, "C"), PointReply(12, 11, "C1")}));
    EXPECT_EQ(taken.groups, 1);
    EXPECT_EQ(taken.points, 1);
    EXPECT_EQ(taken.conflicts, 0);
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2) B(B1) Site(C1)");
    EXPECT_EQ(IdOfGroup(*project_, 2), 11);
    EXPECT_EQ(IdOfPoint(*project_, 2, 0), 12);
    EXPECT_EQ(book_.GetGrpAt(2)->GetCloudCreatorDevId(), 2);
    EXPECT_FALSE(cloud_.HasToSend());
    EXPECT_TRUE(book_.IsModified());
}

TEST_F(Pull, KnownItemsTakeTheOtherOnesValuesAndAreNotSent) {
    const auto taken = cloud_.TakePage(PageOf(2, {GroupReply(2, "base"), PointReply(5, 1, "other")}));
    EXPECT_EQ(taken.groups, 1);
    EXPECT_EQ(taken.points, 1);
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2) Site(other)") << "a known point stays in its group";
    EXPECT_EQ(book_.GetPunAt(1, 0)->GetLat(), 45.1);
    EXPECT_FALSE(cloud_.HasToSend());
}

TEST_F(Pull, FieldThatWaitsKeepsItsValueAndBecomesAConflict) {
    test::RenamePoint(*project_, 0, 0, "mine");
    const auto taken = cloud_.TakePage(PageOf(7, {PointReply(3, 1, "theirs")}));
    EXPECT_EQ(taken.points, 1);
    EXPECT_EQ(taken.conflicts, 1);
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetNome(), "mine");
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetSecScri(), "code") << "the other fields come in";
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetCloudFlag(), CHG_NOME) << "and mine is still to be sent";
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].kind, Kind::field);
    const gpsproject::CloudClash expected{CloudKind::point, 3, "theirs", CHG_NOME, "mine",
                                          "theirs",         2, "Bruno",  7};
    EXPECT_EQ(Conflicts()[0].clash, expected);
}

TEST_F(Pull, ConflictHoldsAllFieldsOfItsBit) {
    book_.GetPunAt(0, 0)->SetCoord(10, 20.5, 30);
    book_.GetPunAt(0, 0)->SetPosCov_xx(0.5F);
    cloud_.TakePage(PageOf(2, {PointReply(3, 1, "A1")}));
    ASSERT_EQ(Conflicts().size(), 2U);
    EXPECT_EQ(Conflicts()[0].clash.bit, CHG_COORD);
    EXPECT_EQ(Conflicts()[0].clash.mine, "10;20.5;30");
    EXPECT_EQ(Conflicts()[0].clash.theirs, "1.5;2.5;3.5");
    EXPECT_EQ(Conflicts()[1].clash.bit, CHG_PUN_POSCOV);
    EXPECT_EQ(Conflicts()[1].clash.mine.substr(0, 10), "500000000;");
    EXPECT_EQ(Conflicts()[1].clash.theirs, "1;2;3;4;5;6");
}

TEST_F(Pull, EveryBitOfAGroupThatWaitsIsAConflictOfItsOwn) {
    CGrpGps& group = *book_.GetGrpAt(0);
    CCloudItem& item = *CGrpGps::CloudItemOf(&group);
    group.SetTipoRicevitore(1);
    for (const FieldGroup& fields : GRP_FIELDS) item.CloudItemChanged(fields.bit);
    const auto taken = cloud_.TakePage(PageOf(2, {GroupReply(1, "base")}));
    EXPECT_EQ(group.GetNomeGrp(), "A");
    // All fields of the reply differ from those of the group.
    EXPECT_EQ(taken.conflicts, 13);
    ASSERT_EQ(Conflicts().size(), 13U);
    for (std::size_t i = 0; i < 13; ++i) {
        EXPECT_EQ(Conflicts()[i].clash.bit, GRP_FIELDS[i].bit);
        const auto separators =
            std::count(Conflicts()[i].clash.theirs.begin(), Conflicts()[i].clash.theirs.end(), ';');
        EXPECT_EQ(separators, GRP_FIELDS[i].count - 1) << GRP_FIELDS[i].name;
    }
}

TEST_F(Pull, EqualValuesAreNoConflict) {
    test::RenamePoint(*project_, 0, 0, "same");
    const auto taken = cloud_.TakePage(PageOf(2, {PointReply(3, 1, "same")}));
    EXPECT_EQ(taken.conflicts, 0);
    EXPECT_TRUE(Conflicts().empty());
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetCloudFlag(), CHG_NOME) << "only an answer confirms";
}

TEST_F(Pull, DeviceWithoutNameIsToldByItsNumber) {
    test::RenamePoint(*project_, 0, 0, "mine");
    PullPage page = PageOf(2, {PointReply(3, 1, "theirs")});
    page.authors.clear();
    cloud_.TakePage(page);
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].clash.author, "device 2");
    page.authors = {{2, ""}};
    cloud_.TakePage(page);
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].clash.author, "device 2");
}

TEST_F(Pull, ConflictNamesWhoMadeTheRevisionThatChangedTheItem) {
    test::RenamePoint(*project_, 0, 0, "mine");
    PullPage page = PageOf(7, {PointReply(3, 1, "theirs"), DeletionOf(CloudKind::point, 4)});
    test::RenamePoint(*project_, 0, 1, "also mine");
    page.replies[0].revision = 4;
    page.replies[1].revision = 5;
    page.authors = {{4, "Carla"}, {5, "Dora"}, {7, "Bruno"}};
    cloud_.TakePage(page);
    ASSERT_EQ(Conflicts().size(), 2U);
    EXPECT_EQ(Conflicts()[0].clash.author, "Carla");
    EXPECT_EQ(Conflicts()[0].clash.revision, 4);
    EXPECT_EQ(Conflicts()[1].clash.author, "Dora");
    EXPECT_EQ(Conflicts()[1].clash.revision, 5);
}

TEST_F(Pull, SameFieldAgainReplacesItsConflict) {
    test::RenamePoint(*project_, 0, 0, "mine");
    cloud_.TakePage(PageOf(2, {PointReply(3, 1, "first")}));
    cloud_.TakePage(PageOf(3, {PointReply(3, 1, "second")}));
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].number, 2);
    EXPECT_EQ(Conflicts()[0].clash.theirs, "second");
}

// --- conflicts that are over --------------------------------------------------------------------------

/// The answer to a commit has told that another one had set name and code of point 3.
class Disputed : public Pull {
protected:
    Disputed() {
        cloud_.TakePage(PageOf(2, {PointReply(3, 1, "A1")}));
        test::RenamePoint(*project_, 0, 0, "wall");
        EXPECT_TRUE(cloud_.BeginCommit(kCommit2));
        auto answer = test::AcceptAll(*project_, 3, 100);
        answer.clashes = {{CloudKind::point, 3, "wall", CHG_NOME, "wall", "fence", 2, "Bruno", 2},
                          {CloudKind::point, 3, "wall", CHG_SECSCRI, "code", "other", 2, "Bruno", 2}};
        EXPECT_TRUE(cloud_.TakeAnswer(answer, 1));
    }

    std::vector<int> Numbers() {
        std::vector<int> numbers;
        for (const auto& conflict : Conflicts()) numbers.push_back(conflict.number);
        return numbers;
    }

    using List = std::vector<int>;
};

TEST_F(Disputed, ConflictIsOverWhenAnotherValueComes) {
    cloud_.TakePage(PageOf(4, {PointReply(3, 1, "gate")}));
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetNome(), "gate");
    EXPECT_EQ(Numbers(), List{2}) << "that of the code stays";
    EXPECT_EQ(cloud_.FindConflict(1), nullptr);
    project_->GetEdits().Commit();
    EXPECT_EQ(EverythingOf(*disk_.Open(Mode::read)), EverythingOf(*project_));
}

TEST_F(Disputed, ConflictStaysWhenAnotherFieldComes) {
    CloudReply reply = PointReply(3, 1, "wall");
    reply.fields[12] = "1";  // quality
    cloud_.TakePage(PageOf(4, {reply}));
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetQua(), 1);
    EXPECT_EQ(Numbers(), (List{1, 2}));
}

TEST_F(Disputed, ConflictsOfOtherItemsStay) {
    cloud_.TakePage(PageOf(4, {PointReply(4, 1, "gate"), GroupReply(1, "gate")}));
    EXPECT_EQ(Numbers(), (List{1, 2}));
}

TEST_F(Disputed, ConflictIsOverWhenTheValueThatWaitsComesFromThereToo) {
    test::RenamePoint(*project_, 0, 0, "gate");
    cloud_.TakePage(PageOf(4, {PointReply(3, 1, "gate")}));
    EXPECT_EQ(Numbers(), List{2});
}

TEST_F(Disputed, ConflictIsOverWhenBothValuesHaveBecomeEqual) {
    test::RenamePoint(*project_, 0, 0, "fence");
    PullPage page = PageOf(4, {PointReply(5, 2, "B1")});
    page.last = false;
    cloud_.TakePage(page);
    EXPECT_EQ(Numbers(), (List{1, 2})) << "more is to come";
    page.last = true;
    cloud_.TakePage(page);
    EXPECT_EQ(Numbers(), List{2});
    project_->GetEdits().Commit();
    EXPECT_EQ(EverythingOf(*disk_.Open(Mode::read)), EverythingOf(*project_));
}

TEST_F(Disputed, ValueHereIsWhatStandsInTheBook) {
    test::RenamePoint(*project_, 0, 0, "gate");
    EXPECT_EQ(cloud_.ValueHere(Conflicts()[0]), "gate");
    test::DeletePoint(*project_, 0, 0);
    EXPECT_EQ(cloud_.ValueHere(Conflicts()[0]), std::nullopt);
}

// --- what comes back ---------------------------------------------------------------------------------------

// A record holds covariances up to 1 square metre, which is field 23 of a reply, and types of 0 or 1.

/// Of point 3, with covariances as a record has them: these are whole in single precision too.
CloudReply Back(const std::string& name) {
    CloudReply reply = PointReply(3, 1, name);
    const char* covariances[] = {"1000000000", "500000000", "250000000", "125000000", "0", "750000000"};
    for (std::size_t i = 0; i < std::size(covariances); ++i) reply.fields[23 + i] = covariances[i];
    return reply;
}

/// Of group 1, without the origin of a local system: it has none.
CloudReply GroupBack() {
    CloudReply reply = GroupReply(1, "base");
    reply.fields[70] = reply.fields[71] = "NULLVAL";
    return reply;
}

class Echo : public Pull {
protected:
    Echo() {
        // The book has what the reply tells, and measured more than a record holds.
        cloud_.TakePage(PageOf(2, {Back("A1"), GroupBack()}));
        point_.SetPosCov_xx(2.5F);
        group_.SetTipoRilievo(7);
    }
    /// What was measured is sent, and the server has taken it.
    void Send() {
        EXPECT_TRUE(cloud_.BeginCommit(kCommit2));
        EXPECT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 3, 100), 1));
        EXPECT_FALSE(cloud_.HasToSend());
    }

    CPunGps& point_ = *book_.GetPunAt(0, 0);
    CGrpGps& group_ = *book_.GetGrpAt(0);
};

TEST_F(Echo, LeavesAPointThatIsTheSameAsExactAsItIs) {
    Send();
    cloud_.PullAgainFrom(0);
    const auto taken = cloud_.TakePage(PageOf(3, {Back("A1")}));
    EXPECT_EQ(taken.points, 0);
    EXPECT_EQ(point_.GetPosCov_xx(), 2.5F);
    EXPECT_EQ(cloud_.GetState().revision, 3);
    EXPECT_FALSE(cloud_.HasToSend());
}

TEST_F(Echo, OneOtherFieldLeavesTheOthersOfThePointAsExactAsTheyAre) {
    Send();
    const CloudReply same = Back("A1");
    for (std::size_t i = 2; i < same.fields.size(); ++i) {
        point_.SetCloudNotify(false);
        point_.SetPosCov_xx(2.5F);
        point_.SetCloudNotify(true);
        CloudReply other = same;
        other.fields[i] = i < 4 ? "other" : "3";
        EXPECT_EQ(cloud_.TakePage(PageOf(3, {other})).points, 1) << i;
        constexpr std::size_t covariances = 23;
        EXPECT_EQ(point_.GetPosCov_xx() == 2.5F, i < covariances) << i;
        EXPECT_FALSE(cloud_.HasToSend()) << i;
        vex::String fields;
        project_->GetCloud().GetTables().points.GetFields(point_, 0x1FFFF, fields);
        std::string theirs;
        for (std::size_t k = 2; k < other.fields.size(); ++k) {
            if (k > 2) theirs += ';';
            theirs += other.fields[k].View();
        }
        EXPECT_EQ(fields.View(), theirs) << i;
        cloud_.TakePage(PageOf(3, {same}));
    }
}

TEST_F(Echo, ReplyWithoutAGroupIsRefused) {
    Send();
    CloudReply other = Back("other");
    other.fields[1] = "0";
    EXPECT_EQ(test::KindOf([&] { cloud_.TakePage(PageOf(3, {other})); }),
              gpsproject::ProjectError::Kind::damaged);
    EXPECT_EQ(point_.GetNome(), "A1");
}

TEST_F(Echo, TextThatOnlyBeginsAsItDoesHereIsAnotherOne) {
    Send();
    for (const char* name : {"A", "A11", ""}) {
        EXPECT_EQ(cloud_.TakePage(PageOf(3, {Back(name)})).points, 1) << name;
        EXPECT_EQ(point_.GetNome(), name);
        cloud_.TakePage(PageOf(3, {Back("A1")}));
    }
    CloudReply shorter = Back("A1");
    shorter.fields[28] = "75000000";
    EXPECT_EQ(cloud_.TakePage(PageOf(3, {shorter})).points, 1) << "the last field";
    EXPECT_EQ(point_.GetPosCov_zz(), 0.075F);
}

TEST_F(Echo, LeavesAGroupThatIsTheSameAsExactAsItIs) {
    Send();
    CloudReply same = GroupBack();
    EXPECT_EQ(cloud_.TakePage(PageOf(3, {same})).groups, 0);
    EXPECT_EQ(group_.GetTipoRilievo(), 7);
    same.fields[13] = "2.5";  // height of the base
    EXPECT_EQ(cloud_.TakePage(PageOf(4, {same})).groups, 1);
    EXPECT_EQ(group_.GetBaseElev(), 2.5);
    EXPECT_EQ(group_.GetTipoRilievo(), 7) << "a record knows 0 and 1";
    same.fields[9] = "0";
    cloud_.TakePage(PageOf(5, {same}));
    EXPECT_EQ(group_.GetTipoRilievo(), 0) << "what others set comes";
}

TEST_F(Echo, OfWhatWaitsItTellsTheConflict) {
    // Covariances are not sent yet, and the reply has no others: it is applied as any other.
    const auto taken = cloud_.TakePage(PageOf(3, {Back("A1")}));
    EXPECT_EQ(taken.points, 1);
    EXPECT_EQ(taken.conflicts, 0) << "as texts they are the same";
    EXPECT_EQ(point_.GetPosCov_xx(), 2.5F) << "what waits stays";
    EXPECT_EQ(point_.GetCloudFlag(), CHG_PUN_POSCOV);
}

// --- deletions ---------------------------------------------------------------------------------------------

TEST_F(Pull, DeletedPointGoes) {
    const auto taken = cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::point, 3)}));
    EXPECT_EQ(taken.deleted, 1);
    EXPECT_EQ(NamesIn(*project_), "A(A2) B(B1)");
    EXPECT_TRUE(Conflicts().empty());
    EXPECT_FALSE(cloud_.HasToSend()) << "what the server deleted is not sent back";
}

TEST_F(Pull, DeletedGroupGoesWithItsPoints) {
    const auto taken =
        cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::group, 1), DeletionOf(CloudKind::point, 3),
                                   DeletionOf(CloudKind::point, 4)}));
    EXPECT_EQ(taken.deleted, 1) << "the points went with it";
    EXPECT_EQ(NamesIn(*project_), "B(B1)");
    EXPECT_TRUE(Conflicts().empty());
    EXPECT_FALSE(cloud_.HasToSend());
}

TEST_F(Pull, DeletedPointWithAnUnconfirmedFieldIsKeptWholeFirst) {
    test::RenamePoint(*project_, 0, 0, "mine");
    book_.GetPunAt(0, 0)->SetNote("a note that no record carries");
    const auto taken = cloud_.TakePage(PageOf(9, {DeletionOf(CloudKind::point, 3)}));
    EXPECT_EQ(taken.deleted, 1);
    EXPECT_EQ(taken.conflicts, 1);
    EXPECT_EQ(NamesIn(*project_), "A(A2) B(B1)");
    EXPECT_FALSE(cloud_.HasToSend());
    ASSERT_EQ(Conflicts().size(), 1U);
    const gpsproject::CloudConflict& kept = Conflicts()[0];
    EXPECT_EQ(kept.kind, Kind::kept);
    const gpsproject::CloudClash expected{CloudKind::point, 3, "mine", 0, "", "", 2, "Bruno", 9};
    EXPECT_EQ(kept.clash, expected);
    EXPECT_EQ(kept.group, "A");
    EXPECT_EQ(kept.groupId, 1);
    EXPECT_EQ(kept.keptPoints, 1);
    ASSERT_TRUE(gpsproject::PutPointBack(book_, 0, kept.record));
    EXPECT_EQ(book_.GetPunAt(0, 1)->GetNome(), "mine");
    EXPECT_EQ(book_.GetPunAt(0, 1)->GetNote(), "a note that no record carries");
}

TEST_F(Pull, DeletedGroupIsKeptWithAllItsPointsWhenOneOfThemIsUnconfirmed) {
    test::RenamePoint(*project_, 0, 1, "mine");
    const auto taken = cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::group, 1)}));
    EXPECT_EQ(taken.conflicts, 1);
    EXPECT_EQ(NamesIn(*project_), "B(B1)");
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].clash.kind, CloudKind::group);
    EXPECT_EQ(Conflicts()[0].clash.id, 1);
    EXPECT_EQ(Conflicts()[0].clash.name, "A");
    EXPECT_EQ(Conflicts()[0].keptPoints, 2);
    ASSERT_TRUE(gpsproject::PutGroupBack(book_, Conflicts()[0].record, project_->GetDrawings()));
    EXPECT_EQ(NamesIn(*project_), "B(B1) A(A1 mine)");
}

TEST_F(Pull, DeletedGroupIsKeptForAPointThatWasNeverSent) {
    test::AddPoint(*project_, 1, "unsent");
    cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::group, 2)}));
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].keptPoints, 2);
    EXPECT_TRUE(Points().GetAdded().empty()) << "its point is not sent without it";
    EXPECT_FALSE(cloud_.HasToSend());
}

TEST_F(Pull, DeletedGroupIsKeptForAPointThatWasAddedAgain) {
    // A point that was read from a record has no changed fields.
    ASSERT_TRUE(gpsproject::PutPointBack(book_, 1, gpsproject::KeepPoint(book_, 0, 0)));
    ASSERT_EQ(book_.GetPunAt(1, 1)->GetCloudFlag(), 0U);
    cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::group, 2)}));
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].keptPoints, 2);
}

TEST_F(Pull, DeletedGroupIsKeptForAFieldOfItsOwn) {
    book_.GetGrpAt(1)->SetBaseAltAnt(1.5);
    cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::group, 2)}));
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].clash.kind, CloudKind::group);
}

TEST_F(Pull, DeletedPointIsKeptForATextThatIsNowhereElse) {
    using Set = std::function<void(CPunGps&)>;
    const Set texts[] = {
        [](CPunGps& p) { p.SetNote("behind the wall"); }, [](CPunGps& p) { p.SetTerScri("12"); },
        [](CPunGps& p) { p.SetNomiFoto_Raw("wall.jpg"); }, [](CPunGps& p) { p.SetAttribDis("dashed"); }};
    int number = 0;
    for (const Set& set : texts) {
        cloud_.TakePage(PageOf(2, {PointReply(20, 1, "A3")}));
        set(*book_.GetPunAt(0, 2));
        ASSERT_EQ(book_.GetPunAt(0, 2)->GetCloudFlag(), 0U) << "no record carries it";
        const auto taken = cloud_.TakePage(PageOf(3, {DeletionOf(CloudKind::point, 20)}));
        EXPECT_EQ(taken.deleted, 1) << number;
        EXPECT_EQ(taken.conflicts, 1) << number;
        EXPECT_EQ(NamesIn(*project_), "A(A1 A2) B(B1)");
        ASSERT_EQ(Conflicts().size(), static_cast<std::size_t>(++number));
        EXPECT_EQ(Conflicts().back().kind, Kind::kept);
    }
    ASSERT_TRUE(gpsproject::PutPointBack(book_, 0, Conflicts()[0].record));
    EXPECT_EQ(book_.GetPunAt(0, 2)->GetNote(), "behind the wall");
}

TEST_F(Pull, DeletedGroupIsKeptForATextThatIsNowhereElse) {
    using Set = std::function<void(CLibGps&)>;
    const Set texts[] = {[](CLibGps& b) { b.GetGrpAt(2)->SetOper("Verdi"); },
                         [](CLibGps& b) { b.GetGrpAt(2)->SetStrum("R8"); },
                         [](CLibGps& b) { b.GetGrpAt(2)->SetData("2026-11-21"); },
                         [](CLibGps& b) { b.GetGrpAt(2)->SetLocalita("Muggia"); },
                         [](CLibGps& b) { b.GetGrpAt(2)->SetNote("wet"); },
                         [](CLibGps& b) { b.GetPunAt(2, 0)->SetNote("behind the wall"); }};
    int number = 0;
    for (const Set& set : texts) {
        cloud_.TakePage(PageOf(2, {GroupReply(20, "C"), PointReply(21, 20, "C1")}));
        set(book_);
        const auto taken = cloud_.TakePage(PageOf(3, {DeletionOf(CloudKind::group, 20)}));
        EXPECT_EQ(taken.deleted, 1) << number;
        EXPECT_EQ(taken.conflicts, 1) << number;
        EXPECT_EQ(NamesIn(*project_), "A(A1 A2) B(B1)");
        ASSERT_EQ(Conflicts().size(), static_cast<std::size_t>(++number));
        EXPECT_EQ(Conflicts().back().keptPoints, 1);
    }
    ASSERT_TRUE(gpsproject::PutGroupBack(book_, Conflicts()[0].record, project_->GetDrawings()));
    EXPECT_EQ(book_.GetGrpAt(2)->GetOper(), "Verdi");
}

/// By somebody who had not seen what was sent from here.
CloudReply UnseenDeletionOf(CloudKind kind, std::int64_t id) {
    CloudReply reply = DeletionOf(kind, id);
    reply.unseen = true;
    return reply;
}

TEST_F(Pull, PointDeletedBySomebodyWhoHadNotSeenItIsKept) {
    test::RenamePoint(*project_, 0, 1, "mine");
    const auto taken =
        cloud_.TakePage(PageOf(2, {UnseenDeletionOf(CloudKind::point, 3),
                                   UnseenDeletionOf(CloudKind::point, 4), DeletionOf(CloudKind::point, 5)}));
    EXPECT_EQ(taken.deleted, 3);
    EXPECT_EQ(taken.conflicts, 2);
    EXPECT_EQ(NamesIn(*project_), "A() B()");
    ASSERT_EQ(Conflicts().size(), 2U);
    EXPECT_EQ(Conflicts()[0].kind, Kind::kept);
    EXPECT_EQ(Conflicts()[0].clash.name, "A1");
    EXPECT_EQ(Conflicts()[0].clash.mine, "unseen");
    EXPECT_EQ(Conflicts()[1].clash.mine, "unseen, unsent");
    ASSERT_TRUE(gpsproject::PutPointBack(book_, 1, Conflicts()[0].record));
    EXPECT_EQ(NamesIn(*project_), "A() B(A1)");
}

TEST_F(Pull, GroupDeletedBySomebodyWhoHadNotSeenItIsKeptWithItsPoints) {
    book_.GetGrpAt(1)->SetNomeGrp("");
    book_.GetGrpAt(1)->SetNome("entity of B");
    const auto taken = cloud_.TakePage(
        PageOf(2, {UnseenDeletionOf(CloudKind::group, 1), UnseenDeletionOf(CloudKind::group, 2)}));
    EXPECT_EQ(taken.conflicts, 2);
    ASSERT_EQ(Conflicts().size(), 2U);
    EXPECT_EQ(Conflicts()[0].clash.name, "A");
    EXPECT_EQ(Conflicts()[0].clash.mine, "unseen");
    EXPECT_EQ(Conflicts()[0].keptPoints, 2);
    EXPECT_EQ(Conflicts()[1].clash.name, "entity of B");
    EXPECT_EQ(Conflicts()[1].group, "entity of B");
    EXPECT_EQ(Conflicts()[1].clash.mine, "unseen, unsent");
}

TEST_F(Pull, PlaceForPhotosThatHoldsNoneKeepsNothing) {
    book_.GetPunAt(0, 0)->SetNomiFoto_Raw("******");
    EXPECT_EQ(cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::point, 3)})).conflicts, 0);
}

TEST_F(Pull, KeptItemsAreNotReplacedByOneAnother) {
    test::RenamePoint(*project_, 0, 0, "x");
    test::RenamePoint(*project_, 1, 0, "y");
    cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::point, 3), DeletionOf(CloudKind::point, 5)}));
    EXPECT_EQ(Conflicts().size(), 2U);
}

TEST_F(Pull, WhatCameBackAndIsKeptOnceMoreDoesNotReplaceWhatWasKeptBefore) {
    test::RenamePoint(*project_, 0, 0, "x");
    cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::point, 3)}));
    cloud_.TakePage(PageOf(3, {PointReply(3, 1, "back")}));
    test::RenamePoint(*project_, 0, 1, "y");
    cloud_.TakePage(PageOf(4, {DeletionOf(CloudKind::point, 3)}));
    ASSERT_EQ(Conflicts().size(), 2U);
    EXPECT_EQ(Conflicts()[0].clash.name, "x");
    EXPECT_EQ(Conflicts()[1].clash.name, "y");
}

TEST_F(Pull, DeletionOfWhatIsNotHereIsPassedOver) {
    const std::string before = NamesIn(*project_);
    const auto taken =
        cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::point, 99), DeletionOf(CloudKind::group, 98)}));
    EXPECT_EQ(taken.deleted, 0);
    EXPECT_EQ(NamesIn(*project_), before);
    EXPECT_EQ(cloud_.GetState().revision, 2);
}

TEST_F(Pull, DeletionOfWhatWasDeletedHereTooEndsItsWaiting) {
    test::DeletePoint(*project_, 0, 0);
    EXPECT_TRUE(cloud_.HasToSend());
    const auto taken = cloud_.TakePage(PageOf(2, {DeletionOf(CloudKind::point, 3)}));
    EXPECT_EQ(taken.deleted, 0);
    EXPECT_FALSE(cloud_.HasToSend());
}

TEST_F(Pull, ReplyDoesNotBringBackWhatWasDeletedHereAndIsTold) {
    test::DeletePoint(*project_, 0, 0);
    test::DeleteGroup(*project_, 1);
    const auto taken = cloud_.TakePage(PageOf(2, {GroupReply(2, "B"), PointReply(3, 1, "A1")}));
    EXPECT_EQ(taken.groups + taken.points, 0);
    EXPECT_EQ(taken.conflicts, 2);
    EXPECT_EQ(NamesIn(*project_), "A(A2)");
    ASSERT_EQ(Conflicts().size(), 2U);
    EXPECT_EQ(Conflicts()[0].clash.name, "Site") << "a group goes by its group name";
    EXPECT_EQ(Conflicts()[1].kind, Kind::deletedHere);
    const gpsproject::CloudClash expected{CloudKind::point, 3, "A1", 0, "", "", 2, "Bruno", 2};
    EXPECT_EQ(Conflicts()[1].clash, expected);
    EXPECT_EQ(Conflicts()[1].group, "A");
    EXPECT_EQ(Conflicts()[1].groupId, 1);
    EXPECT_EQ(cloud_.GetTables().base.GetDeleted(), std::set<long long>{2});
}

TEST_F(Pull, NewPointOfAGroupThatWasDeletedHereIsOnlyTold) {
    test::DeleteGroup(*project_, 1);
    const auto taken = cloud_.TakePage(PageOf(2, {PointReply(20, 2, "late"), PointReply(21, 1, "A3")}));
    EXPECT_EQ(taken.points, 1);
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2 A3)");
    ASSERT_EQ(Conflicts().size(), 1U);
    EXPECT_EQ(Conflicts()[0].kind, Kind::deletedHere);
    EXPECT_EQ(Conflicts()[0].clash.name, "late");
    EXPECT_EQ(Conflicts()[0].clash.theirs, "added");
    EXPECT_EQ(Conflicts()[0].groupId, 2);
    EXPECT_EQ(cloud_.GetState().revision, 2);
}

// --- pages -------------------------------------------------------------------------------------------------

TEST_F(Pull, PageThatDoesNotFitSaysSoAndKeepsWhatCameBefore) {
    project_->Save();
    std::string message;
    const auto kind = KindOf(
        [&] {
            cloud_.TakePage(PageOf(
                2, {PointReply(20, 1, "A3"), PointReply(21, 77, "lost"), PointReply(22, 1, "not taken")}));
        },
        &message);
    EXPECT_EQ(kind, ProjectError::Kind::damaged);
    EXPECT_NE(message.find("point (id 21)"), std::string::npos) << message;
    EXPECT_TRUE(book_.IsModified());
    EXPECT_EQ(NamesIn(*project_), "A(A1 A2 A3) B(B1)");
    EXPECT_EQ(cloud_.GetState().revision, 0);
    EXPECT_EQ(cloud_.GetState().own, std::vector<std::int64_t>{1});
}

TEST_F(Pull, WhatCameBeforeAReplyThatDoesNotFitIsThereAfterACrash) {
    EXPECT_EQ(KindOf([&] {
                  cloud_.TakePage(
                      PageOf(2, {GroupReply(11, "C"), PointReply(12, 11, "C1"), PointReply(21, 77, "lost")}));
              }),
              ProjectError::Kind::damaged);
    // The next edits are about what came.
    test::AddPoint(*project_, 2, "mine");
    project_->GetEdits().Commit();
    const std::string before = EverythingOf(*project_);
    const auto opened = disk_.Open(Mode::read);
    EXPECT_FALSE(opened->GetReport().IsDamaged()) << opened->GetReport().Text();
    EXPECT_EQ(EverythingOf(*opened), before);
    EXPECT_EQ(NamesIn(*opened), "A(A1 A2) B(B1) Site(C1 mine)");
}

TEST_F(Pull, RepliesThatAreNoneDoNotFit) {
    test::RenamePoint(*project_, 0, 0, "mine");
    const std::string before = EverythingOf(*project_);
    std::vector<CloudReply> wrong;
    for (const char* id : {"", "0", "-3", "3x", " 3", "9999999999999999999"}) {
        wrong.push_back(PointReply(3, 1, "x"));
        wrong.back().fields[0] = id;
        wrong.push_back(DeletionOf(CloudKind::point, 3));
        wrong.back().fields[1] = id;
    }
    wrong.push_back(PointReply(3, 1, "x"));
    wrong.back().fields.pop_back();
    wrong.push_back(PointReply(3, 0, "x"));  // no group
    wrong.push_back(GroupReply(1, "x"));
    wrong.back().fields.emplace_back("one more");
    wrong.push_back(GroupReply(1, "x"));
    wrong.back().fields[1] = "0";  // no creator
    wrong.push_back(DeletionOf(CloudKind::group, 1));
    wrong.back().fields.clear();
    wrong.push_back(GroupReply(1, "x"));
    wrong.back().kind = CloudKind::point;
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        EXPECT_EQ(KindOf([&] { cloud_.TakePage(PageOf(2, {wrong[i]})); }), ProjectError::Kind::damaged) << i;
        EXPECT_EQ(EverythingOf(*project_), before) << i;
    }
}

TEST_F(Pull, RevisionMovesWithTheLastPageOnly) {
    PullPage page = PageOf(8, {PointReply(3, 1, "A1*")});
    page.last = false;
    page.next = "somewhere";
    cloud_.TakePage(page);
    EXPECT_EQ(cloud_.GetState().revision, 0);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 0);
    cloud_.TakePage(PageOf(8, {}));
    EXPECT_EQ(cloud_.GetState().revision, 8);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 8);
    EXPECT_EQ(cloud_.GetPullRequest().upTo, 0);
    EXPECT_EQ(cloud_.GetPullRequest().next, "");
}

TEST_F(Pull, HeadMovesWithTheRevision) {
    PullPage page = PageOf(8, {PointReply(3, 1, "A1*")}, kCommit2);
    page.last = false;
    page.next = "somewhere";
    EXPECT_EQ(Newest(), "1 " + test::kCommit1);
    cloud_.TakePage(page);
    EXPECT_EQ(Newest(), "8 " + kCommit2) << "what the page brought is in the book";
    page.last = true;
    page.newest = 9;
    page.head = test::kCommit1;
    cloud_.TakePage(page);
    EXPECT_EQ(Newest(), "9 " + test::kCommit1) << "the last page may tell of later changes";
    EXPECT_EQ(cloud_.GetState().revision, 8);
    cloud_.PullAgainFrom(5);
    EXPECT_EQ(Newest(), "9 " + test::kCommit1) << "also when older ones are wanted once more";
    EXPECT_EQ(cloud_.GetPullRequest().revision, 5);
}

TEST_F(Pull, AnswerIsTheNewestRevisionUntilAPageTellsOfALaterOne) {
    test::RenamePoint(*project_, 0, 0, "A1*");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(cloud_.GetCommit()->known, 1);
    EXPECT_EQ(cloud_.GetCommit()->head, test::kCommit1);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 6, 100), 1));
    EXPECT_EQ(Newest(), "6 " + kCommit2);
    cloud_.TakePage(PageOf(5, {}, test::kCommit1));
    EXPECT_EQ(Newest(), "6 " + kCommit2) << "an own revision is left";
    project_->GetEdits().Commit();
    EXPECT_EQ(disk_.Open(Mode::read)->GetCloud().GetState().head, kCommit2);
    cloud_.TakePage(PageOf(7, {}, test::kCommit1));
    EXPECT_EQ(Newest(), "7 " + test::kCommit1);
}

TEST_F(Pull, AnswerOfWhichNothingWasTakenIsNoRevision) {
    test::RenamePoint(*project_, 0, 0, "A1*");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    auto answer = AcceptAll(*project_, 0, 100);
    answer.refused = {{1, "no"}};
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    EXPECT_EQ(Newest(), "1 " + test::kCommit1);
}

TEST_F(Pull, PageThatDoesNotFitIsKnownAsFarAsItWent) {
    EXPECT_EQ(KindOf([&] { cloud_.TakePage(PageOf(8, {PointReply(20, 77, "lost")}, kCommit2)); }),
              ProjectError::Kind::damaged);
    EXPECT_EQ(Newest(), "1 " + test::kCommit1);
    EXPECT_EQ(KindOf([&] {
                  cloud_.TakePage(PageOf(8, {PointReply(19, 1, "A3"), PointReply(20, 77, "lost")}, kCommit2));
              }),
              ProjectError::Kind::damaged);
    EXPECT_EQ(Newest(), "8 " + kCommit2);
    project_->GetEdits().Commit();
    EXPECT_EQ(disk_.Open(Mode::read)->GetCloud().GetState().known, 8);
}

TEST_F(Pull, CopyThatKnowsMoreTellsTheNewestRevision) {
    gpsproject::CloudState copy;
    copy.revision = 0;
    copy.known = 0;
    cloud_.PullAgainAfter(copy);
    EXPECT_EQ(Newest(), "1 " + test::kCommit1);
    copy.known = 4;
    copy.head = kCommit2;
    cloud_.PullAgainAfter(copy);
    EXPECT_EQ(Newest(), "4 " + kCommit2);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 0);
}

TEST_F(Pull, EmptyPageThatTellsNothingNewIsNotNoted) {
    cloud_.TakePage(PageOf(2, {}, kCommit2));
    project_->Save();
    const auto taken = cloud_.TakePage(PageOf(2, {}, kCommit2));
    EXPECT_EQ(taken.groups + taken.points + taken.deleted + taken.conflicts, 0);
    EXPECT_FALSE(book_.IsModified());
    project_->GetEdits().Commit();
    EXPECT_EQ(disk_.Open(Mode::read)->GetReplay().edits, 0);
}

TEST_F(Pull, EmptyPageThatTellsSomethingIsNoted) {
    cloud_.TakePage(PageOf(2, {}, kCommit2));
    const auto isNoted = [&](const PullPage& page) {
        project_->Save();
        cloud_.TakePage(page);
        project_->GetEdits().Commit();
        return book_.IsModified() && disk_.Open(Mode::read)->GetReplay().edits == 1;
    };
    EXPECT_TRUE(isNoted(PageOf(3, {}, kCommit2))) << "a later revision";
    EXPECT_TRUE(isNoted(PageOf(3, {}, test::kCommit1))) << "another head";
    cloud_.PullAgainFrom(1);
    EXPECT_TRUE(isNoted(PageOf(3, {}, test::kCommit1))) << "what was asked for once more is here";
    EXPECT_EQ(cloud_.GetState().again, -1);
    EXPECT_TRUE(isNoted(PageOf(3, {PointReply(3, 1, "A1*")}, test::kCommit1))) << "it is not empty";
    EXPECT_FALSE(isNoted(PageOf(3, {}, test::kCommit1)));
}

TEST_F(Pull, PageThatIsTakenTwiceChangesNothingMore) {
    PullPage page =
        PageOf(8, {GroupReply(11, "C"), PointReply(12, 11, "C1"), DeletionOf(CloudKind::point, 3)});
    page.last = false;
    cloud_.TakePage(page);
    const std::string before = EverythingOf(*project_);
    cloud_.TakePage(page);
    EXPECT_EQ(EverythingOf(*project_), before);
}

TEST_F(Pull, OwnRevisionsAreNamedUntilTheBookHasThem) {
    for (const std::int64_t revision : {4, 6}) {
        test::RenamePoint(*project_, 0, 0, std::to_string(revision).c_str());
        ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
        ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, revision, 100), 1));
    }
    EXPECT_EQ(cloud_.GetPullRequest().own, (std::vector<std::int64_t>{1, 4, 6}));
    PullPage page = PageOf(5, {});
    page.last = false;
    cloud_.TakePage(page);
    EXPECT_EQ(cloud_.GetState().own.size(), 3U);
    cloud_.TakePage(PageOf(5, {}));
    EXPECT_EQ(cloud_.GetPullRequest().own, std::vector<std::int64_t>{6});
    cloud_.TakePage(PageOf(6, {}));
    EXPECT_TRUE(cloud_.GetPullRequest().own.empty());
}

TEST_F(Pull, PullAgainGoesBackOnceToTheOldestRevision) {
    cloud_.TakePage(PageOf(20, {}));
    cloud_.PullAgainFrom(12);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 12);
    cloud_.PullAgainFrom(15);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 12);
    cloud_.PullAgainFrom(0);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 0);
    PullPage page = PageOf(21, {});
    page.last = false;
    cloud_.TakePage(page);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 0) << "it is not at its end";
    cloud_.TakePage(PageOf(21, {}));
    EXPECT_EQ(cloud_.GetPullRequest().revision, 21);
}

TEST_F(Pull, PullAgainAsksForWhatTheBookDidItself) {
    cloud_.TakePage(PageOf(20, {}));
    test::DeletePoint(*project_, 0, 0);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 21, 100), 1));
    EXPECT_EQ(cloud_.GetPullRequest().own, std::vector<std::int64_t>{21});
    cloud_.PullAgainFrom(12);
    EXPECT_TRUE(cloud_.GetPullRequest().own.empty()) << "the copy may hold what was deleted here";
}

TEST_F(Pull, PullAgainFromTheSameRevisionAsksForWhatTheBookDidSince) {
    // Everything was sent as revision 1, and the pull behind it broke.
    ASSERT_EQ(cloud_.GetPullRequest().own, std::vector<std::int64_t>{1});
    cloud_.PullAgainFrom(0);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 0);
    EXPECT_TRUE(cloud_.GetPullRequest().own.empty());
    cloud_.TakePage(PageOf(1, {}));
    EXPECT_EQ(cloud_.GetState().again, -1);
}

TEST_F(Pull, PullAgainFromALaterRevisionIsOneFromHere) {
    cloud_.TakePage(PageOf(20, {}, kCommit2));
    cloud_.PullAgainFrom(25);
    EXPECT_EQ(cloud_.GetPullRequest().revision, 20);
    EXPECT_EQ(cloud_.GetPullRequest().head, kCommit2);
}

}  // namespace
