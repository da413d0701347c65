// The table's side outside of commits: items by id, tombstones, parents, snapshots, base operations.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

#include "platform/base/CLibGen.h"
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

TEST(CloudTable, NewTableIsEmptyAndHasItsKind) {
    const Table table(CCloudTable::tabGpsBase);
    EXPECT_EQ(table.GetKind(), CCloudTable::tabGpsBase);
    EXPECT_EQ(Table(CCloudTable::tabGpsPnt).GetKind(), 4);
    EXPECT_EQ(table.GetOwner(), nullptr);
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_FALSE(table.IsCommitUnderWay());
}

TEST(CloudTable, OwnerIsKept) {
    CLibGen owner;
    Table table;
    table.SetOwner(&owner);
    EXPECT_EQ(table.GetOwner(), &owner);
    table.SetOwner(nullptr);
    EXPECT_EQ(table.GetOwner(), nullptr);
}

// --- AddItemToTable ----------------------------------------------------------------------------------------

TEST(CloudTable, AddedToTheTableIsInStepWithTheServer) {
    Table table;
    Item item(&table, false);
    item.CloudItemChanged(0x4);
    item.SetCloudId(5);
    EXPECT_TRUE(table.AddItemToTable(&item));
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_EQ(item.GetCloudFlag(), 0u);
}

TEST(CloudTable, AddingAChangedItemAgainPutsItInStep) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0x4);
    EXPECT_TRUE(table.AddItemToTable(&item));
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_EQ(Find(table, 5, &item), Known::item);
}

TEST(CloudTable, TombstoneGivesWayWithItsDeletion) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    table.ItemDeletedLocally(&item);
    ASSERT_EQ(Find(table, 5), Known::tombstone);
    EXPECT_TRUE(table.AddItemToTable(&item));
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_TRUE(table.GetDeleted().empty());
}

TEST(CloudTable, RefusesWhatItCannotKnowById) {
    Table table, other;
    Item foreign(&other, false), loose(nullptr, false), noId(&table, false), holder(&table, false),
        second(&table, false);
    Register(table, holder, 5);
    holder.CloudItemChanged(0x4);
    foreign.SetCloudId(6);
    loose.SetCloudId(7);
    second.SetCloudId(5);
    second.CloudItemChanged(0x8);
    EXPECT_FALSE(table.AddItemToTable(nullptr));
    EXPECT_FALSE(table.AddItemToTable(&foreign));
    EXPECT_FALSE(table.AddItemToTable(&loose));
    EXPECT_FALSE(table.AddItemToTable(&noId));
    EXPECT_FALSE(table.AddItemToTable(&second));
    EXPECT_EQ(table.GetAdded(), Items{&noId});
    EXPECT_EQ(table.GetById().size(), 1u);
    EXPECT_EQ(Find(table, 5, &holder), Known::item);
    EXPECT_EQ(second.GetCloudFlag(), 0x8u) << "a refusal changes nothing";
    EXPECT_TRUE(IsChanged(table, holder));
}

// --- FindItem ----------------------------------------------------------------------------------------------

TEST(CloudTable, FoundAndItemAreTwoAnswers) {
    Table table;
    Item item(&table, false), gone(&table, false);
    Register(table, item, 5);
    Register(table, gone, 6);
    table.ItemDeletedLocally(&gone);

    CCloudItem* found = nullptr;
    EXPECT_TRUE(table.FindItem(5, found));
    EXPECT_EQ(found, &item);
    EXPECT_TRUE(table.FindItem(6, found)) << "a tombstone is found";
    EXPECT_EQ(found, nullptr) << "but there is no item";
    found = &item;
    EXPECT_FALSE(table.FindItem(7, found));
    EXPECT_EQ(found, &item) << "unchanged when nothing is found";
    EXPECT_FALSE(table.FindItem(0, found));
}

// --- DelItemFromTable --------------------------------------------------------------------------------------

TEST(CloudTable, RemovingReturnsTheItemAndQueuesNoDeletion) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0x4);
    EXPECT_EQ(table.DelItemFromTable(5), &item);
    EXPECT_EQ(Find(table, 5), Known::no);
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_TRUE(table.GetDeleted().empty());
    EXPECT_EQ(item.GetCloudId(), 5) << "the item keeps its id";
    EXPECT_EQ(table.DelItemFromTable(5), nullptr);
}

TEST(CloudTable, RemovingATombstoneDropsItsDeletion) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    table.ItemDeletedLocally(&item);
    EXPECT_EQ(table.DelItemFromTable(5), nullptr);
    EXPECT_EQ(Find(table, 5), Known::no);
    EXPECT_TRUE(table.GetDeleted().empty());
}

