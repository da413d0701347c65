// The book's side of a shared project: linking, commits and their answers.
#include <gtest/gtest.h>

#include <cerrno>

#include "gps/model/ChangeBits.h"
#include "tests/host/project/SharedBook.h"

namespace {

using gpsproject::CloudClash;
using gpsproject::ProjectError;
using test::AcceptAll;
using test::CloudKind;
using test::CommitAnswer;
using test::EverythingOf;
using test::IdOfGroup;
using test::IdOfPoint;
using test::kCommit1;
using test::kCommit2;
using test::KindOf;
using test::kLink;
using test::Project;
using test::Settle;
using test::SharedDisk;
using Mode = Project::Mode;
using Kind = gpsproject::CloudConflict::Kind;

/// A shared book of which nothing has been sent.
class NewShared : public testing::Test {
protected:
    SharedDisk disk_;
    std::unique_ptr<Project> project_ = disk_.Open(Mode::write);
    gpsproject::BookCloud& cloud_ = project_->GetCloud();
    CLibGps& book_ = project_->GetBook();

    const CCloudTable& Base() { return cloud_.GetTables().base; }
    const CCloudTable& Points() { return cloud_.GetTables().points; }
    std::string Records() { return cloud_.GetCommit() ? cloud_.GetCommit()->records : "none"; }
};

/// One of which everything has its id.
class SettledShared : public NewShared {
protected:
    SettledShared() { Settle(*project_); }
};

// --- linking -----------------------------------------------------------------------------------------------

TEST(BookCloudLink, ItemsGiveUpTheIdsOfAnotherProjectAndAreNew) {
    Project project;
    test::FillSmall(project);
    CLibGps& book = project.GetBook();
    CGrpGps::CloudItemOf(book.GetGrpAt(0))->SetCloudId(77);
    CPunGps::CloudItemOf(book.GetPunAt(0, 1))->SetCloudId(78);
    EXPECT_FALSE(project.GetCloud().IsLinked());
    project.GetCloud().Link(kLink);
    EXPECT_TRUE(project.GetCloud().IsLinked());
    EXPECT_EQ(project.GetCloud().GetState().link, kLink);
    EXPECT_EQ(IdOfGroup(project, 0), 0);
    EXPECT_EQ(IdOfPoint(project, 0, 1), 0);
    EXPECT_EQ(book.GetPunAt(0, 1)->GetCloudFlag(), 0U);
    auto& tables = project.GetCloud().GetTables();
    ASSERT_EQ(tables.base.GetAdded().size(), 2U);
    ASSERT_EQ(tables.points.GetAdded().size(), 3U);
    EXPECT_TRUE(tables.base.GetById().empty());
    // In order of creation, each under a ticket of its own.
    EXPECT_EQ(tables.base.GetAdded()[0], CGrpGps::CloudItemOf(book.GetGrpAt(0)));
    EXPECT_EQ(tables.points.GetAdded()[2], CPunGps::CloudItemOf(book.GetPunAt(1, 0)));
    EXPECT_EQ(tables.points.GetAdded()[0]->GetTicket(), 1);
    EXPECT_EQ(tables.points.GetAdded()[2]->GetTicket(), 3);
}

TEST(BookCloudLink, EmptyBookHasNothingToSendAndWhatComesLaterIsNew) {
    Project project;
    project.GetCloud().Link(kLink);
    EXPECT_FALSE(project.GetCloud().HasToSend());
    EXPECT_FALSE(project.GetCloud().BeginCommit(kCommit1));
    project.GetBook().AddGrp(false);
    EXPECT_TRUE(project.GetCloud().HasToSend());
}

TEST(BookCloudLink, BookThatIsNotSharedCommitsNothing) {
    Project project;
    test::FillSmall(project);
    EXPECT_FALSE(project.GetCloud().HasToSend());
    EXPECT_FALSE(project.GetCloud().BeginCommit(kCommit1));
    EXPECT_EQ(project.GetCloud().GetCommit(), nullptr);
}

TEST_F(SettledShared, OtherNameOfTheSameProjectChangesNothingElse) {
    const auto tables = test::CloudBytesOf(*project_);
    const gpsproject::CloudLink moved{"/s/moved", "site 2", kLink.key};
    cloud_.SetLink(moved);
    EXPECT_EQ(cloud_.GetState().link, moved);
    cloud_.SetLink(kLink);
    EXPECT_EQ(test::CloudBytesOf(*project_), tables);
}

// --- the commit --------------------------------------------------------------------------------------------

TEST_F(SettledShared, CommitNamesWhatTheBookKnowsOfTheProject) {
    test::RenamePoint(*project_, 0, 0, "first");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(cloud_.GetCommit()->revision, 0);
    EXPECT_EQ(cloud_.GetCommit()->head, kCommit1) << "of its own revision";
    EXPECT_EQ(cloud_.GetCommit()->known, 1);
    EXPECT_EQ(cloud_.GetCommit()->own, std::vector<std::int64_t>{1});
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 3, 100), 1));
    cloud_.TakePage(test::PageOf(2, {}, kCommit1));
    test::RenamePoint(*project_, 0, 0, "second");
    ASSERT_TRUE(cloud_.BeginCommit(std::string(32, '3')));
    EXPECT_EQ(cloud_.GetCommit()->revision, 2);
    EXPECT_EQ(cloud_.GetCommit()->known, 3);
    EXPECT_EQ(cloud_.GetCommit()->head, kCommit2);
    EXPECT_EQ(cloud_.GetCommit()->own, std::vector<std::int64_t>{3});
}

