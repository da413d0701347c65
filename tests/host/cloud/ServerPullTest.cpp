// What a pull gives, in which order, and what it leaves out.
#include "tests/host/cloud/AnyStore.h"
#include "tests/host/cloud/SharedServer.h"

namespace {

using gpsproject::CloudReply;
using gpssync::CloudKind;
using gpssync::PullPage;
using gpssync::PullRequest;
using gpssync::TransportError;
using test::Conversion;
using test::Group;
using test::Point;

using Texts = std::vector<std::string>;

// Kind and id of each reply: "3:1", deletions as "-3:1".
Texts Short(const std::vector<CloudReply>& replies) {
    Texts texts;
    for (const CloudReply& reply : replies) {
        const std::string id(reply.fields[reply.deleted ? 1 : 0].View());
        texts.push_back((reply.deleted ? "-" : "") + std::to_string(static_cast<int>(reply.kind)) + ":" + id);
    }
    return texts;
}

class ServerPull : public test::AnyStore {
protected:
    Texts Pull(int device, std::int64_t revision, std::vector<std::int64_t> own = {}) {
        return Short(server_.Pull(device, revision, std::move(own)));
    }
    PullPage Page(const PullRequest& request) {
        return server_.Get().Pull(server_.Key(), server_.Who(3), request);
    }

    test::SharedServer server_{maker_.Make(), 2};  // replies a page
};

INSTANTIATE_TEST_SUITE_P(Stores, ServerPull, test::EveryStore(), test::StoreName);

// --- replies -----------------------------------------------------------------------------------------------

TEST_P(ServerPull, EmptyProjectGivesOneEmptyPage) {
    const PullPage page = Page({});
    EXPECT_EQ(page.upTo, 0);
    EXPECT_TRUE(page.last);
    EXPECT_TRUE(page.replies.empty());
    EXPECT_TRUE(page.authors.empty());
    EXPECT_EQ(page.head, "");
}

TEST_P(ServerPull, PagesNameTheNewestRevisionAndItsHead) {
    server_.Send(1, 0, {Group("B1")});
    const auto points = server_.Send(1, 1, {Point(1), Point(1), Point(1)});
    EXPECT_EQ(server_.Send(1, 2, {"DEL;4;9"}).head, "") << "nothing of it is taken";
    const PullPage first = Page({});
    EXPECT_EQ(first.head.size(), 32u);
    EXPECT_EQ(first.head, points.head);
    EXPECT_EQ(first.newest, 2);
    const auto name = server_.Send(1, 2, {"UBAS;1;1;B2"});
    EXPECT_NE(name.head, points.head);
    // It gives what is changed between two pages as it is then.
    const PullPage second = Page({0, {}, {}, first.upTo, first.next});
    EXPECT_EQ(second.upTo, 2);
    EXPECT_EQ(second.newest, 3);
    EXPECT_EQ(second.head, name.head);
    EXPECT_EQ(Page({}).head, name.head);
}

TEST_P(ServerPull, RepliesHaveAllFieldsAsTheRecordsHadThem) {
    server_.Send(1, 0, {Group("B1"), Point(-1, "P1"), Point(-1, "P2")});
    server_.Send(2, 1, {"DEL;4;3"});
    const auto replies = server_.Pull(3, 1);
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_TRUE(replies[0].deleted);
    EXPECT_EQ(test::Text(replies[0]), "DEL;3");
    const auto all = server_.Pull(3, 0);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].fields.size(), 86u);
    EXPECT_EQ(all[1].fields.size(), 29u);
    EXPECT_EQ(test::Text(all[0]), "1;1;" + test::GroupFields("B1") + ";" + Conversion());
    EXPECT_EQ(test::Text(all[1]), "2;1;" + test::PointFields("P1"));
}

