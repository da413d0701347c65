// Several devices change the same: who wins, who is told, and what is kept.
#include "tests/host/cloud/AnyStore.h"
#include "tests/host/cloud/SharedServer.h"

namespace {

using gpsproject::CloudClash;
using gpssync::CloudKind;
using gpssync::CommitAnswer;
using gpssync::HistoryEntry;
using test::Conversion;
using test::Group;
using test::Point;

class ServerClash : public test::AnyStore {
protected:
    // Group 1 and point 2 by device 1, in revision 1.
    ServerClash() { server_.Send(1, 0, {Group("B1"), Point(-1, "P1")}); }

    std::vector<HistoryEntry> History(CloudKind kind, std::int64_t id) {
        return server_.Get().History(server_.Key(), kind, id);
    }

    test::SharedServer server_{maker_.Make()};
};

INSTANTIATE_TEST_SUITE_P(Stores, ServerClash, test::EveryStore(), test::StoreName);

CloudClash PointClash(std::uint32_t bit, const std::string& mine, const std::string& theirs) {
    return {CloudKind::point, 2, "P1", bit, mine, theirs, 2, "Bruno", 2};
}

// --- one field ---------------------------------------------------------------------------------------------

TEST_P(ServerClash, FieldThatAnotherOneSetSinceTheBaseIsTakenAndTold) {
    server_.Send(2, 1, {"UPTGPS;2;2048;1.75"});
    const CommitAnswer answer = server_.Send(1, 1, {"UPTGPS;2;2048;2"});
    EXPECT_EQ(answer.revision, 3);
    EXPECT_EQ(answer.clashes, (std::vector<CloudClash>{PointClash(2048, "2", "1.75")}));
    EXPECT_EQ(server_.Pull(3, 0)[1].fields[18].View(), "2");
    EXPECT_EQ(History(CloudKind::point, 2),
              (std::vector<HistoryEntry>{{CloudKind::point, 2, 2048, "1.8", {1, 1}, {2, 2}},
                                         {CloudKind::point, 2, 2048, "1.75", {2, 2}, {3, 1}}}));
}

TEST_P(ServerClash, FieldsThatTravelTogetherAreToldTogether) {
    server_.Send(2, 1, {"UPTGPS;2;4;10;20;NULLVAL"});
    const CommitAnswer answer = server_.Send(1, 1, {"UPTGPS;2;4;10;21;30.5"});
    EXPECT_EQ(answer.clashes, (std::vector<CloudClash>{PointClash(4, "10;21;30.5", "10;20;NULLVAL")}));
}

TEST_P(ServerClash, OnlyTheFieldsThatBothChangedAreTold) {
    server_.Send(2, 1, {"UPTGPS;2;33;Q1;7"});
    const CommitAnswer answer = server_.Send(1, 1, {"UPTGPS;2;35;Q2;code 2;7"});
    // The name differs, the code text is nobody else's, the quality is the same.
    ASSERT_EQ(answer.clashes.size(), 1u);
    EXPECT_EQ(answer.clashes[0].bit, 1u);
    EXPECT_EQ(answer.clashes[0].name, "Q1");
    EXPECT_EQ(answer.clashes[0].mine, "Q2");
    EXPECT_EQ(answer.clashes[0].theirs, "Q1");
}

TEST_P(ServerClash, DifferentFieldsOfOneItemDoNotClash) {
    server_.Send(2, 1, {"UPTGPS;2;1;Q1"});
    EXPECT_TRUE(server_.Send(1, 1, {"UPTGPS;2;2;code 2"}).clashes.empty());
    EXPECT_EQ(
        server_.PullTexts(3, 1),
        (std::vector<std::string>{
            "2;1;Q1;code 2;" +
            std::string(
                "1.5;2.5;3.5;9;2024;5;31;43200;4;8;5;45.1;9.2;101.25;1.8;1.5;2.25;0.01;0.02;1;2;3;4;5;6")}));
}

TEST_P(ServerClash, SameValueFromBothIsNoClashAndNoHistory) {
    server_.Send(2, 1, {"UPTGPS;2;2048;2"});
    const CommitAnswer answer = server_.Send(1, 1, {"UPTGPS;2;2048;2.0"});
    EXPECT_TRUE(answer.clashes.empty());
    EXPECT_TRUE(answer.refused.empty());
    EXPECT_EQ(answer.revision, 3);
    EXPECT_EQ(History(CloudKind::point, 2).size(), 1u);
}

TEST_P(ServerClash, WhatTheCommitKnewIsReplacedWithoutAClash) {
    server_.Send(2, 1, {"UPTGPS;2;2048;1.75"});
    EXPECT_TRUE(server_.Send(1, 2, {"UPTGPS;2;2048;2"}).clashes.empty());
    EXPECT_EQ(History(CloudKind::point, 2).size(), 2u);
}

TEST_P(ServerClash, ValueOfAnOwnLaterRevisionIsNoClash) {
    server_.Send(1, 1, {"UPTGPS;2;2048;1.75"});
    EXPECT_TRUE(server_.Send(1, 1, {"UPTGPS;2;2048;2"}, {2}).clashes.empty());
}

TEST_P(ServerClash, OtherBookOfTheSameDeviceIsTold) {
    server_.Send(1, 1, {"UPTGPS;2;2048;1.75", "UPTGPS;2;1;Q"});
    const CommitAnswer answer = server_.Send(1, 1, {"UPTGPS;2;2048;2"});
    EXPECT_EQ(answer.clashes,
              (std::vector<CloudClash>{{CloudKind::point, 2, "Q", 2048, "2", "1.75", 1, "Anna", 2}}));
    EXPECT_EQ(server_.Send(1, 1, {"DEL;4;2"}, {3}).clashes,
              (std::vector<CloudClash>{{CloudKind::point, 2, "Q", 0, "", "name", 1, "Anna", 2}}));
}

TEST_P(ServerClash, OwnRevisionsMayComeInAnyOrder) {
    for (const std::string antenna : {"1.75", "2", "2.25"}) server_.Send(1, 1, {"UPTGPS;2;2048;" + antenna});
    EXPECT_TRUE(server_.Send(1, 1, {"UPTGPS;2;2048;3"}, {4, 2, 3}).clashes.empty());
}

TEST_P(ServerClash, CommitDoesNotClashWithItself) {
    EXPECT_TRUE(server_.Send(1, 1, {"UPTGPS;2;2048;1.75", "UPTGPS;2;2048;2", "DEL;4;2"}).clashes.empty());
}

TEST_P(ServerClash, FieldThatWasSetByAnotherOneWhenItWasAddedClashes) {
    // Device 2 cannot know point 2 at revision 0, but nothing is lost in silence if it says so.
    const CommitAnswer answer = server_.Send(2, 0, {"UPTGPS;2;1;Q"});
    ASSERT_EQ(answer.clashes.size(), 1u);
    EXPECT_EQ(answer.clashes[0], (CloudClash{CloudKind::point, 2, "P1", 1, "Q", "P1", 1, "Anna", 1}));
}

TEST_P(ServerClash, RepeatedCommitTellsTheSameClashes) {
    server_.Send(2, 1, {"UPTGPS;2;2048;1.75"});
    const gpssync::CloudCommit commit = test::Commit(server_.NewId(), 1, "UPTGPS;2;2048;2");
    const auto first = server_.Get().Commit(server_.Key(), server_.Who(1), commit);
    ASSERT_EQ(first.clashes.size(), 1u);
    EXPECT_EQ(server_.Get().Commit(server_.Key(), server_.Who(1), commit), first);
    EXPECT_EQ(History(CloudKind::point, 2).size(), 2u);
}

// --- deletions ---------------------------------------------------------------------------------------------

TEST_P(ServerClash, DeletionOfWhatAnotherOneChangedIsDoneAndNamesTheFields) {
    server_.Send(2, 1, {"UPTGPS;2;2053;Q1;1;2;3;1.75"});
    const CommitAnswer answer = server_.Send(1, 1, {"DEL;4;2"});
    EXPECT_TRUE(answer.refused.empty());
    ASSERT_EQ(answer.clashes.size(), 1u);
    EXPECT_EQ(answer.clashes[0],
              (CloudClash{CloudKind::point, 2, "Q1", 0, "", "name, position, antenna", 2, "Bruno", 2}));
}

TEST_P(ServerClash, DeletionOfWhatTheCommitKnewIsNoClash) {
    server_.Send(2, 1, {"UPTGPS;2;1;Q1"});
    EXPECT_TRUE(server_.Send(1, 2, {"DEL;4;2"}).clashes.empty());
}

TEST_P(ServerClash, DeletionOfAGroupTellsOfThePointsThatOthersAddedOrChanged) {
    server_.Send(1, 1, {Point(1, "P2"), Point(1, "P3")});                      // 3, 4 in revision 2
    server_.Send(2, 2, {Point(1, "P4"), "UPTGPS;3;2;code", "UBAS;1;2048;5"});  // 5 in revision 3
    server_.Send(1, 2, {"UPTGPS;4;2;code"});
    const CommitAnswer answer = server_.Send(1, 2, {"DEL;3;1", "DEL;4;2", "DEL;4;3", "DEL;4;4"}, {4});
    EXPECT_TRUE(answer.refused.empty());
    ASSERT_EQ(answer.clashes.size(), 3u);
    EXPECT_EQ(answer.clashes[0],
              (CloudClash{CloudKind::group, 1, "Site", 0, "", "processing-code", 2, "Bruno", 3}));
    EXPECT_EQ(answer.clashes[1], (CloudClash{CloudKind::point, 3, "P2", 0, "", "code-text", 2, "Bruno", 3}));
    EXPECT_EQ(answer.clashes[2], (CloudClash{CloudKind::point, 5, "P4", 0, "", "added", 2, "Bruno", 3}));
}

// --- the map library, which all groups share ---------------------------------------------------------------

const std::string kSelected2 = "Lib2;1;1;2;3;4;5;6;7;40;10";
const std::string kLibrary2 = "4;Map2;0;0.25;0;0;0;0;0;0;1;2";

TEST_P(ServerClash, MapLibraryIsTheSameInAllGroups) {
    server_.Send(2, 1, {Group("B2", Conversion(kSelected2, kLibrary2))});
    const auto texts = server_.PullTexts(3, 0);
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "1;1;" + test::GroupFields("B1") + ";" + Conversion(kSelected2, kLibrary2));
    EXPECT_EQ(texts[1], "3;2;" + test::GroupFields("B2") + ";" + Conversion(kSelected2, kLibrary2));
}