TEST(BookCloudCommit, TextOfASmallBookIsAsTheFormatSays) {
    Project project;
    CLibGps& book = project.GetBook();
    CGrpGps& group = *book.AddGrp(false);
    group.SetNome("base");
    group.SetSecScri("tag");
    group.SetCoord(1.5, 2.5, 3.5);
    group.SetCodeEgn(4);
    group.SetNomeGrp("Site");
    group.SetTipoRilievo(2);
    group.SetTipoRicevitore(0);
    group.SetBaseLat(45.5);
    group.SetBaseLong(9.25);
    group.SetBaseElev(120.75);
    group.SetBaseAltAnt(2);
    group.SetCodeElab(-3);
    CPunGps& point = *book.AddPun(0, false);
    point.SetNome("P1");
    point.SetSecScri("oak");
    point.SetCoord(5, 6.25, 7);
    point.SetCodeEgn(8);
    point.SetYear(2026);
    point.SetMonth(11);
    point.SetDay(21);
    point.SetTod(43200);
    point.SetQua(4);
    point.SetNuGpsUsed(9);
    point.SetNuGloUsed(5);
    point.SetLat(45.25);
    point.SetLong(9.5);
    point.SetElev(101.125);
    point.SetAltAnt(1.8);
    point.SetPdop(1.5);
    point.SetGdop(2.25);
    point.SetHposRms(0.01);
    point.SetVposRms(0.02);
    point.SetPosCov_xx(1);
    point.SetPosCov_xy(0.5F);
    point.SetPosCov_xz(0.25F);
    point.SetPosCov_yy(0.125F);
    point.SetPosCov_yz(-0.5F);
    point.SetPosCov_zz(2);
    project.GetCloud().Link(kLink);
    ASSERT_TRUE(project.GetCloud().BeginCommit(kCommit1));

    const gpsproject::CloudCommit& commit = *project.GetCloud().GetCommit();
    EXPECT_EQ(commit.id, kCommit1);
    EXPECT_EQ(commit.revision, 0);
    const auto end = commit.records.find("\r\n");
    ASSERT_NE(end, std::string::npos);
    const std::string first = commit.records.substr(0, end);
    const std::string fields = "IBAS;base;tag;1.5;2.5;3.5;4;Site;1;0;45.5;9.25;120.75;2;-3;";
    EXPECT_EQ(first.substr(0, fields.size()), fields);
    // And 70 fields of the conversion.
    EXPECT_EQ(std::count(first.begin(), first.end(), ';'), 84);
    EXPECT_EQ(commit.records.substr(end + 2),
              "IPTGPS;-1;P1;oak;5;6.25;7;8;2026;11;21;43200;4;9;5;45.25;9.5;101.125;1.8;1.5;2.25;0.01;0.02;"
              "1000000000;500000000;250000000;125000000;-500000000;1000000000");
}

TEST_F(SettledShared, ChangesAndDeletionsAreSentByTheirIds) {
    book_.GetGrpAt(0)->SetNomeGrp("A*");
    test::RenamePoint(*project_, 0, 0, "A1*");
    test::DeletePoint(*project_, 1, 0);
    test::AddPoint(*project_, 1, "B2");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    const std::string records = Records();
    const auto behind = records.find("IPTGPS;2;B2;");  // the group is known: by its id
    ASSERT_NE(behind, std::string::npos) << records;
    EXPECT_EQ(records.substr(0, behind), "UBAS;1;16;A*\r\nUPTGPS;3;1;A1*\r\n");
    EXPECT_TRUE(records.ends_with("\r\nDEL;4;5")) << records;
    EXPECT_EQ(cloud_.GetCommit()->revision, 0);
}

