// The cloud record: its bytes, and where an item stands in its table after reading one.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::Bytes;
using test::Dump;
using test::Find;
using test::IsChanged;
using test::Item;
using test::Items;
using test::Known;
using test::Register;
using test::Table;

std::string Saved(const CCloudItem& item, bool asCopy = false, short version = 1400) {
    ofpstream out(1400);
    item.SalvaInFile(out, version, asCopy);
    return std::string(out.GetBytes());
}

std::string Record(std::int64_t id, std::uint32_t mask, std::uint32_t since, std::int64_t ticket) {
    return Bytes().I64(id).U32(mask).U32(since).I64(ticket);
}

void Read(CCloudItem& item, const std::string& bytes) {
    ifpstream in(bytes.data(), bytes.size(), 1400);
    item.LeggeDaFile(in, 1400);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);
}

std::vector<long long> Tickets(const CCloudTable& table) {
    std::vector<long long> tickets;
    for (const CCloudItem* item : table.GetAdded()) tickets.push_back(item->GetTicket());
    return tickets;
}

// --- bytes -------------------------------------------------------------------------------------------------

TEST(CloudRecord, IsIdMaskBitsSinceTheCommitAndTicket) {
    Table table;
    Item item(&table, false);
    item.CloudItemChanged(0x10);
    Register(table, item, 0x0102030405060708);
    item.CloudItemChanged(0x40);
    ASSERT_TRUE(table.BeginCommit());
    item.CloudItemChanged(0x1);
    EXPECT_EQ(Dump(Saved(item)),
              Dump(Bytes().Hex("0807060504030201 41000000 01000000 0100000000000000").Get()));
}

TEST(CloudRecord, IsTheSameInEveryVersion) {
    Table table;
    Item item(&table, false);
    item.CloudItemChanged(0x3);
    for (const short version : {short{0}, short{741}, short{1003}, short{1400}})
        EXPECT_EQ(Dump(Saved(item, false, version)), Dump(Record(0, 3, 3, 1))) << version;
}

TEST(CloudRecord, OfACopyIsZero) {
    Table table;
    Item item(&table, false);
    Register(table, item, 77);
    item.CloudItemChanged(0x3);
    EXPECT_EQ(Dump(Saved(item, true)), Dump(std::string(24, '\0')));
    EXPECT_EQ(item.GetCloudId(), 77) << "the item keeps what it is";
    EXPECT_EQ(item.GetCloudFlag(), 0x3u);
}

TEST(CloudRecord, ComesBackAsItWas) {
    Table table;
    Item item(&table, false);
    const std::string bytes = Record(5, 0x41, 0x1, 9);
    Read(item, bytes);
    EXPECT_EQ(item.GetCloudId(), 5);
    EXPECT_EQ(item.GetCloudFlag(), 0x41u);
    EXPECT_EQ(item.GetTicket(), 9);
    EXPECT_EQ(Dump(Saved(item)), Dump(bytes));
}

// --- without a table -----------------------------------------------------------------------------------

TEST(CloudRecord, ItemWithoutTableKeepsIt) {
    Item item(nullptr, false);
    const std::string bytes = Record(5, 0x41, 0x1, 9);
    Read(item, bytes);
    EXPECT_EQ(item.GetTable(), nullptr);
    EXPECT_EQ(Dump(Saved(item)), Dump(bytes)) << "a book opened without its cloud project loses nothing";
}

// --- with a table --------------------------------------------------------------------------------------

TEST(CloudRecord, ItemWithIdLeavesTheAddedAndIsKnown) {
    Table table;
    Item item(&table, false);
    Read(item, Record(5, 0, 0, 1));
    EXPECT_TRUE(table.GetAdded().empty()) << "it would be sent a second time";
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_FALSE(IsChanged(table, item));
}

TEST(CloudRecord, ItemWithIdAndMaskIsChanged) {
    Table table;
    Item item(&table, false);
    Read(item, Record(5, 0x10, 0, 1));
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_TRUE(IsChanged(table, item));
    // Bits that a commit had when the book was saved are sent again; those set since would be kept.
    ASSERT_TRUE(table.BeginCommit());
    table.ConfirmChanged({5});
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_FALSE(IsChanged(table, item));
}

TEST(CloudRecord, BitsSetSinceTheCommitOutliveItsConfirmation) {
    Table table;
    Item item(&table, false), other(&table, false);
    ASSERT_TRUE(table.BeginCommit());
    Read(item, Record(0, 0x30, 0x20, 1));
    ASSERT_TRUE(table.ConfirmAdded({8, 9}, 1));
    EXPECT_EQ(item.GetCloudId(), 8);
    EXPECT_EQ(item.GetCloudFlag(), 0x20u);
    EXPECT_TRUE(IsChanged(table, item));
}

