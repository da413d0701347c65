// What a table keeps between sessions: its bytes, and a commit that is answered in another session.
#include <gtest/gtest.h>

#include <memory>
#include <set>
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
using Deleted = std::set<long long>;

std::string State(const CCloudTable& table) {
    ofpstream out(1400);
    table.SalvaStato(out);
    return std::string(out.GetBytes());
}

std::string Commit(const CCloudTable& table) {
    ofpstream out(1400);
    table.SalvaCommit(out);
    return std::string(out.GetBytes());
}

void ReadState(CCloudTable& table, const std::string& bytes) {
    ifpstream in(bytes.data(), bytes.size(), 1400);
    table.LeggeStato(in);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);
}

void ReadCommit(CCloudTable& table, const std::string& bytes) {
    ifpstream in(bytes.data(), bytes.size(), 1400);
    table.LeggeCommit(in);
    EXPECT_TRUE(in.IsOk());
    EXPECT_EQ(in.GetRemaining(), 0);
}

// --- bytes --------------------------------------------------------------------------------------------

TEST(CloudState, IsLastTicketDeletionsAndNoCommit) {
    Table table;
    EXPECT_EQ(Dump(State(table)), Dump(Bytes().I64(0).I64(0).U8(0).Get()));
    Item a(&table, false), b(&table, false), x(&table, false), y(&table, false);
    Register(table, x, 70);
    Register(table, y, 0x0102030405060708);
    table.ItemDeletedLocally(&y);
    table.ItemDeletedLocally(&x);
    EXPECT_EQ(
        Dump(State(table)),
        Dump(Bytes().Hex("0400000000000000 0200000000000000 4600000000000000 0807060504030201 00").Get()));
}

TEST(CloudState, HoldsTheCommitUnderWay) {
    Table table;
    Item a(&table, false), known(&table, false), gone(&table, false), b(&table, false);
    Register(table, known, 5);
    Register(table, gone, 6);
    known.CloudItemChanged(0x8001);
    table.ItemDeletedLocally(&gone);
    ASSERT_TRUE(table.BeginCommit());
    const std::string commit = Bytes()
                                   .Hex(
                                       "01"
                                       "0200000000000000 0100000000000000 0400000000000000"
                                       "0100000000000000 0500000000000000 01800000"
                                       "0100000000000000 0600000000000000")
                                   .Get();
    EXPECT_EQ(Dump(Commit(table)), Dump(commit));
    EXPECT_EQ(Dump(State(table)), Dump(Bytes().I64(4).I64(1).I64(6).Raw(commit).Get()));
    known.CloudItemChanged(0x10);
    Item later(&table, false);
    EXPECT_EQ(Dump(Commit(table)), Dump(commit)) << "as it began";
    table.EndCommit();
    EXPECT_EQ(Dump(Commit(table)), Dump(Bytes().U8(0).Get()));
}

TEST(CloudState, CountsWhatTheCommitHolds) {
    Table table;
    Item a(&table, false), b(&table, false), c(&table, false), known(&table, false), gone(&table, false);
    Register(table, known, 5);
    Register(table, gone, 6);
    known.CloudItemChanged(0x4);
    table.ItemDeletedLocally(&gone);
    EXPECT_EQ(table.GetSentAdded() + table.GetSentChanged() + table.GetSentDeleted(), 0u);
    table.BeginCommit();
    Item later(&table, false);
    EXPECT_EQ(table.GetSentAdded(), 3u);
    EXPECT_EQ(table.GetSentChanged(), 1u);
    EXPECT_EQ(table.GetSentDeleted(), 1u);
}

// --- another session ----------------------------------------------------------------------------------

/// The items of a table and its state, as a project file keeps them.
struct Session {
    std::string state;
    std::vector<std::string> items;
};

Session Save(const CCloudTable& table, const std::vector<const Item*>& items) {
    Session session{State(table), {}};
    for (const Item* item : items) {
        ofpstream out(1400);
        item->SalvaInFile(out, 1400, false);
        session.items.emplace_back(out.GetBytes());
    }
    return session;
}

/// A table that was read, with its items.
struct Restarted {
    explicit Restarted(const Session& session) {
        ReadState(table, session.state);
        for (const std::string& bytes : session.items) {
            items.push_back(std::make_unique<Item>(&table, false));
            ifpstream in(bytes.data(), bytes.size(), 1400);
            items.back()->LeggeDaFile(in, 1400);
        }
    }
    Item& At(std::size_t i) { return *items[i]; }

    Table table;
    std::vector<std::unique_ptr<Item>> items;
};