TEST_F(SettledShared, DeletedGroupIsSentWithItsPoints) {
    test::DeleteGroup(*project_, 0);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(Records(), "DEL;3;1\r\nDEL;4;3\r\nDEL;4;4");
}

TEST_F(NewShared, SecondCommitWaitsForTheAnswerToTheFirst) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    const gpsproject::CloudCommit first = *cloud_.GetCommit();
    test::RenamePoint(*project_, 0, 0, "A1*");
    EXPECT_FALSE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(*cloud_.GetCommit(), first);
    EXPECT_TRUE(cloud_.HasToSend());
}

TEST_F(SettledShared, NothingWaitsAfterTheAnswer) {
    EXPECT_FALSE(cloud_.HasToSend());
    EXPECT_EQ(cloud_.GetCommit(), nullptr);
    EXPECT_FALSE(cloud_.BeginCommit(kCommit2));
}

TEST_F(NewShared, HeldItemsAreLeftOutAndAreBackInTheirPlaceAfterwards) {
    test::RenamePoint(*project_, 0, 0, "A;1");
    const auto before = Points().GetAdded();
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    EXPECT_EQ(Records().find("A;1"), std::string::npos);
    EXPECT_NE(Records().find("IPTGPS;-1;A2;"), std::string::npos);
    EXPECT_EQ(Points().GetAdded(), before);
    EXPECT_EQ(Points().GetSentAdded(), 2U);
    // The ids reach those that were sent.
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 1, 11), 1));
    EXPECT_EQ(IdOfPoint(*project_, 0, 0), 0);
    EXPECT_EQ(IdOfPoint(*project_, 0, 1), 13);
    EXPECT_EQ(IdOfPoint(*project_, 1, 0), 14);
    EXPECT_FALSE(cloud_.BeginCommit(kCommit2)) << "only the held one is left";
    EXPECT_TRUE(cloud_.HasToSend());
    test::RenamePoint(*project_, 0, 0, "A1");
    EXPECT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_TRUE(Records().starts_with("IPTGPS;11;A1;")) << Records();
}

TEST_F(SettledShared, HeldChangeKeepsItsBits) {
    test::RenamePoint(*project_, 0, 0, "A;1");
    test::RenamePoint(*project_, 0, 1, "A2*");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(Records(), "UPTGPS;4;1;A2*");
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 2, 100), 1));
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetCloudFlag(), CHG_NOME);
    EXPECT_EQ(book_.GetPunAt(0, 1)->GetCloudFlag(), 0U);
    EXPECT_EQ(Points().GetChanged().size(), 1U);
}

TEST_F(NewShared, NewGroupThatIsHeldHoldsItsPoints) {
    book_.GetGrpAt(0)->SetNomeGrp("A;");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    EXPECT_EQ(Records().find("A1"), std::string::npos);
    // The other group is the first record that is added.
    EXPECT_NE(Records().find("\r\nIPTGPS;-1;B1;"), std::string::npos) << Records();
}

TEST_F(SettledShared, CommitThatCannotBeNotedIsNone) {
    test::AddPoint(*project_, 0, "A3");
    project_->GetEdits().Commit();
    // Somebody takes the journal away: nothing can be noted any more.
    disk_.Unlink(test::kJournal);
    test::AddPoint(*project_, 0, "A4");
    EXPECT_EQ(KindOf([&] { project_->GetEdits().Commit(); }), ProjectError::Kind::changedOutside);
    EXPECT_EQ(KindOf([&] { cloud_.BeginCommit(kCommit2); }), ProjectError::Kind::system);
    EXPECT_EQ(cloud_.GetCommit(), nullptr);
    // The next one is made anew, of what there is then.
    project_->Save();
    test::DeletePoint(*project_, 0, 2);
    test::AddPoint(*project_, 0, "A5");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    ASSERT_EQ(Points().GetSentAdded(), 2U);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 2, 100), 1));
    EXPECT_EQ(test::NamesIn(*project_), "A(A1 A2 A4 A5) B(B1)");
    EXPECT_EQ(IdOfPoint(*project_, 0, 2), 100);
    EXPECT_EQ(IdOfPoint(*project_, 0, 3), 101);
}