TEST_P(ServerClash, EachPlaceOfTheMapLibraryHasADatumOfItsOwn) {
    server_.Send(2, 1, {Group("B2", Conversion(kSelected2, test::kLibrary, "1;0;2"))});
    const auto texts = server_.PullTexts(3, 0);
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "1;1;" + test::GroupFields("B1") + ";" + Conversion());
    EXPECT_EQ(texts[1],
              "3;2;" + test::GroupFields("B2") + ";" + Conversion(kSelected2, test::kLibrary, "1;0;2"));
}

TEST_P(ServerClash, DatumThatARecordLeavesOutStaysAsItIs) {
    server_.Send(1, 1, {Group("B2", Conversion(""))});
    EXPECT_EQ(server_.PullTexts(3, 1),
              (std::vector<std::string>{"3;1;" + test::GroupFields("B2") + ";" + Conversion()}));
}

TEST_P(ServerClash, DatumThatNobodyEverToldIsThatOfANewLibrary) {
    server_.Send(1, 1, {Group("B2", Conversion("", test::kLibrary, "1;0;0"))});
    EXPECT_EQ(
        server_.PullTexts(3, 1),
        (std::vector<std::string>{"3;1;" + test::GroupFields("B2") + ";" +
                                  Conversion(";0;0;0;0;0;0;0;0;NULLVAL;NULLVAL", test::kLibrary, "1;0;0")}));
    // It was nobody's: telling it later replaces nothing.
    const CommitAnswer answer =
        server_.Send(2, 1, {"UBAS;3;4096;" + Conversion(kSelected2, test::kLibrary, "1;0;0")});
    EXPECT_TRUE(answer.clashes.empty());
    EXPECT_TRUE(History(CloudKind::group, 3).empty());
}

