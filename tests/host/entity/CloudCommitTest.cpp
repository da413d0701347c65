// One commit: what it holds, and what an answer leaves.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "tests/host/entity/CloudParts.h"

namespace {

using test::Find;
using test::IsChanged;
using test::Item;
using test::Items;
using test::Known;
using test::Register;
using test::Table;

using Deleted = std::set<long long>;
using Named = std::vector<std::pair<CCloudItem*, int>>;

TEST(CloudCommit, OneIsUnderWayAtATime) {
    Table table;
    EXPECT_TRUE(table.BeginCommit());
    EXPECT_TRUE(table.IsCommitUnderWay());
    EXPECT_FALSE(table.BeginCommit());
    table.EndCommit();
    EXPECT_FALSE(table.IsCommitUnderWay());
    EXPECT_TRUE(table.BeginCommit());
}

TEST(CloudCommit, RefusedSecondBeginKeepsWhatTheFirstHolds) {
    Table table;
    Item item(&table, false);
    table.BeginCommit();
    item.CloudItemChanged(0x4);
    Item later(&table, false);
    EXPECT_FALSE(table.BeginCommit());
    EXPECT_FALSE(table.ConfirmAdded({5, 6}, 1)) << "the commit holds one record";
    EXPECT_TRUE(table.ConfirmAdded({5}, 1));
    EXPECT_EQ(item.GetCloudFlag(), 0x4u) << "the bit came after the commit began";
}

TEST(CloudCommit, BeginningChangesNoCollection) {
    Table table;
    Item added(&table, false), known(&table, false);
    Register(table, known, 5);
    known.CloudItemChanged(0x4);
    table.BeginCommit();
    EXPECT_EQ(table.GetAdded(), Items{&added});
    EXPECT_TRUE(IsChanged(table, known));
    EXPECT_EQ(known.GetCloudFlag(), 0x4u) << "not confirmed yet";
}

TEST(CloudCommit, AnswersWithoutACommitChangeNothing) {
    Table table;
    Item added(&table, false), known(&table, false), gone(&table, false);
    Register(table, known, 5);
    Register(table, gone, 6);
    known.CloudItemChanged(0x4);
    table.ItemDeletedLocally(&gone);
    EXPECT_FALSE(table.ConfirmAdded({9}, 1));
    EXPECT_FALSE(table.ConfirmAdded({}, 1));
    table.ConfirmChanged({5});
    table.ConfirmDeleted();
    EXPECT_EQ(table.GetAdded(), Items{&added});
    EXPECT_TRUE(IsChanged(table, known));
    EXPECT_EQ(table.GetDeleted(), Deleted{6});
}

// --- added -------------------------------------------------------------------------------------------------

TEST(CloudCommit, ConfirmedItemsAreKnownByTheirIdsInEmittedOrder) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false);
    b.CloudItemChanged(0x4);
    table.BeginCommit();
    EXPECT_TRUE(table.ConfirmAdded({21, 22, 23}, 8));
    EXPECT_EQ(a.GetCloudId(), 21);
    EXPECT_EQ(b.GetCloudId(), 22);
    EXPECT_EQ(c.GetCloudId(), 23);
    EXPECT_EQ(Find(table, 22, &b), Known::item);
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_EQ(b.GetCloudFlag(), 0u) << "the item was sent whole";
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_EQ(table.named, (Named{{&a, 8}, {&b, 8}, {&c, 8}})) << "each is told its creator device";
}

TEST(CloudCommit, ConfirmedItemKeepsTheBitsSetMeanwhile) {
    Table table;
    Item item(&table, false);
    item.CloudItemChanged(0x4);
    table.BeginCommit();
    item.CloudItemChanged(0x8);
    table.ConfirmAdded({5}, 1);
    EXPECT_EQ(item.GetCloudFlag(), 0x8u);
    EXPECT_TRUE(IsChanged(table, item));
}

TEST(CloudCommit, RefusedRecordStaysAdded) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false);
    table.BeginCommit();
    EXPECT_TRUE(table.ConfirmAdded({0, 22, -3}, 1));
    EXPECT_EQ(table.GetAdded(), (Items{&a, &c}));
    EXPECT_EQ(a.GetCloudId(), 0);
    EXPECT_EQ(table.GetById().size(), 1u);
    EXPECT_EQ(table.named, (Named{{&b, 1}}));
}

TEST(CloudCommit, RecordOfADestroyedItemBecomesADeletion) {
    Table table;
    Item a(&table, false);
    auto b = std::make_unique<Item>(&table, false);
    Item c(&table, false);
    table.BeginCommit();
    b.reset();
    EXPECT_TRUE(table.ConfirmAdded({21, 22, 23}, 1));
    EXPECT_EQ(Find(table, 21, &a), Known::item);
    EXPECT_EQ(Find(table, 22), Known::tombstone);
    EXPECT_EQ(Find(table, 23, &c), Known::item);
    EXPECT_EQ(table.GetDeleted(), Deleted{22});
}

TEST(CloudCommit, ItemsAddedMeanwhileTakeNoId) {
    Table table;
    Item a(&table, false);
    table.BeginCommit();
    Item b(&table, false);
    EXPECT_TRUE(table.ConfirmAdded({21}, 1));
    EXPECT_EQ(table.GetAdded(), Items{&b});
    EXPECT_EQ(b.GetCloudId(), 0);
}