// --- the answer --------------------------------------------------------------------------------------------

TEST_F(NewShared, IdsComeToTheItemsInTheOrderOfTheirRecords) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    book_.GrpGpsSwap(0, 1);  // their places do not matter
    project_->GetEdits().GroupsSwapped(0, 1);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 4, 1), 7));
    EXPECT_EQ(IdOfGroup(*project_, 1), 1);
    EXPECT_EQ(IdOfGroup(*project_, 0), 2);
    EXPECT_EQ(IdOfPoint(*project_, 1, 0), 3);
    EXPECT_EQ(IdOfPoint(*project_, 1, 1), 4);
    EXPECT_EQ(IdOfPoint(*project_, 0, 0), 5);
    EXPECT_TRUE(CGrpGps::CloudItemOf(book_.GetGrpAt(0))->IsCloudMine(7));
    EXPECT_EQ(cloud_.GetState().own, std::vector<std::int64_t>{4});
    EXPECT_EQ(cloud_.GetState().revision, 0);
}

TEST_F(NewShared, AnswerToAnotherCommitChangesNothing) {
    EXPECT_FALSE(cloud_.TakeAnswer({kCommit1, 1, {}, {}, {}}, 1)) << "no commit is under way";
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    CommitAnswer answer = AcceptAll(*project_, 1, 1);
    const std::string before = EverythingOf(*project_);
    answer.commit = kCommit2;
    EXPECT_FALSE(cloud_.TakeAnswer(answer, 1));
    answer.commit.clear();
    EXPECT_FALSE(cloud_.TakeAnswer(answer, 1));
    EXPECT_EQ(EverythingOf(*project_), before);
}

TEST_F(NewShared, AnswerWithAnotherNumberOfIdsChangesNothing) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    const CommitAnswer whole = AcceptAll(*project_, 1, 1);
    const std::string before = EverythingOf(*project_);
    for (const std::size_t size : {0U, 4U, 6U}) {
        CommitAnswer answer = whole;
        answer.ids.resize(size, 9);
        EXPECT_FALSE(cloud_.TakeAnswer(answer, 1)) << size;
    }
    EXPECT_EQ(EverythingOf(*project_), before);
    EXPECT_TRUE(cloud_.TakeAnswer(whole, 1));
}

TEST_F(NewShared, SecondCopyOfAnAnswerIsNotTakenAgain) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    const CommitAnswer answer = AcceptAll(*project_, 1, 1);
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    const std::string before = EverythingOf(*project_);
    EXPECT_FALSE(cloud_.TakeAnswer(answer, 1));
    EXPECT_EQ(EverythingOf(*project_), before);
}

TEST_F(NewShared, EditsBetweenCommitAndAnswerWaitForTheNextCommit) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    test::RenamePoint(*project_, 0, 0, "A1*");
    test::AddPoint(*project_, 1, "B2");
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 1, 1), 1));
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetCloudFlag(), CHG_NOME);
    EXPECT_EQ(IdOfPoint(*project_, 1, 1), 0);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_TRUE(Records().starts_with("UPTGPS;3;1;A1*\r\nIPTGPS;2;B2;")) << Records();
}

TEST_F(NewShared, NewItemDeletedBeforeTheAnswerIsDeletedThereToo) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    test::DeletePoint(*project_, 0, 0);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 1, 1), 1));
    EXPECT_EQ(IdOfPoint(*project_, 0, 0), 4);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(Records(), "DEL;4;3");
}

TEST_F(SettledShared, ItemChangedAgainBeforeTheAnswerStaysChanged) {
    CPunGps& point = *book_.GetPunAt(0, 0);
    point.SetNome("A1*");
    point.SetQua(5);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(Records(), "UPTGPS;3;33;A1*;5");
    point.SetNome("A1**");
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 2, 100), 1));
    EXPECT_EQ(point.GetCloudFlag(), CHG_NOME);
}

TEST_F(SettledShared, ItemChangedAndThenDeletedBeforeTheAnswerIsOnlyDeleted) {
    test::RenamePoint(*project_, 0, 0, "A1*");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    test::DeletePoint(*project_, 0, 0);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 2, 100), 1));
    EXPECT_TRUE(Points().GetChanged().empty());
    EXPECT_EQ(Points().GetDeleted(), std::set<long long>{3});
}

