// What a server makes of a commit, over every store.
#include "tests/host/cloud/AnyStore.h"
#include "tests/host/cloud/SharedServer.h"

namespace {

using gpssync::CommitAnswer;
using gpssync::TransportError;
using test::Conversion;
using test::Group;
using test::Point;

using Ids = std::vector<std::int64_t>;

class ServerCommit : public test::AnyStore {
protected:
    test::SharedServer server_{maker_.Make()};
};

INSTANTIATE_TEST_SUITE_P(Stores, ServerCommit, test::EveryStore(), test::StoreName);

TransportError::Kind KindOfError(const std::function<void()>& ask) {
    try {
        ask();
    } catch (const TransportError& error) {
        EXPECT_NE(std::string(error.what()), "");
        return error.GetKind();
    }
    ADD_FAILURE() << "no error";
    return {};
}

// --- projects ----------------------------------------------------------------------------------------------

TEST_P(ServerCommit, ProjectIsMadeOnceAndFoundByName) {
    const auto first = server_.Get().OpenProject("tunnel", true);
    EXPECT_TRUE(first.made);
    EXPECT_EQ(first.name, "tunnel");
    EXPECT_EQ(first.revision, 0);
    EXPECT_EQ(first.key.size(), 32u);
    const auto again = server_.Get().OpenProject("tunnel", true);
    EXPECT_FALSE(again.made);
    EXPECT_EQ(again.key, first.key);
    EXPECT_NE(first.key, server_.Key());
}

TEST_P(ServerCommit, ProjectThatIsNotThereIsNotMadeUnasked) {
    EXPECT_EQ(KindOfError([&] { server_.Get().OpenProject("tunnel", false); }),
              TransportError::Kind::notFound);
    EXPECT_TRUE(server_.Get().OpenProject("tunnel", true).made);
}

TEST_P(ServerCommit, NamesThatCannotBeShownAreRefused) {
    for (const std::string& name : {std::string(), std::string("a\nb"), std::string("a\0b", 3),
                                    std::string("\xC3"), std::string(201, 'a')})
        EXPECT_EQ(KindOfError([&] { server_.Get().OpenProject(name, true); }), TransportError::Kind::refused)
            << name;
    EXPECT_TRUE(server_.Get().OpenProject(std::string(200, 'a'), true).made);
}

TEST_P(ServerCommit, UnknownKeyIsNotFound) {
    EXPECT_EQ(
        KindOfError([&] { server_.Get().Commit("x", server_.Who(1), test::Commit(server_.NewId(), 0, "")); }),
        TransportError::Kind::notFound);
    EXPECT_EQ(KindOfError([&] { server_.Get().Pull("x", server_.Who(1), {}); }),
              TransportError::Kind::notFound);
}

TEST_P(ServerCommit, ProjectsDoNotSeeEachOther) {
    const std::string other = server_.Get().OpenProject("tunnel", true).key;
    server_.Send(1, 0, {Group("B1")});
    const auto answer =
        server_.Get().Commit(other, server_.Who(1), test::Commit(server_.NewId(), 0, Group("B2")));
    EXPECT_EQ(answer.ids, (Ids{1}));
    EXPECT_EQ(answer.revision, 1);
    const auto page = server_.Get().Pull(other, server_.Who(2), {});
    ASSERT_EQ(page.replies.size(), 1u);
    EXPECT_EQ(page.replies[0].fields[2].View(), "B2");
}

// --- who sends ---------------------------------------------------------------------------------------------

TEST_P(ServerCommit, SenderWithoutNumberOrWithUnshowableNameIsRefused) {
    const auto send = [&](gpssync::Sender sender) {
        return KindOfError(
            [&] { server_.Get().Commit(server_.Key(), sender, test::Commit(server_.NewId(), 0, Group())); });
    };
    EXPECT_EQ(send({0, "Anna"}), TransportError::Kind::refused);
    EXPECT_EQ(send({-1, "Anna"}), TransportError::Kind::refused);
    EXPECT_EQ(send({1, "An\tna"}), TransportError::Kind::refused);
    EXPECT_EQ(send({1, "An\x7Fna"}), TransportError::Kind::refused);
    EXPECT_EQ(send({1, "An\xFFna"}), TransportError::Kind::refused);
    EXPECT_EQ(send({1, std::string(201, 'a')}), TransportError::Kind::refused);
    EXPECT_EQ(server_.Get().OpenProject("site", false).revision, 0);
}

TEST_P(ServerCommit, AuthorIsWhoUsedTheDeviceThen) {
    const auto send = [&](const char* author, std::int64_t base, const std::string& records) {
        return server_.Get().Commit(server_.Key(), {7, author}, test::Commit(server_.NewId(), base, records));
    };
    send("Carla", 0, test::Records({Group(), Point(-1)}));
    send("Dora", 1, "UPTGPS;2;1;Q");
    const auto page = server_.Get().Pull(server_.Key(), server_.Who(2), {});
    EXPECT_EQ(page.authors, (std::map<std::int64_t, std::string>{{1, "Carla"}, {2, "Dora"}}));
    send("Carla", 2, "DEL;4;2");
    send("Dora", 3, "DEL;3;1");
    const auto refused = server_.Send(1, 1, {"UPTGPS;2;1;R", Point(1)}).refused;
    ASSERT_EQ(refused.size(), 2u);
    EXPECT_NE(refused[0].reason.find("by Carla, device 7, in revision 3"), std::string::npos)
        << refused[0].reason;
    EXPECT_NE(refused[1].reason.find("by Dora, device 7, in revision 4"), std::string::npos)
        << refused[1].reason;
}

TEST_P(ServerCommit, ClashNamesWhoSetTheFieldThen) {
    const auto send = [&](const char* author, std::int64_t base, const std::string& records) {
        server_.Get().Commit(server_.Key(), {7, author}, test::Commit(server_.NewId(), base, records));
    };
    send("Carla", 0, test::Records({Group(), Point(-1)}));
    send("Carla", 1, "UPTGPS;2;1;FENCE");
    send("Dora", 2, "UPTGPS;2;2;code");
    const auto clashes = server_.Send(1, 1, {"UPTGPS;2;1;WALL"}).clashes;
    ASSERT_EQ(clashes.size(), 1u);
    EXPECT_EQ(clashes[0].author, "Carla");
    EXPECT_EQ(clashes[0].revision, 2);
}

// --- ids and revisions -------------------------------------------------------------------------------------

TEST_P(ServerCommit, GroupsAndPointsShareOneCounterInTheOrderOfRecords) {
    const CommitAnswer first = server_.Send(1, 0, {Group("B1"), Group("B2"), Point(-1), Point(-2)});
    EXPECT_EQ(first.ids, (Ids{1, 2, 3, 4}));
    EXPECT_EQ(first.revision, 1);
    EXPECT_TRUE(first.refused.empty());
    const CommitAnswer second = server_.Send(2, 1, {Point(2), Group("B3")});
    EXPECT_EQ(second.ids, (Ids{5, 6}));
    EXPECT_EQ(second.revision, 2);
}

TEST_P(ServerCommit, IdOfADeletedItemIsNotGivenAgain) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(1, 1, {"DEL;4;2"});
    EXPECT_EQ(server_.Send(1, 2, {Point(1)}).ids, (Ids{3}));
}