TEST_P(ServerClash, ConversionThatAnotherOneSetIsToldWhole) {
    const std::string theirs = Conversion(test::kSelected, test::kLibrary, "0;0;0", "5");
    const std::string mine = Conversion(test::kSelected, test::kLibrary, "0;0;0", "6");
    server_.Send(2, 1, {"UBAS;1;4096;" + theirs});
    const CommitAnswer answer = server_.Send(1, 1, {"UBAS;1;4096;" + mine});
    ASSERT_EQ(answer.clashes.size(), 1u);
    EXPECT_EQ(answer.clashes[0],
              (CloudClash{CloudKind::group, 1, "Site", 4096, mine, theirs, 2, "Bruno", 2}));
    EXPECT_EQ(History(CloudKind::group, 1),
              (std::vector<HistoryEntry>{{CloudKind::group, 1, 4096, Conversion(), {1, 1}, {2, 2}},
                                         {CloudKind::group, 1, 4096, theirs, {2, 2}, {3, 1}}}));
}

TEST_P(ServerClash, MapLibraryThatAnotherOneSetThroughAnotherGroupIsTold) {
    server_.Send(2, 1, {Group("B2", Conversion(kSelected2, kLibrary2))});  // revision 2
    const std::string third = "5;Map3;0;0.25;0;0;0;0;0;0;1;2";
    const CommitAnswer answer = server_.Send(1, 1, {"UBAS;1;4096;" + Conversion(kSelected2, third)});
    ASSERT_EQ(answer.clashes.size(), 1u);
    EXPECT_EQ(answer.clashes[0].theirs, Conversion(kSelected2, kLibrary2));
    EXPECT_EQ(answer.clashes[0].mine, Conversion(kSelected2, third));
    EXPECT_EQ(answer.clashes[0].device, 2);
    EXPECT_EQ(answer.clashes[0].revision, 2);
    EXPECT_EQ(History(CloudKind::group, 1),
              (std::vector<HistoryEntry>{
                  {CloudKind::group, 1, 4096, Conversion(kSelected2, kLibrary2), {2, 2}, {3, 1}}}));
}