TEST_F(SettledShared, DeletionsOfTheCommitAreDoneAndLaterOnesWait) {
    test::DeletePoint(*project_, 0, 0);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    test::DeletePoint(*project_, 1, 0);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 2, 100), 1));
    EXPECT_EQ(Points().GetDeleted(), std::set<long long>{5});
    CCloudItem* item = nullptr;
    EXPECT_FALSE(Points().FindItem(3, item));
    EXPECT_TRUE(Points().FindItem(5, item));
}

TEST_F(NewShared, RefusedAdditionsStayAndAreListedByName) {
    book_.GetGrpAt(1)->SetNome("entity of B");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    // Records 1 and 2 are the groups, 3 to 5 the points.
    CommitAnswer answer{kCommit1, 1, {1, 0, 3, 0, 0}, {{2, "no B"}, {4, "no A2"}, {5, "no group"}}, {}};
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    EXPECT_EQ(IdOfGroup(*project_, 0), 1);
    EXPECT_EQ(IdOfGroup(*project_, 1), 0);
    EXPECT_EQ(IdOfPoint(*project_, 0, 0), 3);
    EXPECT_EQ(IdOfPoint(*project_, 0, 1), 0);
    EXPECT_EQ(IdOfPoint(*project_, 1, 0), 0);
    const std::vector<gpsproject::CloudRefusal> expected{{CloudKind::group, 0, "B", "no B"},
                                                         {CloudKind::point, 0, "A2", "no A2"},
                                                         {CloudKind::point, 0, "B1", "no group"}};
    EXPECT_EQ(cloud_.GetState().refusals, expected);
    // They are sent again, and the list is that of the last commit.
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    EXPECT_EQ(Points().GetSentAdded(), 2U);
    ASSERT_TRUE(cloud_.TakeAnswer(AcceptAll(*project_, 2, 10), 1));
    EXPECT_TRUE(cloud_.GetState().refusals.empty());
    EXPECT_EQ(IdOfGroup(*project_, 1), 10);
    EXPECT_EQ(IdOfPoint(*project_, 0, 1), 11);
}

TEST_F(NewShared, RefusedGroupWithoutGroupNameIsListedByThatOfItsEntity) {
    book_.GetGrpAt(1)->SetNome("entity of B");
    book_.GetGrpAt(1)->SetNomeGrp("");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    ASSERT_TRUE(cloud_.TakeAnswer({kCommit1, 1, {1, 0, 3, 4, 0}, {{2, "no"}}, {}}, 1));
    ASSERT_EQ(cloud_.GetState().refusals.size(), 1U);
    EXPECT_EQ(cloud_.GetState().refusals[0].name, "entity of B");
}

TEST_F(SettledShared, RefusedChangesKeepTheirBitsAndAreListedByNameAndId) {
    book_.GetGrpAt(0)->SetNomeGrp("A*");
    test::RenamePoint(*project_, 0, 0, "A1*");
    CPunGps& accepted = *book_.GetPunAt(1, 0);
    accepted.SetNome("B1*");
    test::DeletePoint(*project_, 0, 1);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    std::int64_t number = 2;  // of the record of A1: the changed points stand in any order
    if (Records().find("UPTGPS;3;") > Records().find("UPTGPS;5;")) number = 3;
    CommitAnswer answer{kCommit2, 2, {}, {{1, "no"}, {number, "gone"}, {4, "unknown"}}, {}};
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    EXPECT_EQ(book_.GetGrpAt(0)->GetCloudFlag(), CHG_GRP_NOMEGRP);
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetCloudFlag(), CHG_NOME);
    EXPECT_EQ(accepted.GetCloudFlag(), 0U);
    const std::vector<gpsproject::CloudRefusal> expected{{CloudKind::group, 1, "A*", "no"},
                                                         {CloudKind::point, 3, "A*/A1*", "gone"},
                                                         {CloudKind::point, 4, "", "unknown"}};
    EXPECT_EQ(cloud_.GetState().refusals, expected);
}

TEST_F(NewShared, AnswerThatTookNothingIsNoRevision) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    CommitAnswer answer{kCommit1, 0, {0, 0, 0, 0, 0}, {}, {}};
    for (std::int64_t i = 1; i <= 5; ++i) answer.refused.push_back({i, "full"});
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    EXPECT_TRUE(cloud_.GetState().own.empty());
    EXPECT_EQ(cloud_.GetState().refusals.size(), 5U);
    EXPECT_EQ(Points().GetAdded().size(), 3U);
}