TEST_P(ServerPull, NumbersAreTheShortestThatReadTheSame) {
    server_.Send(1, 0,
                 {Group(),
                  "IPTGPS;-1;;;0.10;1e300;-1.50;0;0;0;0;0;0;0;0;1.7976931348623157e308;"
                  "-1.7976931348623157e308;5e-324;1e22;123456789012;0.30000000000000004;-inf;"
                  "NULLVAL;-2147483648;2147483647;0;-0;007;0"});
    // The first real beyond the limit of what is set is refused; without it the point is taken.
    EXPECT_EQ(Pull(3, 0), (Texts{"3:1"}));
    server_.Send(1, 1,
                 {"IPTGPS;1;;;0.10;-1e300;-1.50;0;0;0;0;0;0;0;0;-0;-1.7976931348623157e308;5e-324;1e22;"
                  "123456789012;0.30000000000000004;-inf;NULLVAL;-2147483648;2147483647;0;-0;007;0"});
    EXPECT_EQ(server_.PullTexts(3, 1),
              (Texts{"2;1;;;0.1;-1e+300;-1.5;0;0;0;0;0;0;0;0;0;-1.7976931348623157e+308;5e-324;1e+22;"
                     "123456789012;0.30000000000000004;-inf;NULLVAL;-2147483648;2147483647;0;0;7;0"}));
}

TEST_P(ServerPull, TextsOfAnyLengthComeBackWhole) {
    const std::string longText(5000, 'x');
    const std::string words = "Stazione à piè 測量 " + longText;
    server_.Send(1, 0,
                 {Group(), "IPTGPS;-1;" + words + ";" + longText +
                               ";0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0"});
    const auto replies = server_.Pull(2, 0);
    ASSERT_EQ(replies.size(), 2u);
    EXPECT_EQ(replies[1].fields[2].View(), words);
    EXPECT_EQ(replies[1].fields[3].View(), longText);
}

TEST_P(ServerPull, ReplyNamesWhoChangedTheItemLast) {
    server_.Send(1, 0, {Group(), Point(-1)});
    server_.Send(2, 1, {"UPTGPS;2;1;Q"});
    const PullPage page = Page({});
    ASSERT_EQ(page.replies.size(), 2u);
    EXPECT_EQ(page.replies[0].device, 1);
    EXPECT_EQ(page.replies[0].revision, 1);
    EXPECT_EQ(page.replies[1].device, 2);
    EXPECT_EQ(page.replies[1].revision, 2);
    EXPECT_EQ(page.authors, (std::map<std::int64_t, std::string>{{1, "Anna"}, {2, "Bruno"}}));
}

// --- what is newer -----------------------------------------------------------------------------------------

TEST_P(ServerPull, OnlyWhatIsNewerIsGiven) {
    server_.Send(1, 0, {Group("B1"), Point(-1), Point(-1)});
    server_.Send(1, 1, {Group("B2"), "UPTGPS;3;1;Q"});
    EXPECT_EQ(Pull(2, 0), (Texts{"3:1", "3:4", "4:2", "4:3"}));
    EXPECT_EQ(Pull(2, 1), (Texts{"3:4", "4:3"}));
    EXPECT_EQ(Pull(2, 2), Texts{});
}

TEST_P(ServerPull, WhatOnlyTheBookItselfChangedIsLeftOut) {
    server_.Send(1, 0, {Group("B1"), Point(-1), Point(-1)});    // 1: 1, 2, 3
    server_.Send(2, 1, {"UPTGPS;2;1;Q", Group("B2")});          // 2: 4
    server_.Send(1, 1, {"UPTGPS;2;2;code 2", "UPTGPS;3;1;R"});  // 3
    // Of point 2 another one changed the name.
    EXPECT_EQ(Pull(1, 1, {3}), (Texts{"3:4", "4:2"}));
    EXPECT_EQ(Pull(2, 1, {2}), (Texts{"4:2", "4:3"}));
    EXPECT_EQ(Pull(3, 1), (Texts{"3:4", "4:2", "4:3"}));
    EXPECT_EQ(Pull(3, 0, {1}), (Texts{"3:4", "4:2", "4:3"}));
    EXPECT_EQ(Pull(3, 0, {1, 2}), (Texts{"4:2", "4:3"}));
    EXPECT_EQ(Pull(3, 0, {1, 2, 3}), Texts{});
}