// A new group: (id; device) and the conversion.
std::string NewGroup(const std::string& idAndDevice, const std::string& name, const std::string& conversion) {
    return idAndDevice + ";" + test::GroupFields(name) + ";" + conversion;
}

TEST_P(ServerClash, NewGroupDoesNotReplaceWhatItsBookHasNotSeenOfTheMapLibrary) {
    const CommitAnswer answer = server_.Send(2, 0, {Group("B2", Conversion(kSelected2, kLibrary2))});
    EXPECT_TRUE(answer.refused.empty());
    EXPECT_TRUE(answer.clashes.empty());
    EXPECT_TRUE(History(CloudKind::group, 3).empty());
    EXPECT_EQ(server_.PullTexts(3, 0)[1], NewGroup("3;2", "B2", Conversion()));
    // Its book gets the library as it is.
    EXPECT_EQ(server_.PullTexts(2, 0, {2})[0], NewGroup("1;1", "B1", Conversion()));
}

TEST_P(ServerClash, NewGroupReplacesWhatItsBookHasSetItself) {
    server_.Send(2, 0, {Group("B2", Conversion(kSelected2, kLibrary2))}, {1});
    EXPECT_EQ(server_.PullTexts(3, 0)[1], NewGroup("3;2", "B2", Conversion(kSelected2, kLibrary2)));
}

TEST_P(ServerClash, CorrectedDatumStaysWhenABookThatHasNotSeenItAddsAGroup) {
    server_.Send(2, 1, {"UBAS;1;4096;" + Conversion(kSelected2)});  // revision 2
    const CommitAnswer answer = server_.Send(1, 1, {Group("B2")});
    EXPECT_TRUE(answer.clashes.empty());
    const auto all = server_.PullTexts(3, 0);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0], NewGroup("1;1", "B1", Conversion(kSelected2)));
    EXPECT_EQ(all[1], NewGroup("3;1", "B2", Conversion(kSelected2)));
    const auto its = server_.PullTexts(1, 1, {3});
    ASSERT_FALSE(its.empty());
    EXPECT_EQ(its[0], NewGroup("1;1", "B1", Conversion(kSelected2)));
}