TEST_P(ServerCommit, CommitOfNothingUsesNoRevision) {
    const CommitAnswer answer = server_.Send(1, 0, {});
    EXPECT_EQ(answer.revision, 0);
    EXPECT_TRUE(answer.ids.empty());
    EXPECT_TRUE(answer.refused.empty());
    EXPECT_EQ(server_.Send(1, 0, {Group()}).revision, 1);
}

TEST_P(ServerCommit, CommitOfWhichNothingIsTakenUsesNoRevision) {
    const CommitAnswer answer = server_.Send(1, 0, {Point(9), "UBAS;5;1;B"});
    EXPECT_EQ(answer.revision, 0);
    EXPECT_EQ(answer.ids, (Ids{0}));
    EXPECT_EQ(answer.refused.size(), 2u);
    EXPECT_EQ(server_.Get().OpenProject("site", false).revision, 0);
}

TEST_P(ServerCommit, BookThatKnowsMoreThanTheProjectIsTold) {
    server_.Send(1, 0, {Group()});
    EXPECT_EQ(KindOfError([&] { server_.Send(1, 2, {Point(1)}); }), TransportError::Kind::older);
    EXPECT_EQ(KindOfError([&] { server_.Send(1, -1, {Point(1)}); }), TransportError::Kind::refused);
    EXPECT_EQ(server_.Send(1, 1, {Point(1)}).revision, 2);
}

TEST_P(ServerCommit, BookThatMadeMoreThanTheProjectHasIsTold) {
    server_.Send(1, 0, {Group()});
    EXPECT_EQ(KindOfError([&] { server_.Send(1, 1, {Point(1)}, {2}); }), TransportError::Kind::older);
}

