// Syncs that end in the middle, one by one.
#include <gtest/gtest.h>

#include "host/project/ConflictResolution.h"
#include "tests/host/cloud/schedules/SurveyDevice.h"

namespace {

using test::Mishap;
using test::SharedSurvey;
using test::SurveyDevice;
using test::TagSource;

// Steps of a sync that sends something, by number.
constexpr int kStoreCommit = 1, kStoreAnswer = 4, kPull = 5;
// Of one that has nothing to send, with pages of one item.
constexpr int kSecondPage = 3;

struct SyncFault : testing::Test {
    std::mt19937 random{1};
    TagSource tags;
    SharedSurvey survey{1};
    SurveyDevice one{survey, tags, 11, random}, other{survey, tags, 12, random};
};

TEST_F(SyncFault, CommitThatWasNotStoredIsStoredBeforeItIsSent) {
    one.Start(true, 0);
    one.AddGroup();
    one.SyncUntil(kStoreCommit, false);
    one.GetLine().SetNext(Mishap::answerLost);
    one.SyncWhole();
    one.Crash(false);
    one.SyncWhole();
    EXPECT_EQ(survey.Everything().size(), 1U) << "the server has taken the group before the crash";
    EXPECT_EQ(survey.repeated, 1);
}

TEST_F(SyncFault, AnswerThatWasNotStoredIsAskedForAgain) {
    one.Start(true, 0);
    one.AddGroup();
    one.SyncUntil(kStoreAnswer, true);
    one.SyncWhole();
    EXPECT_EQ(survey.Everything().size(), 1U);
    EXPECT_EQ(survey.repeated, 1);
    one.CheckSameAs(survey.Everything());
}

TEST_F(SyncFault, EditsWhileACommitIsNotAnsweredAreSentWithTheNext) {
    one.Start(true, 0);
    one.AddGroup();
    one.GetLine().SetNext(Mishap::answerLost);
    one.SyncWhole();
    one.Change({0, -1}, CHG_GRP_NOMEGRP);
    one.Store();
    one.Crash(false);
    one.SyncWhole();
    EXPECT_EQ(survey.commits, 2);
    EXPECT_FALSE(one.HasToSend());
    one.CheckSameAs(survey.Everything());
}

TEST_F(SyncFault, DeletionReachesWhoTookOnlyTheFirstPageBefore) {
    one.Start(true, 0);
    one.AddGroup();
    one.AddGroup();
    one.SyncWhole();
    other.Start(false, 0);
    other.SyncUntil(kSecondPage, false);
    ASSERT_EQ(other.GetBook().GetGrpArSize(), 1);
    const test::Tag taken = test::TagOf(*other.GetBook().GetGrpAt(0));
    one.Delete({test::TagOf(*one.GetBook().GetGrpAt(0)) == taken ? 0 : 1, -1});
    one.SyncWhole();
    other.SyncWhole();
    EXPECT_EQ(other.GetBook().GetGrpArSize(), 1);
    other.CheckSameAs(survey.Everything());
}

TEST_F(SyncFault, PageFromBeforeTheBooksLastCommitIsNotTaken) {
    one.Start(true, 0);
    one.AddGroup();
    one.SyncWhole();
    other.Start(false, 0);
    other.SyncWhole();
    other.Delete({0, -1});
    other.SyncUntil(kPull, false);
    for (int i = 0; i < 10; ++i) {  // which of the earlier pages comes is drawn
        other.GetLine().SetNext(Mishap::earlierAnswer);
        other.SyncWhole();
        EXPECT_EQ(other.GetBook().GetGrpArSize(), 0) << "the group has come back";
    }
    other.SyncWhole();
    EXPECT_EQ(other.GetBook().GetGrpArSize(), 0);
}

TEST_F(SyncFault, UnsentPointsOfADeletedGroupAreKeptAndReachEverybodyWhenAddedAgain) {
    one.Start(true, 0);
    one.AddGroup();
    one.SyncWhole();
    other.Start(false, 0);
    other.SyncWhole();
    other.AddPoint(0);
    one.Delete({0, -1});
    one.SyncWhole();
    other.SyncWhole();
    EXPECT_EQ(other.GetBook().GetGrpArSize(), 0);
    EXPECT_EQ(other.KeptTags().size(), 2U) << "the group and the point";
    EXPECT_EQ(other.AddAllAgain(), 1);
    other.SyncWhole();
    one.SyncWhole();
    EXPECT_EQ(one.GetBook().GetPunArSize(0), 1);
    one.CheckSameAs(survey.Everything());
    other.CheckSameAs(survey.Everything());
}

TEST_F(SyncFault, PointThatNobodyEditedSinceItWasAddedAgainIsKeptWithItsGroup) {
    one.Start(true, 0);
    one.AddGroup();
    one.AddPoint(0);
    one.SyncWhole();
    other.Start(false, 0);
    other.SyncWhole();
    one.Delete({0, 0});
    one.SyncWhole();
    // It may draw the value that is there.
    while (other.GetBook().GetPunAt(0, 0)->GetCloudFlag() == 0) other.Change({0, 0}, CHG_PUN_QUA);
    other.SyncWhole();
    ASSERT_EQ(other.KeptTags().size(), 1U);
    gpsproject::AddAgain(other.GetProject(), other.GetProject().GetCloud().GetState().conflicts[0].number, 0);
    ASSERT_EQ(other.GetBook().GetPunAt(0, 0)->GetCloudFlag(), 0U);
    one.Delete({0, -1});
    one.SyncWhole();
    gpssync::Sync(other.GetProject(), other.GetLine(), {12, "other"});
    EXPECT_EQ(other.GetBook().GetGrpArSize(), 0);
    EXPECT_EQ(other.KeptTags().size(), 2U) << "the group and the point";
}

TEST_F(SyncFault, OwnCommitDoesNotComeBack) {
    one.Start(true, 0);
    one.AddGroup();
    one.AddPoint(0);
    CGrpGps& group = *one.GetBook().GetGrpAt(0);
    CPunGps& point = *one.GetBook().GetPunAt(0, 0);
    group.SetTipoRilievo(3);
    point.SetPosCov_xx(2.5F);
    for (int i = 0; i < 3; ++i) {
        gpssync::Sync(one.GetProject(), one.GetLine(), {11, "one"});
        EXPECT_EQ(group.GetTipoRilievo(), 3) << "records carry 0 or 1";
        EXPECT_EQ(point.GetPosCov_xx(), 2.5F) << "records carry at most 1";
    }
}

TEST_F(SyncFault, TheirDatumOfTheMapLibraryIsSentWhenItIsTaken) {
    one.Start(true, 0);
    one.AddGroup();
    one.SyncWhole();
    other.Start(false, 0);
    other.SyncWhole();
    const auto rename = [](SurveyDevice& device, const char* name) {
        device.GetProject().GetMap().GetDatAt(0, 0, 0)->SetNome(name);
        device.GetBook().GetGrpAt(0)->CloudItemChanged(CHG_GRP_CONVCOORD);
    };
    const auto sync = [](SurveyDevice& device) {
        return gpssync::Sync(device.GetProject(), device.GetLine(), {device.GetNumber(), "somebody"});
    };
    rename(one, "theirs");
    sync(one);
    rename(other, "mine");
    EXPECT_EQ(sync(other).conflicts, 1);
    gpsproject::TakeTheirs(other.GetProject(), 1);
    EXPECT_TRUE(other.HasToSend());
    sync(other);
    sync(one);
    EXPECT_EQ(one.GetProject().GetMap().GetDatAt(0, 0, 0)->GetNome(), "theirs");
    EXPECT_EQ(other.GetProject().GetMap().GetDatAt(0, 0, 0)->GetNome(), "theirs");
}

}  // namespace
