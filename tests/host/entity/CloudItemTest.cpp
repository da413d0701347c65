// The item's side: construction, ids, reporting switch, copy, assignment, end of life.
#include <gtest/gtest.h>

#include <memory>
#include <set>

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

// --- construction -----------------------------------------------------------------------------------------

TEST(CloudItem, NewItemEntersTheAddedItems) {
    Table table;
    const Item item(&table, false);
    EXPECT_EQ(table.GetAdded(), Items{const_cast<Item*>(&item)});
    EXPECT_EQ(item.GetCloudId(), 0);
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_TRUE(item.IsCloudNotify());
    EXPECT_EQ(item.GetTicket(), 1);
    EXPECT_EQ(item.GetTable(), &table);
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_TRUE(table.GetById().empty());
}

TEST(CloudItem, ItemFromTheCloudEntersNothingYet) {
    Table table;
    const Item item(&table, true);
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_TRUE(table.GetById().empty());
    EXPECT_EQ(item.GetTicket(), 0);
    EXPECT_TRUE(item.IsCloudNotify());
    EXPECT_EQ(item.GetTable(), &table);
}

TEST(CloudItem, ItemWithoutTableWorksAndRemembersItsMask) {
    Item item(nullptr, false);
    EXPECT_EQ(item.GetTable(), nullptr);
    item.CloudItemChanged(0x4);
    item.CloudItemChanged(0x10);
    EXPECT_EQ(item.GetCloudFlag(), 0x14u);
    item.SetCloudId(7);
    EXPECT_EQ(item.GetCloudId(), 7);
    item.SetCloudNotify(false);
    item.SetCloudNotify(true);
    item.SetCloudId(0);
    EXPECT_EQ(item.GetCloudId(), 0);
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_EQ(item.GetTicket(), 0);
}

TEST(CloudItem, AddedItemsStandInOrderOfCreation) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false), d(&table, false);
    b.SetCloudId(5);
    d.SetCloudId(6);
    EXPECT_EQ(table.GetAdded(), (Items{&a, &c}));
    d.SetCloudId(0);
    b.SetCloudId(0);  // back with the ticket it had
    EXPECT_EQ(table.GetAdded(), (Items{&a, &b, &c, &d}));
}

// --- base operations ---------------------------------------------------------------------------------------

TEST(CloudItem, BaseHasNoCreatorAndIgnoresItsConversion) {
    struct Bare : CCloudItem {
        using CCloudItem::CCloudItem;
    };
    Table table;
    Bare item(&table, false);
    EXPECT_EQ(item.GetCloudCreatorDevId(), -1);
    EXPECT_TRUE(item.IsCloudMine(-1));
    EXPECT_FALSE(item.IsCloudMine(1));
    item.ConvCoordChanged();
    EXPECT_EQ(item.GetCloudFlag(), 0u);
}

TEST(CloudItem, IsMineWhenTheVirtualCreatorIsTheDevice) {
    Item item(nullptr, false);
    item.creator = 12;
    const CCloudItem& base = item;
    EXPECT_TRUE(base.IsCloudMine(12));
    EXPECT_FALSE(base.IsCloudMine(13));
}

// --- the reporting switch ----------------------------------------------------------------------------------

TEST(CloudItem, TurningReportingOnMarksAnItemWithoutIdForTheCloud) {
    Table table;
    Item item(&table, true);
    item.SetCloudNotify(true);  // it was on all the time
    EXPECT_EQ(table.GetAdded(), Items{&item});
    EXPECT_EQ(item.GetTicket(), 1);
}

TEST(CloudItem, TurningReportingOnTwiceAddsOnce) {
    Table table;
    Item item(&table, false);
    item.SetCloudNotify(true);
    item.SetCloudNotify(true);
    EXPECT_EQ(table.GetAdded(), Items{&item});
}

TEST(CloudItem, TurningReportingOnLeavesAnItemWithIdWhereItIs) {
    Table table;
    Item loose(&table, true), known(&table, true);
    loose.SetCloudId(5);
    Register(table, known, 6);
    loose.SetCloudNotify(true);
    known.SetCloudNotify(true);
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_EQ(Find(table, 5), Known::no);
}

TEST(CloudItem, TurningReportingOffLeavesTheAddedItemsAlone) {
    Table table;
    Item item(&table, false);
    item.SetCloudNotify(false);
    EXPECT_FALSE(item.IsCloudNotify());
    EXPECT_EQ(table.GetAdded(), Items{&item});
}

TEST(CloudItem, ReportingIsOneSwitchAndNotNested) {
    Item item(nullptr, false);
    item.SetCloudNotify(false);
    item.SetCloudNotify(false);
    item.SetCloudNotify(true);
    EXPECT_TRUE(item.IsCloudNotify());
}

// --- ids ---------------------------------------------------------------------------------------------------