TEST(CloudTable, RemovingAnUnknownIdAnswersNull) {
    Table table;
    Item item(&table, false);
    EXPECT_EQ(table.DelItemFromTable(5), nullptr);
    EXPECT_EQ(table.DelItemFromTable(0), nullptr);
    EXPECT_EQ(table.GetAdded(), Items{&item});
}

// --- ItemDeletedLocally ------------------------------------------------------------------------------------

TEST(CloudTable, LocalDeletionOfAKnownItemLeavesATombstone) {
    Table table;
    auto item = std::make_unique<Item>(&table, false);
    Register(table, *item, 5);
    item->CloudItemChanged(0x4);
    table.ItemDeletedLocally(item.get());
    EXPECT_EQ(Find(table, 5), Known::tombstone);
    EXPECT_EQ(table.GetDeleted(), Deleted{5});
    EXPECT_TRUE(table.GetChanged().empty());
    item->CloudItemChanged(0x8);
    EXPECT_TRUE(table.GetChanged().empty());
    item.reset();
    EXPECT_EQ(Find(table, 5), Known::tombstone) << "the destructor does not take it away";
    EXPECT_EQ(table.GetDeleted(), Deleted{5});
}

TEST(CloudTable, LocalDeletionOfAnItemNotYetKnownByItsIdIsQueuedToo) {
    Table table;
    Item item(&table, false);
    item.SetCloudId(5);
    table.ItemDeletedLocally(&item);
    EXPECT_EQ(Find(table, 5), Known::tombstone);
    EXPECT_EQ(table.GetDeleted(), Deleted{5});
}

TEST(CloudTable, LocalDeletionOfANewItemQueuesNothing) {
    Table table;
    auto item = std::make_unique<Item>(&table, false);
    table.ItemDeletedLocally(item.get());
    EXPECT_TRUE(table.GetDeleted().empty());
    EXPECT_TRUE(table.GetById().empty());
    item.reset();
    EXPECT_TRUE(table.GetAdded().empty());
}

TEST(CloudTable, LocalDeletionOfForeignItemsIsIgnored) {
    Table table, other;
    Item foreign(&other, false), loose(nullptr, false);
    Register(other, foreign, 5);
    loose.SetCloudId(6);
    table.ItemDeletedLocally(&foreign);
    table.ItemDeletedLocally(&loose);
    table.ItemDeletedLocally(nullptr);
    EXPECT_TRUE(table.GetDeleted().empty());
    EXPECT_EQ(Find(other, 5, &foreign), Known::item);
}

TEST(CloudTable, LocalDeletionDoesNotTouchAnotherItemOfTheSameId) {
    Table table;
    Item holder(&table, false), second(&table, false);
    Register(table, holder, 5);
    second.SetCloudId(5);
    table.ItemDeletedLocally(&second);
    EXPECT_EQ(Find(table, 5, &holder), Known::item);
    EXPECT_TRUE(table.GetDeleted().empty());
}

TEST(CloudTable, LocalDeletionTwiceIsOnce) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    table.ItemDeletedLocally(&item);
    table.ItemDeletedLocally(&item);
    EXPECT_EQ(table.GetDeleted(), Deleted{5});
    EXPECT_EQ(table.GetById().size(), 1u);
}

// --- parents of add records --------------------------------------------------------------------------------

TEST(CloudTable, ParentIsNamedByItsIdOrByItsAddRecord) {
    Table parents(CCloudTable::tabGpsBase), others;
    Item first(&parents, false), second(&parents, false), third(&parents, false);
    Item known(&parents, false), loose(nullptr, false), unlisted(&parents, true), foreign(&others, false);
    Register(parents, known, 77);

    struct Row {
        const char* name;
        const CCloudItem* parent;
        CCloudTable* table;
        int counter;
        long long id;
    };
    const Row rows[] = {
        {"no parent", nullptr, &parents, 3, 0},
        {"parent with an id", &known, &parents, 3, 77},
        {"parent with an id, no table given", &known, nullptr, 3, 77},
        {"first of three records", &first, &parents, 3, -1},
        {"second of three records", &second, &parents, 3, -2},
        {"last of three records", &third, &parents, 3, -3},
        {"two records of another table before", &first, &parents, 5, -3},
        {"two records of another table before, last", &third, &parents, 5, -5},
        {"parent without a table", &loose, &parents, 3, 0},
        {"parent not among the added items", &unlisted, &parents, 3, 0},
        {"parent of another table", &foreign, &parents, 3, 0},
        {"no table", &first, nullptr, 3, 0},
    };
    for (const Row& row : rows)
        EXPECT_EQ(CCloudTable::CalcParentId(row.parent, row.table, row.counter), row.id) << row.name;
}