TEST_P(ServerCommit, BookThatKnowsAnotherHeadOfItsRevisionIsTold) {
    const auto first = server_.Send(1, 0, {Group()});
    server_.Send(1, 1, {"UBAS;9;1;B"});  // nothing of it is taken
    gpssync::CloudCommit commit = test::Commit(server_.NewId(), 1, Point(1));
    const auto send = [&] { return server_.Get().Commit(server_.Key(), server_.Who(1), commit); };
    commit.head = std::string(32, 'b');
    EXPECT_EQ(KindOfError(send), TransportError::Kind::older);
    commit.head = first.head;
    EXPECT_EQ(send().revision, 2);
    // None became revision 0, also not one of which nothing was taken.
    commit = test::Commit(server_.NewId(), 0, Point(1));
    commit.head = first.head;
    EXPECT_EQ(KindOfError(send), TransportError::Kind::older);
    commit.head.clear();
    EXPECT_EQ(send().revision, 3);
}

// What was taken in a revision that is not the base is in the book as well.
TEST_P(ServerCommit, BookThatKnowsAnotherHeadOfALaterRevisionIsTold) {
    const auto first = server_.Send(1, 0, {Group()});
    const auto second = server_.Send(2, 1, {Point(1)});
    for (const bool own : {false, true}) {
        gpssync::CloudCommit commit = test::Commit(server_.NewId(), 1, "UPTGPS;2;1;ANNA");
        if (own)
            commit.own = {2};
        else
            commit.known = 2;
        const auto send = [&] { return server_.Get().Commit(server_.Key(), server_.Who(1), commit); };
        commit.head = first.head;
        EXPECT_EQ(KindOfError(send), TransportError::Kind::older);
        commit.head = second.head;
        EXPECT_EQ(send().revision, own ? 4 : 3);
        EXPECT_EQ(send().revision, own ? 4 : 3) << "it is answered again";
        commit = test::Commit(server_.NewId(), 1, "UPTGPS;2;1;ANNA");
        commit.known = 5;
        EXPECT_EQ(KindOfError(send), TransportError::Kind::older);
    }
}

// --- parents -----------------------------------------------------------------------------------------------

TEST_P(ServerCommit, NewPointGoesToTheGroupOfItsReference) {
    server_.Send(1, 0, {Group("B1")});
    const CommitAnswer answer = server_.Send(1, 1, {Point(1, "P1"), Group("B2"), Point(-2, "P2")});
    EXPECT_EQ(answer.ids, (Ids{2, 3, 4}));
    const auto texts = server_.PullTexts(2, 0);
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[2], "2;1;" + test::PointFields("P1"));
    EXPECT_EQ(texts[3], "4;3;" + test::PointFields("P2"));
}

TEST_P(ServerCommit, PointWithoutAGroupThatTakesItIsRefusedWithTheReason) {
    server_.Send(1, 0, {Group("B1"), Group("B2"), Point(-1)});
    server_.Send(2, 1, {"DEL;3;2"});
    const CommitAnswer answer =
        server_.Send(1, 2,
                     {Point(0), Point(77), Point(2), Point(3), "IBAS;short", Point(-5), Point(-6), Point(-8),
                      Point(-9223372036854775807 - 1)});
    EXPECT_EQ(answer.ids, (Ids(9, 0)));
    ASSERT_EQ(answer.refused.size(), 9u);
    EXPECT_EQ(answer.refused[0].reason, "it has no group");
    EXPECT_EQ(answer.refused[1].reason, "its group 77 is not in this project");
    EXPECT_EQ(answer.refused[2].reason,
              "its group 2 was deleted by Bruno, device 2, in revision 2; the book keeps both as a "
              "conflict, from which they can be added again as new");
    EXPECT_EQ(answer.refused[3].reason, "its group 3 is not in this project");
    EXPECT_EQ(answer.refused[5].reason, "its group, the added record 5, was refused");
    EXPECT_EQ(answer.refused[6].reason, "its group is to be the added record 6, which is a point");
    EXPECT_EQ(answer.refused[7].reason, "its group (-8) is no added record that comes before it");
    EXPECT_EQ(answer.refused[8].reason,
              "its group (-9223372036854775808) is no added record that comes before it");
}

TEST_P(ServerCommit, NewGroupTakesPointsThoughItsIdWasAskedForBefore) {
    const CommitAnswer answer = server_.Send(1, 0, {Point(1), Group("B1"), Point(-2)});
    EXPECT_EQ(answer.ids, (Ids{0, 1, 2}));
}