TEST_P(ServerPull, FieldThatTheBookSetAfterAnotherOneIsItsOwn) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"UPTGPS;2;1;Q"});
    server_.Send(1, 1, {"UPTGPS;2;1;R"});
    EXPECT_EQ(Pull(1, 1, {3}), Texts{});
}

TEST_P(ServerPull, OwnNewItemThatAnotherOneChangedIsGiven) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"UPTGPS;2;1;Q"});
    EXPECT_EQ(Pull(1, 0, {1}), (Texts{"4:2"}));
}

// --- deletions ---------------------------------------------------------------------------------------------

TEST_P(ServerPull, DeletionsComeLastGroupsFirst) {
    server_.Send(1, 0, {Group("B1"), Group("B2"), Point(-1), Point(-2), Point(-2)});
    server_.Send(1, 1, {"DEL;4;4"});
    server_.Send(1, 2, {"DEL;3;1", "UPTGPS;5;1;Q"});
    EXPECT_EQ(Pull(2, 1), (Texts{"4:5", "-3:1", "-4:4"}));
}

TEST_P(ServerPull, PointsThatWentWithTheirGroupAreNotNamed) {
    server_.Send(1, 0, {Group("B1"), Point(-1), Point(-1)});
    server_.Send(1, 1, {"DEL;4;2"});
    server_.Send(1, 2, {"DEL;3;1"});
    EXPECT_EQ(Pull(2, 1), (Texts{"-3:1", "-4:2"}));
    EXPECT_EQ(Pull(2, 2), (Texts{"-3:1"}));
}

// A pull that ended in the middle may have brought the item.
TEST_P(ServerPull, WhatWasAddedAndDeletedSinceIsDeleted) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(1, 1, {"DEL;4;2"});
    EXPECT_EQ(Pull(2, 0), (Texts{"3:1", "-4:2"}));
    EXPECT_EQ(Pull(2, 1), (Texts{"-4:2"}));
}

TEST_P(ServerPull, OwnNewItemThatAnotherOneDeletedIsDeleted) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"DEL;4;2"});
    EXPECT_EQ(Pull(1, 0, {1}), (Texts{"-4:2"}));
}

TEST_P(ServerPull, OwnDeletionIsLeftOut) {
    server_.Send(1, 0, {Group("B1"), Point(-1)});
    server_.Send(2, 1, {"DEL;4;2"});
    EXPECT_EQ(Pull(2, 1, {2}), Texts{});
}

// Ids of the deletions that a device is told of; '!': who deleted had not seen what the device did to it.
std::string Unseen(const std::vector<CloudReply>& replies) {
    std::string text;
    for (const CloudReply& reply : replies)
        if (reply.deleted) text += std::string(reply.fields[1].View()) + (reply.unseen ? "! " : " ");
    return text;
}

TEST_P(ServerPull, DeletionTellsThatItsCommitHadNotSeenWhatTheDeviceAdded) {
    server_.Send(2, 0, {Group("B1")});           // 1: 1
    server_.Send(1, 1, {Point(1), Point(1)});    // 2: 2, 3
    server_.Send(2, 2, {"DEL;4;2"});             // 3: seen
    server_.Send(2, 1, {"DEL;4;3", "DEL;3;1"});  // 4: not seen
    EXPECT_EQ(Unseen(server_.Pull(1, 1, {2})), "1! 2 ") << "point 3 went with its group";
    EXPECT_EQ(Unseen(server_.Pull(3, 1)), "1 2 ") << "it is another one's";
}