TEST(CloudRecord, ItemWithoutIdIsAnAddedOne) {
    Table table;
    Item fresh(&table, false), fromCloud(&table, true), known(&table, false);
    Register(table, known, 5);
    for (Item* item : {&fresh, &fromCloud, &known}) Read(*item, Record(0, 0x3, 0x3, 0));
    EXPECT_EQ(table.GetAdded().size(), 3u);
    EXPECT_EQ(Find(table, 5), Known::no);
    EXPECT_EQ(known.GetCloudFlag(), 0x3u);
    EXPECT_FALSE(IsChanged(table, known));
}

TEST(CloudRecord, ItemLeavesItsFormerId) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    item.CloudItemChanged(1);
    Read(item, Record(6, 0, 0, 1));
    EXPECT_EQ(Find(table, 5), Known::no);
    EXPECT_EQ(Find(table, 6, &item), Known::item);
    EXPECT_TRUE(table.GetChanged().empty());
}

TEST(CloudRecord, SameIdAgainChangesNothing) {
    Table table;
    Item item(&table, false);
    Register(table, item, 5);
    Read(item, Record(5, 0x2, 0x2, 1));
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_TRUE(IsChanged(table, item));
}

TEST(CloudRecord, IdOfAnotherItemIsDropped) {
    Table table;
    Item first(&table, false), second(&table, false);
    Read(first, Record(5, 0x1, 0x1, 1));
    Read(second, Record(5, 0x7, 0x7, 1));
    EXPECT_EQ(Find(table, 5, &first), Known::item);
    EXPECT_EQ(first.GetCloudFlag(), 0x1u);
    EXPECT_EQ(second.GetCloudId(), 0);
    EXPECT_EQ(second.GetCloudFlag(), 0u);
    EXPECT_EQ(table.GetAdded(), Items{&second});
    EXPECT_NE(second.GetTicket(), first.GetTicket()) << "the ticket is the other item's, too";
}

TEST(CloudRecord, TombstoneGivesWayWithItsDeletion) {
    Table table;
    {
        Item deleted(&table, false);
        Register(table, deleted, 5);
        table.ItemDeletedLocally(&deleted);
    }
    ASSERT_EQ(Find(table, 5), Known::tombstone);
    Item item(&table, false);
    Read(item, Record(5, 0, 0, 1));
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_TRUE(table.GetDeleted().empty());
}

TEST(CloudRecord, IdBelowOneIsNone) {
    for (const std::int64_t id :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        Table table;
        Item item(&table, false);
        Read(item, Record(id, 0x2, 0, 1));
        EXPECT_EQ(item.GetCloudId(), 0);
        EXPECT_EQ(table.GetAdded(), Items{&item});
    }
}

TEST(CloudRecord, ReportingStaysAsItIs) {
    Table table;
    Item item(&table, false);
    item.SetCloudNotify(false);
    Read(item, Record(5, 0, 0, 1));
    EXPECT_FALSE(item.IsCloudNotify());
    item.CloudItemChanged(1);
    EXPECT_EQ(item.GetCloudFlag(), 0u);
}

TEST(CloudRecord, ReadingReportsNothing) {
    Table table;
    Item item(&table, false);
    int reports = 0;
    CCloudItem::SetObserver([&](const CCloudItem&, std::uint32_t) { ++reports; });
    Read(item, Record(5, 0x41, 0x1, 9));
    CCloudItem::SetObserver({});
    EXPECT_EQ(reports, 0);
}

// --- tickets -----------------------------------------------------------------------------------------------

TEST(CloudRecord, AddedItemsStandInTheOrderOfTheirTickets) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false);
    Read(a, Record(0, 0, 0, 30));
    Read(b, Record(0, 0, 0, 10));
    Read(c, Record(0, 0, 0, 20));
    EXPECT_EQ(table.GetAdded(), (Items{&b, &c, &a}));
    EXPECT_EQ(Tickets(table), (std::vector<long long>{10, 20, 30}));
}

TEST(CloudRecord, TicketZeroKeepsTheItemsOwn) {
    Table table;
    Item a(&table, false), b(&table, false);
    Read(b, Record(0, 0, 0, 0));
    EXPECT_EQ(b.GetTicket(), 2);
    EXPECT_EQ(table.GetAdded(), (Items{&a, &b}));
}

TEST(CloudRecord, ItemFromTheServerHasNoTicketAfterReadingEither) {
    Table table;
    Item item(&table, false);  // draws one while it is made
    const std::string record = Record(77, 0, 0, 0);
    Read(item, record);
    EXPECT_EQ(Saved(item), record);
    item.SetCloudId(0);  // and gets one when it is to be sent
    EXPECT_EQ(item.GetTicket(), 2);
}