TEST(CloudState, AnswerComesToTheItemsOfTheNextSession) {
    Session session;
    {
        Table table;
        Item a(&table, false), known(&table, false), b(&table, false), gone(&table, false);
        Register(table, known, 5);
        Register(table, gone, 6);
        known.CloudItemChanged(0x4);
        table.ItemDeletedLocally(&gone);
        table.BeginCommit();
        known.CloudItemChanged(0x8);
        b.CloudItemChanged(0x10);
        Item later(&table, false);
        session = Save(table, {&a, &known, &b, &later});
    }
    Restarted next(session);
    EXPECT_TRUE(next.table.IsCommitUnderWay());
    EXPECT_EQ(next.table.GetAdded(), (Items{&next.At(0), &next.At(2), &next.At(3)}));
    EXPECT_TRUE(next.table.ConfirmAdded({21, 22}, 9));
    next.table.ConfirmChanged({5});
    next.table.ConfirmDeleted();
    next.table.EndCommit();
    EXPECT_EQ(next.At(0).GetCloudId(), 21);
    EXPECT_EQ(next.At(2).GetCloudId(), 22);
    EXPECT_EQ(next.At(2).GetCloudFlag(), 0x10u) << "edited after the commit began";
    EXPECT_EQ(next.At(1).GetCloudFlag(), 0x8u);
    EXPECT_EQ(next.table.GetAdded(), Items{&next.At(3)});
    EXPECT_TRUE(next.table.GetDeleted().empty());
    EXPECT_EQ(Find(next.table, 6), Known::no);
}

TEST(CloudState, DeletedItemsStayTombstones) {
    Session session;
    {
        Table table;
        Item gone(&table, false);
        Register(table, gone, 6);
        table.ItemDeletedLocally(&gone);
        session = Save(table, {});
    }
    Restarted next(session);
    EXPECT_EQ(Find(next.table, 6), Known::tombstone);
    EXPECT_EQ(next.table.GetDeleted(), Deleted{6});
}

TEST(CloudState, ItemTakesThePlaceOfATombstoneOfItsId) {
    Session session;
    {
        Table table;
        Item gone(&table, false);
        Register(table, gone, 6);
        table.ItemDeletedLocally(&gone);
        session = Save(table, {&gone});
    }
    Restarted next(session);
    EXPECT_EQ(Find(next.table, 6, &next.At(0)), Known::item);
    EXPECT_TRUE(next.table.GetDeleted().empty());
}

TEST(CloudState, RecordOfAnItemThatDidNotComeBackBecomesADeletion) {
    Session session;
    {
        Table table;
        Item a(&table, false), lost(&table, false);
        table.BeginCommit();
        session = Save(table, {&a});
    }
    Restarted next(session);
    Item drawn(&next.table, false);
    EXPECT_GT(drawn.GetTicket(), 2) << "no ticket of the commit is given out again";
    EXPECT_TRUE(next.table.ConfirmAdded({21, 22}, 1));
    EXPECT_EQ(next.At(0).GetCloudId(), 21);
    EXPECT_EQ(next.table.GetDeleted(), Deleted{22});
    EXPECT_EQ(drawn.GetCloudId(), 0);
}

TEST(CloudState, TicketsGoOnBehindTheLastOne) {
    Session session;
    {
        Table table;
        for (int i = 0; i < 5; ++i) Item item(&table, false);
        session = Save(table, {});
    }
    Restarted next(session);
    Item item(&next.table, false);
    EXPECT_EQ(item.GetTicket(), 6);
}

// --- a commit of the journal --------------------------------------------------------------------------

TEST(CloudState, ReadingACommitBeginsIt) {
    Table written;
    Item x(&written, false), y(&written, false), z(&written, false);
    Register(written, z, 5);
    z.CloudItemChanged(0x4);
    written.BeginCommit();
    const std::string commit = Commit(written);

    Table table;
    Item a(&table, false), b(&table, false), known(&table, false);
    Register(table, known, 5);
    a.CloudItemChanged(0x1);
    known.CloudItemChanged(0x4);
    ReadCommit(table, commit);
    EXPECT_TRUE(table.IsCommitUnderWay());
    b.CloudItemChanged(0x2);
    known.CloudItemChanged(0x8);
    EXPECT_TRUE(table.ConfirmAdded({21, 22}, 1));
    table.ConfirmChanged({5});
    EXPECT_EQ(a.GetCloudFlag(), 0u) << "what changed before is part of it";
    EXPECT_EQ(b.GetCloudFlag(), 0x2u);
    EXPECT_EQ(known.GetCloudFlag(), 0x8u);
}

TEST(CloudState, ReadingNoCommitEndsOne) {
    Table table;
    Item a(&table, false);
    table.BeginCommit();
    ReadCommit(table, Bytes().U8(0));
    EXPECT_FALSE(table.IsCommitUnderWay());
    EXPECT_EQ(table.GetAdded(), Items{&a});
}

TEST(CloudState, ItemsThatTheCommitDoesNotHoldKeepTheirBits) {
    Table table;
    Item a(&table, false), b(&table, false), known(&table, false);
    Register(table, known, 5);
    b.CloudItemChanged(0x1);
    known.CloudItemChanged(0x4);
    ReadCommit(table, Bytes().U8(1).I64(1).I64(1).I64(0).I64(0));
    EXPECT_EQ(table.GetSentAdded(), 1u);
    EXPECT_TRUE(table.ConfirmAdded({21}, 1));
    EXPECT_EQ(a.GetCloudId(), 21);
    EXPECT_EQ(b.GetCloudId(), 0);
    table.ConfirmChanged({5});
    EXPECT_EQ(known.GetCloudFlag(), 0x4u);
}