TEST_P(ServerCommit, GroupDeletedInTheSameCommitTakesNoPointsBehindThat) {
    server_.Send(1, 0, {Group("B1")});
    const CommitAnswer answer = server_.Send(1, 1, {Point(1), "DEL;3;1", Point(1)});
    EXPECT_EQ(answer.ids, (Ids{2, 0}));
    ASSERT_EQ(answer.refused.size(), 1u);
    EXPECT_EQ(answer.refused[0].number, 3);
    EXPECT_EQ(server_.PullTexts(2, 0), (std::vector<std::string>{"DEL;1"}));
}

// --- refusals ----------------------------------------------------------------------------------------------

TEST_P(ServerCommit, RefusalsNameTheRecordAndStopNoOther) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    const CommitAnswer answer = server_.Send(1, 1,
                                             {"UBAS;1;1;B2", "UPTGPS;2;0", "NONSENSE", Group("B3"),
                                              "IPTGPS;1;short", Point(-1, "P2"), "DEL;4;9", "DEL;4;2"});
    EXPECT_EQ(answer.revision, 2);
    EXPECT_EQ(answer.ids, (Ids{3, 0, 4}));
    ASSERT_EQ(answer.refused.size(), 4u);
    EXPECT_EQ(answer.refused[0].number, 2);
    EXPECT_EQ(answer.refused[1].number, 3);
    EXPECT_EQ(answer.refused[2].number, 5);
    EXPECT_EQ(answer.refused[3].number, 7);
    const auto texts = server_.PullTexts(2, 0);
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[3], "DEL;2");
    EXPECT_EQ(texts[0], "1;1;" + test::GroupFields("B2") + ";" + Conversion());
    EXPECT_EQ(texts[1], "3;1;" + test::GroupFields("B3") + ";" + Conversion());
    EXPECT_EQ(texts[2], "4;3;" + test::PointFields("P2"));
}

TEST_P(ServerCommit, ChangeOrDeletionOfWhatIsNotThereIsRefused) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    const CommitAnswer answer =
        server_.Send(1, 1, {"UBAS;2;1;B", "UPTGPS;1;1;P", "UPTGPS;9;1;P", "DEL;3;2", "DEL;4;1"});
    ASSERT_EQ(answer.refused.size(), 5u);
    EXPECT_EQ(answer.refused[0].reason, "there is no group 2 in this project");
    EXPECT_EQ(answer.refused[1].reason, "there is no point 1 in this project");
    EXPECT_EQ(answer.refused[2].reason, "there is no point 9 in this project");
    EXPECT_EQ(answer.refused[3].reason, "there is no group 2 in this project");
    EXPECT_EQ(answer.refused[4].reason, "there is no point 1 in this project");
}

TEST_P(ServerCommit, ChangeOfADeletedItemIsRefusedAndSaysByWhomItWasDeleted) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"DEL;4;2"});
    const CommitAnswer answer = server_.Send(1, 1, {"UPTGPS;2;1;P"});
    ASSERT_EQ(answer.refused.size(), 1u);
    EXPECT_EQ(
        answer.refused[0].reason,
        "point 2 was deleted by Bruno, device 2, in revision 2; add it again as new to keep the change");
}

TEST_P(ServerCommit, DeletionOfWhatIsDeletedAlreadyIsDone) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"DEL;4;2"});
    const CommitAnswer answer = server_.Send(1, 1, {"DEL;4;2"});
    EXPECT_TRUE(answer.refused.empty());
    EXPECT_TRUE(answer.clashes.empty());
    // It stays deleted by whom it was.
    const auto replies = server_.Pull(3, 1);
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_EQ(replies[0].device, 2);
}

// --- a repeated commit -------------------------------------------------------------------------------------

TEST_P(ServerCommit, RepeatedCommitIsAnsweredTheSameAndNotDoneAgain) {
    const gpssync::CloudCommit commit =
        test::Commit(server_.NewId(), 0, test::Records({Group(), Point(-1), Point(7)}));
    const CommitAnswer first = server_.Get().Commit(server_.Key(), server_.Who(1), commit);
    server_.Send(2, 1, {"UBAS;1;1;B2"});
    const CommitAnswer again = server_.Get().Commit(server_.Key(), server_.Who(1), commit);
    EXPECT_EQ(first, again);
    EXPECT_EQ(again.ids, (Ids{1, 2, 0}));
    EXPECT_EQ(again.refused.size(), 1u);
    EXPECT_EQ(server_.Get().OpenProject("site", false).revision, 2);
    EXPECT_EQ(server_.Pull(3, 0).size(), 2u);
}