TEST_P(ServerClash, BookWhoseNewGroupFindsACorrectedDatumGetsItThoughTheGroupThatBroughtItIsGone) {
    server_.Send(2, 1, {"UBAS;1;4096;" + Conversion(kSelected2, kLibrary2)});
    server_.Send(2, 2, {"DEL;3;1"});
    server_.Send(1, 1, {Group("B2"), Group("B3", Conversion("", kLibrary2))});
    EXPECT_EQ(server_.PullTexts(1, 1, {4}),
              (std::vector<std::string>{NewGroup("3;1", "B2", Conversion(kSelected2, kLibrary2)),
                                        NewGroup("4;1", "B3", Conversion(kSelected2, kLibrary2)), "DEL;1"}));
}

TEST_P(ServerClash, ChangedDatumComesWithTheOtherGroupsOfItWhenItsOwnIsGone) {
    server_.Send(1, 1, {Group("B2"), Group("B3", Conversion(kSelected2, test::kLibrary, "1;0;0"))});
    server_.Send(2, 2, {"UBAS;1;4096;" + Conversion(kSelected2)});
    server_.Send(2, 3, {"DEL;3;1"});
    EXPECT_EQ(server_.PullTexts(3, 2),
              (std::vector<std::string>{NewGroup("3;1", "B2", Conversion(kSelected2)), "DEL;1"}));
    EXPECT_TRUE(server_.PullTexts(2, 2, {3, 4}).empty());
}

TEST_P(ServerClash, ChangedMapLibraryComesWithEveryGroupThatIsThere) {
    server_.Send(1, 1, {Group("B2"), Group("B3", Conversion(kSelected2, test::kLibrary, "1;0;0"))});
    server_.Send(2, 2, {Group("B4", Conversion(test::kSelected, kLibrary2)), "DEL;3;3"});
    server_.Send(2, 3, {"DEL;3;5"});
    EXPECT_EQ(server_.PullTexts(3, 2),
              (std::vector<std::string>{NewGroup("1;1", "B1", Conversion(test::kSelected, kLibrary2)),
                                        NewGroup("4;1", "B3", Conversion(kSelected2, kLibrary2, "1;0;0")),
                                        "DEL;3", "DEL;5"}));
}

TEST_P(ServerClash, DatumThatIsToldForTheFirstTimeComesWithTheGroupsThatSelectIt) {
    const std::string place = "1;0;0";
    server_.Send(1, 1, {Group("B2", Conversion("", test::kLibrary, place))});
    server_.Send(2, 2, {Group("B3", Conversion(kSelected2, test::kLibrary, place))});
    server_.Send(2, 3, {"DEL;3;4"});
    EXPECT_EQ(server_.PullTexts(3, 2),
              (std::vector<std::string>{NewGroup("3;1", "B2", Conversion(kSelected2, test::kLibrary, place)),
                                        "DEL;4"}));
}

// The record leaves the datum out: its book has not seen the new one, and is not to miss it.
TEST_P(ServerClash, OwnLaterConversionDoesNotHideAChangedDatum) {
    server_.Send(2, 1, {"UBAS;1;4096;" + Conversion(kSelected2)});
    EXPECT_TRUE(server_.Send(1, 1, {"UBAS;1;4096;" + Conversion("")}).clashes.empty());
    EXPECT_EQ(server_.PullTexts(1, 1, {3}),
              (std::vector<std::string>{NewGroup("1;1", "B1", Conversion(kSelected2))}));
}

TEST_P(ServerClash, ChangedDatumIsNoChangeOfTheGroupsThatOnlySelectIt) {
    server_.Send(1, 1, {Group("B2")});
    server_.Send(2, 2, {"UBAS;1;4096;" + Conversion(kSelected2)});
    const std::string mine = Conversion(kSelected2, test::kLibrary, "0;0;0", "6");
    EXPECT_TRUE(server_.Send(1, 2, {"UBAS;3;4096;" + mine}).clashes.empty());
    EXPECT_TRUE(server_.Send(1, 2, {"DEL;3;3"}, {4}).clashes.empty());
}

TEST_P(ServerClash, NewGroupWithTheMapLibraryAsItIsChangesNothing) {
    EXPECT_TRUE(server_.Send(2, 0, {Group("B2")}).clashes.empty());
    EXPECT_TRUE(History(CloudKind::group, 3).empty());
}

}  // namespace