TEST(CloudRecord, ItemWithIdAndWithoutTicketKeepsNone) {
    Table table;
    Item item(&table, false);
    Read(item, Record(5, 0, 0, 0));
    EXPECT_EQ(item.GetTicket(), 0) << "the one it drew when it was made was for an added item";
    item.SetCloudId(0);
    EXPECT_EQ(item.GetTicket(), 2) << "it draws one when it needs one";
}

TEST(CloudRecord, NoTicketThatWasReadIsDrawnAgain) {
    Table table;
    Item confirmed(&table, false);
    Read(confirmed, Record(5, 0, 0, 3));
    std::vector<Item> later;
    later.reserve(4);
    for (int i = 0; i < 4; ++i) later.emplace_back(&table, false);
    confirmed.SetCloudId(0);  // among the added ones again, with its ticket
    EXPECT_EQ(Tickets(table), (std::vector<long long>{3, 4, 5, 6, 7}));
    EXPECT_EQ(table.GetAdded().front(), &confirmed);
}

TEST(CloudRecord, OfTwoItemsWithOneTicketTheFirstKeepsIt) {
    Table table;
    Item there(&table, false);  // ticket 1, and a commit under way that holds it
    ASSERT_TRUE(table.BeginCommit());
    Item first(&table, false), second(&table, false);
    Read(first, Record(0, 0, 0, 1));
    Read(second, Record(0, 0, 0, 1));
    EXPECT_EQ(table.GetAdded().front(), &there);
    const std::vector<long long> tickets = Tickets(table);
    ASSERT_EQ(tickets.size(), 3u);
    EXPECT_LT(tickets[0], tickets[1]);
    EXPECT_LT(tickets[1], tickets[2]);
    ASSERT_TRUE(table.ConfirmAdded({40}, 1));
    EXPECT_EQ(there.GetCloudId(), 40);
    EXPECT_EQ(first.GetCloudId(), 0);
    EXPECT_EQ(second.GetCloudId(), 0);
    EXPECT_EQ(table.GetAdded(), (Items{&first, &second}));
}

TEST(CloudRecord, ManyItemsWithOneTicketStandInTheOrderInWhichTheyCame) {
    Table table;
    std::vector<Item> items;
    items.reserve(100);
    Items came;
    for (int i = 0; i < 100; ++i) {
        items.emplace_back(&table, false);
        Read(items.back(), Record(0, 0, 0, 7));
        came.push_back(&items.back());
    }
    EXPECT_EQ(table.GetAdded(), came);
    EXPECT_EQ(items[0].GetTicket(), 7);
    for (std::size_t i = 1; i < 100; ++i) EXPECT_GT(items[i].GetTicket(), items[i - 1].GetTicket());
}

TEST(CloudRecord, TicketThatNoTableGivesIsIgnored) {
    for (const std::int64_t ticket : {std::numeric_limits<std::int64_t>::max(), (std::int64_t{1} << 62) + 1,
                                      std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        Table table;
        Item item(&table, false);
        Read(item, Record(0, 0, 0, ticket));
        EXPECT_EQ(item.GetTicket(), 1);
        const Item next(&table, false);
        EXPECT_EQ(next.GetTicket(), 2) << "counting goes on";
    }
}

TEST(CloudRecord, WholeTableComesBack) {
    // A book of five items in every state, saved and read into another table.
    Table before;
    std::vector<Item> items;
    items.reserve(5);
    for (int i = 0; i < 5; ++i) items.emplace_back(&before, false);
    Register(before, items[1], 11);
    Register(before, items[3], 13);
    items[3].CloudItemChanged(0x8);
    items[4].CloudItemChanged(0x2);

    Table after;
    std::vector<Item> read;
    read.reserve(5);
    for (int i = 0; i < 5; ++i) {
        read.emplace_back(&after, false);
        Read(read.back(), Saved(items[static_cast<std::size_t>(i)]));
    }
    EXPECT_EQ(after.GetAdded(), (Items{&read[0], &read[2], &read[4]}));
    EXPECT_EQ(Tickets(after), Tickets(before));
    EXPECT_EQ(after.GetById().size(), 2u);
    EXPECT_EQ(Find(after, 11, &read[1]), Known::item);
    EXPECT_EQ(Find(after, 13, &read[3]), Known::item);
    EXPECT_EQ(after.GetChanged().size(), 1u);
    EXPECT_TRUE(IsChanged(after, read[3]));
    for (std::size_t i = 0; i < 5; ++i) EXPECT_EQ(Dump(Saved(read[i])), Dump(Saved(items[i]))) << i;
}

}  // namespace