TEST_F(NewShared, RefusalsBeyondTheCommitAreNobodys) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    CommitAnswer answer = AcceptAll(*project_, 1, 1);
    answer.refused = {{-1, "before"}, {0, "none"}, {6, "behind"}, {INT64_MAX, "far"}};
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    EXPECT_TRUE(cloud_.GetState().refusals.empty());
}

TEST_F(NewShared, IdThatAnotherItemHasNeverMovesToASecondOne) {
    ASSERT_TRUE(cloud_.BeginCommit(kCommit1));
    ASSERT_TRUE(cloud_.TakeAnswer({kCommit1, 1, {1, 1, 3, 3, 5}, {}, {}}, 1));
    EXPECT_EQ(IdOfGroup(*project_, 0), 1);
    EXPECT_EQ(IdOfGroup(*project_, 1), 0);
    EXPECT_EQ(IdOfPoint(*project_, 0, 0), 3);
    EXPECT_EQ(IdOfPoint(*project_, 0, 1), 0);
}

TEST_F(SettledShared, ClashesBecomeConflicts) {
    test::RenamePoint(*project_, 0, 0, "A1*");
    test::DeletePoint(*project_, 1, 0);
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    CommitAnswer answer = AcceptAll(*project_, 5, 100);
    const CloudClash field{CloudKind::point, 3, "A1*", CHG_NOME, "A1*", "A1?", 2, "Bruno", 3};
    const CloudClash deleted{CloudKind::point, 5, "B1", 0, "", "quality", 2, "Bruno", 4};
    answer.clashes = {field, deleted};
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    const auto& conflicts = cloud_.GetState().conflicts;
    ASSERT_EQ(conflicts.size(), 2U);
    EXPECT_EQ(conflicts[0].number, 1);
    EXPECT_EQ(conflicts[0].kind, Kind::field);
    EXPECT_EQ(conflicts[0].clash, field);
    EXPECT_EQ(conflicts[1].number, 2);
    EXPECT_EQ(conflicts[1].kind, Kind::deletedHere);
    EXPECT_EQ(conflicts[1].clash, deleted);
    EXPECT_EQ(book_.GetPunAt(0, 0)->GetNome(), "A1*") << "the commit has won";
}

TEST_F(SettledShared, OfOneFieldTheNewestConflictStands) {
    const auto clash = [&](const std::string& id, std::uint32_t bit, const char* theirs) {
        test::RenamePoint(*project_, 0, 0, theirs);
        ASSERT_TRUE(cloud_.BeginCommit(id));
        CommitAnswer answer = AcceptAll(*project_, 5, 100);
        answer.clashes = {{CloudKind::point, 3, "", bit, "mine", theirs, 2, "", 3}};
        ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    };
    clash(kCommit1, CHG_NOME, "first");
    clash(kCommit2, CHG_PUN_QUA, "another field");
    clash(std::string(32, '3'), CHG_NOME, "second");
    const auto& conflicts = cloud_.GetState().conflicts;
    ASSERT_EQ(conflicts.size(), 2U);
    EXPECT_EQ(conflicts[0].number, 2);
    EXPECT_EQ(conflicts[0].clash.theirs, "another field");
    EXPECT_EQ(conflicts[1].number, 3) << "numbers are not given twice";
    EXPECT_EQ(conflicts[1].clash.theirs, "second");
}

TEST_F(SettledShared, DroppedConflictIsGoneAndItsNumberIsNotUsedAgain) {
    test::RenamePoint(*project_, 0, 0, "A1*");
    ASSERT_TRUE(cloud_.BeginCommit(kCommit2));
    CommitAnswer answer = AcceptAll(*project_, 2, 100);
    answer.clashes = {{CloudKind::point, 3, "", CHG_NOME, "a", "b", 2, "", 1}};
    ASSERT_TRUE(cloud_.TakeAnswer(answer, 1));
    EXPECT_FALSE(cloud_.DropConflict(0));
    EXPECT_FALSE(cloud_.DropConflict(2));
    ASSERT_NE(cloud_.FindConflict(1), nullptr);
    EXPECT_TRUE(cloud_.DropConflict(1));
    EXPECT_EQ(cloud_.FindConflict(1), nullptr);
    EXPECT_FALSE(cloud_.DropConflict(1));
    EXPECT_EQ(cloud_.GetState().lastConflict, 1);
}

}  // namespace