TEST(CloudTable, ParentOrdinalCountsOnlyTheItemsThatAreLeft) {
    Table parents(CCloudTable::tabGpsBase);
    auto first = std::make_unique<Item>(&parents, false);
    auto second = std::make_unique<Item>(&parents, false);
    Item third(&parents, false), fourth(&parents, false);
    first.reset();
    second.reset();
    EXPECT_EQ(CCloudTable::CalcParentId(&fourth, &parents, 2), -2);
    EXPECT_EQ(CCloudTable::CalcParentId(&third, &parents, 2), -1);
}

// --- life of a table ---------------------------------------------------------------------------------------

TEST(CloudTable, SnapshotHasTheCollectionsAndReachesNoItem) {
    Table table;
    Item added(&table, false), known(&table, false);
    Register(table, known, 5);
    known.CloudItemChanged(0x4);
    {
        const Table snapshot(table);
        EXPECT_EQ(snapshot.GetAdded(), Items{&added});
        EXPECT_EQ(snapshot.GetChanged(), table.GetChanged());
        EXPECT_EQ(Find(snapshot, 5, &known), Known::item);
    }
    EXPECT_EQ(added.GetTable(), &table);
    EXPECT_EQ(known.GetTable(), &table);
    known.SetCloudId(0);
    EXPECT_EQ(table.GetAdded(), (Items{&added, &known}));
}

TEST(CloudTable, AssignmentDetachesTheItemsItHad) {
    Table source, target;
    Item mine(&target, false), theirs(&source, false);
    target = source;
    EXPECT_EQ(mine.GetTable(), nullptr);
    EXPECT_EQ(theirs.GetTable(), &source);
    EXPECT_EQ(target.GetAdded(), Items{&theirs});
    mine.SetCloudId(0);
    EXPECT_EQ(target.GetAdded(), Items{&theirs}) << "it is nobody's now";
}

TEST(CloudTable, ManyItemsLeaveFromAnywhereInTheMiddle) {
    Table table;
    std::vector<std::unique_ptr<Item>> items;
    for (int i = 0; i < 1000; ++i) items.push_back(std::make_unique<Item>(&table, false));
    Items expected;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i % 7 == 3)
            expected.push_back(items[i].get());
        else
            items[i].reset();
    }
    EXPECT_EQ(table.GetAdded(), expected);
    Item last(&table, false);
    EXPECT_EQ(table.GetAdded().back(), &last);
    EXPECT_EQ(last.GetTicket(), 1001);
}

// --- base operations ---------------------------------------------------------------------------------------

TEST(CloudTable, BaseHasNoRecordsAndRefusesReplies) {
    struct Bare : CCloudTable {
        Bare() : CCloudTable(tabGpsPnt) {}
        ~Bare() = default;
        void Save() { SaveTmpItems({}, {}); }
    } table;
    Item item(&table, false);
    vex::String records("left over");
    table.GenerateCommitString_Change(records);
    EXPECT_TRUE(records.IsEmpty());
    records = "left over";
    int counter = 4;
    table.GenerateCommitString_Add(counter, records);
    EXPECT_TRUE(records.IsEmpty());
    EXPECT_EQ(counter, 4);
    EXPECT_FALSE(table.UpdateSuccessful_Del({"5", "x"}));
    EXPECT_FALSE(table.UpdateSuccessful_Edit({"5", "x"}));
    EXPECT_EQ(table.Merge(&item), nullptr);
    table.SetCloudCreatorDevId(&item, 9);
    EXPECT_EQ(item.GetCloudCreatorDevId(), -1);
    table.Save();
    EXPECT_EQ(table.GetAdded(), Items{&item});
}

// What is done with a snapshot, or with a table that was assigned to, changes no item of the original.
TEST(CloudTable, OperationsOfASnapshotReachNoItem) {
    Table table;
    Item added(&table, false);
    {
        Item known(&table, false);
        Register(table, known, 5);
        known.CloudItemChanged(0x4);
        Table snapshot(table), assigned;
        assigned = table;
        for (Table* copy : {&snapshot, &assigned}) {
            EXPECT_EQ(copy->DelItemFromTable(5), nullptr);
            EXPECT_TRUE(copy->BeginCommit());
            EXPECT_TRUE(copy->ConfirmAdded({9}, 1));
            copy->ConfirmChanged({5});
            copy->ItemDeletedLocally(&known);
            EXPECT_FALSE(copy->AddItemToTable(&known));
            copy->EndCommit();
        }
        EXPECT_EQ(added.GetCloudId(), 0);
        EXPECT_EQ(known.GetCloudFlag(), 0x4U);
        EXPECT_EQ(Find(table, 5, &known), Known::item);
        EXPECT_TRUE(IsChanged(table, known));
    }
    CCloudItem* none = &added;
    EXPECT_FALSE(table.FindItem(5, none));
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_EQ(table.GetAdded(), Items{&added});
}

}  // namespace