TEST(CloudItem, TakingAnIdLeavesTheAddedItemsButIsNotKnownYet) {
    Table table;
    Item item(&table, false);
    item.SetCloudId(5);
    EXPECT_EQ(item.GetCloudId(), 5);
    EXPECT_TRUE(table.GetAdded().empty());
    EXPECT_EQ(Find(table, 5), Known::no);
}

TEST(CloudItem, ServerValuesStoredAfterTakingAnIdAreNoLocalChange) {
    Table table;
    Item item(&table, false);
    item.SetCloudId(5);
    item.CloudItemChanged(0x4);
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
    ASSERT_TRUE(table.AddItemToTable(&item));
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_TRUE(table.GetChanged().empty());
}

TEST(CloudItem, TakingAnotherIdLeavesTheOldOneAndTheChangedItems) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0x4);
    item.SetCloudId(6);
    EXPECT_EQ(Find(table, 5), Known::no);
    EXPECT_EQ(Find(table, 6), Known::no);
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_TRUE(table.GetDeleted().empty()) << "nothing was deleted";
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
}

TEST(CloudItem, TakingAnIdThatAnotherHoldsLeavesTheOthersEntry) {
    Table table;
    Item holder(&table, false), late(&table, false);
    Register(table, holder, 5);
    late.SetCloudId(5);
    late.SetCloudId(6);  // its old id's entry is not its own
    EXPECT_EQ(Find(table, 5, &holder), Known::item);
}