TEST_P(ServerCommit, CommitOfWhichNothingWasTakenIsAnsweredTheSameLater) {
    const gpssync::CloudCommit commit = test::Commit(server_.NewId(), 0, Point(1));
    const CommitAnswer first = server_.Get().Commit(server_.Key(), server_.Who(1), commit);
    EXPECT_EQ(first.refused.size(), 1u);
    server_.Send(2, 0, {Group()});  // now there is a group 1
    EXPECT_EQ(server_.Get().Commit(server_.Key(), server_.Who(1), commit), first);
}

TEST_P(ServerCommit, OtherRecordsUnderAnAnsweredIdAreRefused) {
    const std::string id = server_.NewId();
    server_.Get().Commit(server_.Key(), server_.Who(1), test::Commit(id, 0, Group("B1")));
    const auto send = [&](std::int64_t base, const std::string& records) {
        return KindOfError(
            [&] { server_.Get().Commit(server_.Key(), server_.Who(1), test::Commit(id, base, records)); });
    };
    EXPECT_EQ(send(0, Group("B2")), TransportError::Kind::refused);
    EXPECT_EQ(send(1, Group("B1")), TransportError::Kind::refused);
    EXPECT_EQ(server_.Get().OpenProject("site", false).revision, 1);
}

TEST_P(ServerCommit, CommitIdIsThirtyTwoHexadecimalDigits) {
    for (const std::string& id : {std::string(), std::string(31, 'a'), std::string(33, 'a'),
                                  std::string(32, 'g'), std::string(32, 'A')})
        EXPECT_EQ(KindOfError([&] {
                      server_.Get().Commit(server_.Key(), server_.Who(1), test::Commit(id, 0, Group()));
                  }),
                  TransportError::Kind::refused);
}

TEST_P(ServerCommit, SameCommitIdInAnotherProjectIsAnotherCommit) {
    const std::string other = server_.Get().OpenProject("tunnel", true).key;
    const std::string id = server_.NewId();
    server_.Get().Commit(server_.Key(), server_.Who(1), test::Commit(id, 0, Group("B1")));
    EXPECT_EQ(server_.Get().Commit(other, server_.Who(1), test::Commit(id, 0, Group("B2"))).revision, 1);
}

// --- changes -----------------------------------------------------------------------------------------------

TEST_P(ServerCommit, ChangeTouchesTheFieldsOfItsMaskOnly) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"UPTGPS;2;20;-1.5;NULLVAL;-inf;2025;1;2;-1", "UBAS;1;2049;B2;-32768"});
    const auto texts = server_.PullTexts(3, 0);
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], "1;1;B2;base;100.5;200.25;30;7;Site;1;0;45.5;9.25;120.75;2;-32768;" + Conversion());
    EXPECT_EQ(texts[1],
              "2;1;P1;code;-1.5;NULLVAL;-inf;9;2025;1;2;-1;4;8;5;45.1;9.2;101.25;1.8;1.5;2.25;0.01;0.02;"
              "1;2;3;4;5;6");
}

TEST_P(ServerCommit, GroupReplyNamesTheDeviceThatMadeIt) {
    server_.Send(2, 0, {Group("B1")});
    server_.Send(1, 1, {"UBAS;1;1;B2"});
    const auto replies = server_.Pull(3, 0);
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_EQ(replies[0].fields[1].View(), "2");
    EXPECT_EQ(replies[0].device, 1);
}

TEST_P(ServerCommit, DeletionOfAGroupDeletesItsPoints) {
    server_.Send(1, 0, {Group("B1"), Group("B2"), Point(-1), Point(-2), Point(-1)});
    const CommitAnswer answer = server_.Send(1, 1, {"DEL;3;1", "DEL;4;3"});
    EXPECT_TRUE(answer.refused.empty());
    EXPECT_EQ(server_.PullTexts(2, 0),
              (std::vector<std::string>{"2;1;" + test::GroupFields("B2") + ";" + Conversion(),
                                        "4;2;" + test::PointFields("P1"), "DEL;1"}));
    const CommitAnswer change = server_.Send(1, 2, {"UPTGPS;5;1;P"});
    ASSERT_EQ(change.refused.size(), 1u);
    EXPECT_EQ(change.refused[0].reason,
              "point 5 was deleted by Anna, device 1, in revision 2; add it again as new to keep the change");
}

}  // namespace