TEST(CloudCommit, ConfirmingTwiceIsOnce) {
    Table table;
    Item a(&table, false);
    auto b = std::make_unique<Item>(&table, false);
    table.BeginCommit();
    b.reset();
    a.CloudItemChanged(0x8);
    table.ConfirmAdded({21, 22}, 1);
    a.CloudItemChanged(0x10);
    EXPECT_TRUE(table.ConfirmAdded({21, 22}, 1));
    EXPECT_EQ(a.GetCloudFlag(), 0x18u);
    EXPECT_EQ(Find(table, 21, &a), Known::item);
    EXPECT_EQ(table.GetDeleted(), Deleted{22});
    EXPECT_EQ(table.named.size(), 1u);
    EXPECT_EQ(table.GetById().size(), 2u);
}

TEST(CloudCommit, WrongNumberOfIdsIsRefusedWhole) {
    Table table;
    Item a(&table, false), b(&table, false);
    table.BeginCommit();
    EXPECT_FALSE(table.ConfirmAdded({21}, 1));
    EXPECT_FALSE(table.ConfirmAdded({21, 22, 23}, 1));
    EXPECT_EQ(table.GetAdded(), (Items{&a, &b}));
    EXPECT_TRUE(table.GetById().empty());
}

TEST(CloudCommit, IdNeverMovesToAnotherItem) {
    Table table;
    Item holder(&table, false), item(&table, false);
    Register(table, holder, 21);
    table.BeginCommit();
    EXPECT_TRUE(table.ConfirmAdded({21}, 1));
    EXPECT_EQ(Find(table, 21, &holder), Known::item);
    EXPECT_EQ(item.GetCloudId(), 0);
    EXPECT_EQ(table.GetAdded(), Items{&item});
}

// --- changed -----------------------------------------------------------------------------------------------

TEST(CloudCommit, AcceptedChangesAreCleared) {
    Table table;
    Item a(&table, false), b(&table, false);
    Register(table, a, 5);
    Register(table, b, 6);
    a.CloudItemChanged(0x4);
    b.CloudItemChanged(0x4);
    table.BeginCommit();
    table.ConfirmChanged({5, 99});
    EXPECT_EQ(a.GetCloudFlag(), 0u);
    EXPECT_FALSE(IsChanged(table, a));
    EXPECT_EQ(b.GetCloudFlag(), 0x4u) << "not accepted";
    EXPECT_TRUE(IsChanged(table, b));
}

TEST(CloudCommit, BitsSetAgainMeanwhileStay) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0x4);
    item.CloudItemChanged(0x8);
    table.BeginCommit();
    item.CloudItemChanged(0x8);   // sent, and edited again
    item.CloudItemChanged(0x10);  // not sent
    table.ConfirmChanged({5});
    EXPECT_EQ(item.GetCloudFlag(), 0x18u);
    EXPECT_TRUE(IsChanged(table, item));
    table.ConfirmChanged({5});
    EXPECT_EQ(item.GetCloudFlag(), 0x18u) << "twice is once";
}

TEST(CloudCommit, NextCommitSendsWhatWasSetMeanwhile) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0x4);
    table.BeginCommit();
    item.CloudItemChanged(0x4);
    table.ConfirmChanged({5});
    table.EndCommit();
    table.BeginCommit();
    table.ConfirmChanged({5});
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_TRUE(table.GetChanged().empty());
}

TEST(CloudCommit, ItemThatBecameAChangedOneMeanwhileIsNotConfirmed) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    table.BeginCommit();
    item.CloudItemChanged(0x4);
    table.ConfirmChanged({5});
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
}

TEST(CloudCommit, ChangeOfAnItemDeletedMeanwhileIsPassedOver) {
    Table table;
    Item item(&table, false), gone(&table, false);
    Register(table, item, 5);
    Register(table, gone, 6);
    item.CloudItemChanged(0x4);
    gone.CloudItemChanged(0x4);
    table.BeginCommit();
    table.ItemDeletedLocally(&gone);
    table.ConfirmChanged({6, 5});
    EXPECT_EQ(Find(table, 6), Known::tombstone);
    EXPECT_FALSE(IsChanged(table, item));
}

// --- deleted -----------------------------------------------------------------------------------------------

TEST(CloudCommit, ConfirmedDeletionsLeaveWithTheirTombstones) {
    Table table;
    Item a(&table, false), b(&table, false);
    Register(table, a, 5);
    Register(table, b, 6);
    table.ItemDeletedLocally(&a);
    table.BeginCommit();
    table.ItemDeletedLocally(&b);  // too late for this commit
    table.ConfirmDeleted();
    EXPECT_EQ(Find(table, 5), Known::no);
    EXPECT_EQ(Find(table, 6), Known::tombstone);
    EXPECT_EQ(table.GetDeleted(), Deleted{6});
    table.ConfirmDeleted();
    EXPECT_EQ(table.GetDeleted(), Deleted{6});
}

TEST(CloudCommit, DeletionDroppedMeanwhileDoesNotTakeTheNewItemAway) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    table.ItemDeletedLocally(&item);
    table.BeginCommit();
    table.AddItemToTable(&item);
    table.ConfirmDeleted();
    EXPECT_EQ(Find(table, 5, &item), Known::item);
}

TEST(CloudCommit, UnansweredCommitKeepsEverythingWaiting) {
    Table table;
    Item added(&table, false), known(&table, false), gone(&table, false);
    Register(table, known, 5);
    Register(table, gone, 6);
    known.CloudItemChanged(0x4);
    table.ItemDeletedLocally(&gone);
    table.BeginCommit();
    table.EndCommit();
    EXPECT_EQ(table.GetAdded(), Items{&added});
    EXPECT_TRUE(IsChanged(table, known));
    EXPECT_EQ(table.GetDeleted(), Deleted{6});
}

}  // namespace