TEST(CloudItem, IdBelowOneMakesTheItemNewAgain) {
    for (const long long id : {0LL, -1LL, -9'000'000'000LL}) {
        Table table;
        Item item(&table, false);
        Register(table, item, 5);
        item.CloudItemChanged(0x4);
        item.SetCloudId(id);
        EXPECT_EQ(item.GetCloudId(), 0) << id;
        EXPECT_EQ(item.GetCloudFlag(), 0u) << id;
        EXPECT_EQ(table.GetAdded(), Items{&item}) << id;
        EXPECT_EQ(Find(table, 5), Known::no) << id;
        EXPECT_TRUE(table.GetChanged().empty()) << id;
        EXPECT_EQ(item.GetTicket(), 1) << id << ": the ticket stays with the item";
    }
}

TEST(CloudItem, IdsMayHave64Bits) {
    Table table;
    Item item(&table, false);
    Register(table, item, 0x7FFF'FFFF'FFFF'FFFF);
    EXPECT_EQ(Find(table, 0x7FFF'FFFF'FFFF'FFFF, &item), Known::item);
}

// --- copy --------------------------------------------------------------------------------------------------

TEST(CloudItem, CopyIsADetachedValue) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(0x4);
    item.SetCloudNotify(false);

    Item copy(item);
    EXPECT_EQ(copy.GetCloudId(), 5);
    EXPECT_EQ(copy.GetCloudFlag(), 0x4u);
    EXPECT_FALSE(copy.IsCloudNotify());
    EXPECT_EQ(copy.GetTable(), nullptr);
    EXPECT_EQ(copy.GetTicket(), 0);

    copy.SetCloudNotify(true);
    copy.CloudItemChanged(0x8);
    copy.SetCloudId(9);
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
    EXPECT_EQ(table.GetChanged().size(), 1u);
}

TEST(CloudItem, DestroyingACopyLeavesTheTable) {
    Table table;
    Item item(&table, false), known(&table, false);
    Register(table, known, 5);
    known.CloudItemChanged(1);
    {
        const Item copyOfAdded(item);
        const Item copyOfKnown(known);
    }
    EXPECT_EQ(table.GetAdded(), Items{&item});
    EXPECT_EQ(Find(table, 5, &known), Known::item);
    EXPECT_TRUE(IsChanged(table, known));
}

// --- assignment --------------------------------------------------------------------------------------------

TEST(CloudItem, AssignmentTakesValuesAndKeepsTableAndTicket) {
    Table mine, theirs;
    Item first(&mine, false), item(&mine, false), source(&theirs, false);
    source.SetCloudId(5);
    source.CloudItemChanged(0x4);
    source.SetCloudNotify(false);
    item = source;
    EXPECT_EQ(item.GetTable(), &mine);
    EXPECT_EQ(item.GetTicket(), 2);
    EXPECT_EQ(item.GetCloudId(), 5);
    EXPECT_EQ(item.GetCloudFlag(), 0x4u);
    EXPECT_FALSE(item.IsCloudNotify());
    EXPECT_EQ(mine.GetAdded(), Items{&first});
    EXPECT_EQ(Find(mine, 5, &item), Known::item);
    EXPECT_TRUE(IsChanged(mine, item));
    EXPECT_EQ(Find(theirs, 5), Known::no) << "the source's table learns nothing";
}

TEST(CloudItem, AssignedItemWithoutChangesIsNotAChangedOne) {
    Table mine;
    Item item(&mine, false), source(nullptr, false);
    source.SetCloudId(5);
    item = source;
    EXPECT_TRUE(mine.GetChanged().empty());
    EXPECT_EQ(Find(mine, 5, &item), Known::item);
}

TEST(CloudItem, AssignmentLeavesTheOldId) {
    Table mine;
    Item item(&mine, false), source(nullptr, false);
    Register(mine, item, 5);
    item.CloudItemChanged(0x4);
    source.SetCloudId(6);
    item = source;
    EXPECT_EQ(Find(mine, 5), Known::no);
    EXPECT_EQ(Find(mine, 6, &item), Known::item);
    EXPECT_TRUE(mine.GetChanged().empty());
    EXPECT_TRUE(mine.GetDeleted().empty());
}

TEST(CloudItem, AssignmentDoesNotTakeOverAnIdThatAnotherHolds) {
    Table mine;
    Item holder(&mine, false), item(&mine, false), source(nullptr, false);
    Register(mine, holder, 5);
    source.SetCloudId(5);
    source.CloudItemChanged(0x4);
    item = source;
    EXPECT_EQ(Find(mine, 5, &holder), Known::item);
    EXPECT_EQ(item.GetCloudId(), 5);
    EXPECT_TRUE(mine.GetAdded().empty());
    EXPECT_TRUE(mine.GetChanged().empty());
    item.CloudItemChanged(0x8);
    EXPECT_TRUE(mine.GetChanged().empty()) << "only the item known by the id is a changed one";
}

TEST(CloudItem, AssignmentRevivesATombstoneAndDropsItsDeletion) {
    Table mine;
    auto gone = std::make_unique<Item>(&mine, false);
    Register(mine, *gone, 5);
    mine.ItemDeletedLocally(gone.get());
    gone.reset();
    ASSERT_EQ(mine.GetDeleted(), Deleted{5});

    Item item(&mine, false), source(nullptr, false);
    source.SetCloudId(5);
    item = source;
    EXPECT_EQ(Find(mine, 5, &item), Known::item);
    EXPECT_TRUE(mine.GetDeleted().empty());
}

TEST(CloudItem, AssignmentOfAnItemWithoutIdEntersTheAddedItems) {
    Table mine;
    Item item(&mine, true), known(&mine, false), source(nullptr, false);
    Register(mine, known, 5);
    source.CloudItemChanged(0x4);
    item = source;
    known = source;
    EXPECT_EQ(mine.GetAdded(), (Items{&known, &item})) << "known had its ticket first";
    EXPECT_EQ(known.GetCloudId(), 0);
    EXPECT_EQ(known.GetCloudFlag(), 0x4u);
    EXPECT_EQ(Find(mine, 5), Known::no);
    item = source;
    EXPECT_EQ(mine.GetAdded().size(), 2u);
}

TEST(CloudItem, AssignmentToItselfChangesNothing) {
    Table mine;
    Item item(&mine, false);
    Register(mine, item, 5);
    item.CloudItemChanged(0x4);
    const Item& same = item;
    item = same;
    EXPECT_EQ(Find(mine, 5, &item), Known::item);
    EXPECT_TRUE(IsChanged(mine, item));
}

TEST(CloudItem, AssignmentToAnItemWithoutTableIsAPlainCopy) {
    Table theirs;
    Item item(nullptr, false), source(&theirs, false);
    Register(theirs, source, 5);
    item = source;
    EXPECT_EQ(item.GetTable(), nullptr);
    EXPECT_EQ(item.GetCloudId(), 5);
    EXPECT_EQ(Find(theirs, 5, &source), Known::item);
}

// --- end of life -------------------------------------------------------------------------------------------

TEST(CloudItem, DestructionLeavesEveryCollectionAndQueuesNothing) {
    Table table;
    auto added = std::make_unique<Item>(&table, false);
    auto known = std::make_unique<Item>(&table, false);
    Item last(&table, false);
    Register(table, *known, 5);
    known->CloudItemChanged(0x4);
    added.reset();
    known.reset();
    EXPECT_EQ(table.GetAdded(), Items{&last});
    EXPECT_TRUE(table.GetChanged().empty());
    EXPECT_TRUE(table.GetById().empty());
    EXPECT_TRUE(table.GetDeleted().empty()) << "closing a book deletes nothing on the server";
}

TEST(CloudItem, ItemsOutliveTheirTable) {
    auto table = std::make_unique<Table>();
    Item added(table.get(), false), known(table.get(), false), loose(table.get(), true);
    Register(*table, known, 5);
    known.CloudItemChanged(0x4);
    table.reset();
    for (Item* item : {&added, &known, &loose}) {
        EXPECT_EQ(item->GetTable(), nullptr);
        item->CloudItemChanged(0x8);
        item->SetCloudNotify(true);
        item->SetCloudId(9);
        item->SetCloudId(0);
        *item = added;
    }
    Table next;  // perhaps at the old one's address
    EXPECT_TRUE(next.GetAdded().empty());
    EXPECT_EQ(added.GetTable(), nullptr);
}

}  // namespace