TEST_P(ServerPull, DeletionTellsThatItsCommitHadNotSeenWhatTheDeviceSet) {
    server_.Send(2, 0, {Group("B1"), Point(-1), Point(-1), Point(-1)});  // 1: 1 to 4
    server_.Send(1, 1, {"UPTGPS;2;1;Q", "UPTGPS;3;1;Q"});                // 2
    server_.Send(3, 1, {"UPTGPS;2;2;code"});                             // 3
    server_.Send(2, 1, {"DEL;4;2", "DEL;4;4"});                          // 4
    EXPECT_EQ(Unseen(server_.Pull(1, 1, {2})), "2! 4 ");
    EXPECT_EQ(Unseen(server_.Pull(3, 1, {3})), "2! 4 ");
    EXPECT_EQ(Unseen(server_.Pull(4, 1)), "2 4 ");
    server_.Send(2, 1, {"DEL;3;1"});  // 5: with point 3
    EXPECT_EQ(Unseen(server_.Pull(1, 4)), "1! ");
    EXPECT_EQ(Unseen(server_.Pull(3, 4)), "1 ") << "what it set was of a point that is not in it any more";
}

TEST_P(ServerPull, DeletionOfWhatItsOwnBookHadMadeWasSeen) {
    server_.Send(1, 0, {Group("B1")});
    server_.Send(1, 1, {Point(1)});
    server_.Send(1, 1, {"DEL;4;2"}, {2});
    EXPECT_EQ(Unseen(server_.Pull(1, 1)), "2 ") << "another book of the device";
}

TEST_P(ServerPull, ChangedMapLibraryIsNothingOfTheGroupThatIsDeleted) {
    server_.Send(2, 0, {Group("B1"), Group("B2")});
    server_.Send(1, 1, {"UBAS;2;4096;" + Conversion("Other;0;1;2;3;4;5;6;7;NULLVAL;NULLVAL")});
    server_.Send(2, 1, {"DEL;3;1"});
    EXPECT_EQ(Unseen(server_.Pull(1, 1, {2})), "1 ");
}

// --- pages -------------------------------------------------------------------------------------------------

TEST_P(ServerPull, PagesHoldTogetherWhatOnePageWould) {
    server_.Send(1, 0, {Group("B1"), Group("B2"), Group("B3"), Point(-1), Point(-2), Point(-3), Point(-3)});
    server_.Send(1, 1, {"DEL;3;1", "DEL;4;7", "DEL;3;2", "UPTGPS;6;1;Q"});
    const PullPage first = Page({1, {}, {}, 0, ""});
    EXPECT_EQ(first.upTo, 2);
    EXPECT_FALSE(first.last);
    EXPECT_EQ(Short(first.replies), (Texts{"4:6", "-3:1"}));
    const PullPage second = Page({1, {}, {}, first.upTo, first.next});
    EXPECT_EQ(second.upTo, 2);
    EXPECT_EQ(Short(second.replies), (Texts{"-3:2", "-4:7"}));
    EXPECT_FALSE(second.last);
    const PullPage third = Page({1, {}, {}, second.upTo, second.next});
    EXPECT_TRUE(third.replies.empty());
    EXPECT_TRUE(third.last);
    EXPECT_EQ(Pull(3, 0), (Texts{"3:3", "4:6", "-3:1", "-3:2", "-4:7"}));
}

TEST_P(ServerPull, PageThatWasLostIsGivenAgain) {
    server_.Send(1, 0, {Group("B1"), Point(-1), Point(-1), Point(-1)});
    const PullPage first = Page({});
    const PullRequest request{0, {}, {}, first.upTo, first.next};
    EXPECT_EQ(Page(request), Page(request));
    EXPECT_EQ(Short(Page(request).replies), (Texts{"4:3", "4:4"}));
}