TEST(CloudState, CutStateEndsWithoutACommit) {
    Table full;
    Item a(&full, false), known(&full, false), gone(&full, false);
    Register(full, known, 5);
    Register(full, gone, 6);
    known.CloudItemChanged(0x4);
    full.ItemDeletedLocally(&gone);
    full.BeginCommit();
    const std::string state = State(full);
    for (std::size_t size = 0; size < state.size(); ++size) {
        Table table;
        ifpstream in(state.data(), size, 1400);
        table.LeggeStato(in);
        EXPECT_FALSE(table.IsCommitUnderWay()) << size;
        EXPECT_LE(table.GetDeleted().size(), 1u);
    }
}

TEST(CloudState, DamagedCountsAndIdsAreNotBelieved) {
    Table table;
    const std::string bytes = Bytes().I64(CCloudItem::TICKET_MAX + 1).I64(3).I64(-5).I64(0).I64(9).U8(0);
    ReadState(table, bytes);
    EXPECT_EQ(table.GetDeleted(), Deleted{9});
    Item item(&table, false);
    EXPECT_EQ(item.GetTicket(), 1);
    for (const std::int64_t count : {std::int64_t{-1}, INT64_MAX}) {
        Table other;
        const std::string cut = Bytes().I64(0).I64(count).I64(9);
        ifpstream in(cut.data(), cut.size(), 1400);
        other.LeggeStato(in);
        EXPECT_LE(other.GetDeleted().size(), 1u);
    }
}

// --- adoption -----------------------------------------------------------------------------------------

TEST(CloudAdopt, ItemWithIdIsKnownByIt) {
    Table table;
    Item item(nullptr, false), changed(nullptr, false);
    item.SetCloudId(5);
    changed.SetCloudId(6);
    changed.CloudItemChanged(0x4);
    table.Adopt(item);
    table.Adopt(changed);
    EXPECT_EQ(item.GetTable(), &table);
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_FALSE(IsChanged(table, item));
    EXPECT_TRUE(IsChanged(table, changed));
    EXPECT_TRUE(table.GetAdded().empty());
}

TEST(CloudAdopt, ItemWithoutIdIsAdded) {
    Table table;
    Item first(&table, false), item(nullptr, false);
    item.CloudItemChanged(0x4);
    table.Adopt(item);
    EXPECT_EQ(table.GetAdded(), (Items{&first, &item}));
    EXPECT_EQ(item.GetTicket(), 2);
    EXPECT_EQ(item.GetCloudFlag(), 0u) << "it is sent whole";
}

TEST(CloudAdopt, IdOfAnotherItemIsDropped) {
    Table table;
    Item known(&table, false), item(nullptr, false);
    Register(table, known, 5);
    item.SetCloudId(5);
    item.CloudItemChanged(0x4);
    table.Adopt(item);
    EXPECT_EQ(Find(table, 5, &known), Known::item);
    EXPECT_EQ(item.GetCloudId(), 0);
    EXPECT_EQ(item.GetCloudFlag(), 0u);
    EXPECT_EQ(table.GetAdded(), Items{&item});
}

TEST(CloudAdopt, TicketOfAnItemIsNotDrawnAgain) {
    auto first = std::make_unique<Table>();
    Item before(first.get(), false), item(first.get(), false);
    item.SetCloudId(5);
    first.reset();
    Table table;
    table.Adopt(item);
    ASSERT_EQ(item.GetTicket(), 2);
    Item drawn(&table, false), later(&table, false);
    EXPECT_EQ(drawn.GetTicket(), 3);
    item.SetCloudId(0);
    EXPECT_EQ(table.GetAdded(), (Items{&item, &drawn, &later}));
}

TEST(CloudAdopt, TombstoneGivesWay) {
    Table table;
    {
        Item gone(&table, false);
        Register(table, gone, 5);
        table.ItemDeletedLocally(&gone);
    }
    Item item(nullptr, false);
    item.SetCloudId(5);
    table.Adopt(item);
    EXPECT_EQ(Find(table, 5, &item), Known::item);
    EXPECT_TRUE(table.GetDeleted().empty());
}

TEST(CloudAdopt, ItemOfATableStays) {
    Table table, other;
    Item item(&other, false);
    table.Adopt(item);
    EXPECT_EQ(item.GetTable(), &other);
    EXPECT_TRUE(table.GetAdded().empty());
}

TEST(CloudAdopt, ItemOfADestroyedTableFindsANewOne) {
    auto first = std::make_unique<Table>();
    Item item(first.get(), false);
    first.reset();
    Table table;
    table.Adopt(item);
    EXPECT_EQ(item.GetTable(), &table);
    EXPECT_EQ(table.GetAdded(), Items{&item});
    item.SetCloudId(3);
    EXPECT_TRUE(table.AddItemToTable(&item));
}

}  // namespace