TEST_P(ServerPull, WhatIsAddedBetweenTwoPagesWaitsForTheNextPull) {
    server_.Send(1, 0, {Group("B1"), Point(-1), Point(-1)});
    const PullPage first = Page({});
    server_.Send(2, 1, {Group("B2"), Point(-1), Point(1)});
    const PullPage second = Page({0, {}, {}, first.upTo, first.next});
    EXPECT_EQ(Short(second.replies), (Texts{"4:3"}));
    EXPECT_TRUE(second.last);
    EXPECT_EQ(second.upTo, 1);
    EXPECT_EQ(Pull(3, 1), (Texts{"3:4", "4:5", "4:6"}));
}

TEST_P(ServerPull, WhatIsChangedBetweenTwoPagesIsGivenAsItIsThen) {
    server_.Send(1, 0, {Group("B1"), Point(-1), Point(-1)});
    const PullPage first = Page({});
    server_.Send(2, 1, {"UPTGPS;3;1;Q"});
    const PullPage second = Page({0, {}, {}, first.upTo, first.next});
    ASSERT_EQ(second.replies.size(), 1u);
    EXPECT_EQ(second.replies[0].fields[2].View(), "Q");
    EXPECT_EQ(Pull(3, 1), (Texts{"4:3"}));
}

TEST_P(ServerPull, WhatIsDeletedBetweenTwoPagesIsGivenAsItWasAndDeletedByTheNextPull) {
    server_.Send(1, 0, {Group("B1"), Group("B2"), Point(-1), Point(-2)});
    const PullPage first = Page({});
    EXPECT_EQ(Short(first.replies), (Texts{"3:1", "3:2"}));
    server_.Send(2, 1, {"DEL;3;2", "DEL;4;3"});
    const PullPage second = Page({0, {}, {}, first.upTo, first.next});
    EXPECT_EQ(Short(second.replies), (Texts{"4:3", "4:4"}));
    const PullPage third = Page({0, {}, {}, first.upTo, second.next});
    EXPECT_TRUE(third.replies.empty());
    EXPECT_EQ(Pull(3, 1), (Texts{"-3:2", "-4:3"}));
}

// --- requests that cannot be answered ----------------------------------------------------------------------

TEST_P(ServerPull, BookThatKnowsMoreThanTheProjectIsTold) {
    server_.Send(1, 0, {Group("B1")});
    const auto kind = [&](const PullRequest& request) {
        try {
            Page(request);
        } catch (const TransportError& error) {
            return error.GetKind();
        }
        ADD_FAILURE() << "no error";
        return TransportError::Kind::damaged;
    };
    EXPECT_EQ(kind({2, {}, {}, 0, ""}), TransportError::Kind::older);
    EXPECT_EQ(kind({0, {}, {}, 2, "1:0:1"}), TransportError::Kind::older);
    EXPECT_EQ(kind({0, {}, {2}, 0, ""}), TransportError::Kind::older);
    EXPECT_EQ(kind({1, "another", {}, 0, ""}), TransportError::Kind::older);
    EXPECT_EQ(kind({0, "another", {}, 0, ""}), TransportError::Kind::older);
    EXPECT_EQ(kind({0, {}, {}, 0, "", 2}), TransportError::Kind::older);
    EXPECT_EQ(kind({0, "another", {}, 0, "", 1}), TransportError::Kind::older);
    EXPECT_EQ(kind({0, "another", {1}, 0, ""}), TransportError::Kind::older);
    EXPECT_EQ(kind({-1, {}, {}, 0, ""}), TransportError::Kind::refused);
    EXPECT_EQ(kind({-1, {}, {}, 0, "", 1}), TransportError::Kind::refused);
    for (const std::string next : {"x", "1", "1:0", "1:0:1:", "1:0:1x", "4:0:0", "-1:0:0", "1:-1:0", "1::1",
                                   "1:0:99999999999999999999"})
        EXPECT_EQ(kind({0, {}, {}, 1, next}), TransportError::Kind::refused) << next;
}

}  // namespace
