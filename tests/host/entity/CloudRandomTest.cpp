// Items and tables against a plain model of them, one random operation after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "tests/Bytes.h"
#include "tests/Scale.h"
#include "tests/host/entity/CloudModel.h"
#include "tests/host/entity/CloudParts.h"

namespace {

using test::CloudModel;
using test::Item;
using test::Table;

// How large the world is, and how often the order of the added items is asked for: asking puts the table's
// list in order, so seldom asking lets it go through its other states.
struct World {
    const char* name;
    int items;
    int ids;
    int orderEvery;
    int checkEvery;
    int tableLife;  // one operation in so many destroys a table
    long operations;
};

void PrintTo(const World& world, std::ostream* out) { *out << world.name; }

class Simulation {
public:
    explicit Simulation(const World& world)
        : world_(world),
          model_(world.items, kTables),
          items_(static_cast<std::size_t>(world.items)),
          tables_(kTables) {}

    void Step();
    void Check(bool order);
    const std::string& LastOperation() const { return last_; }

    /// How often something worth testing came about: a test that never gets there proves nothing.
    long confirmed = 0, tombstones = 0, collisions = 0, changedSeen = 0, detached = 0, restored = 0;
    long adopted = 0, heldBack = 0, reread = 0;

private:
    static constexpr int kTables = 2;

    int Random(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
    bool OneIn(int n) { return Random(n) == 0; }
    long long RandomId() { return OneIn(8) ? -Random(3) : 1 + Random(world_.ids); }
    std::vector<long long> SomeIds(std::size_t n);
    std::unique_ptr<Item>& At(int i) { return items_[static_cast<std::size_t>(i)]; }
    std::unique_ptr<Table>& TableAt(int t) { return tables_[static_cast<std::size_t>(t)]; }
    CCloudItem* Real(int i) { return i == CloudModel::NONE ? nullptr : At(i).get(); }

    void MakeItem(int i);
    void ItemStep(int i);
    void ReadRecord(int i);
    void TableLife(int t);
    void TableStep(int t, int i);
    void Adopt(int t, int i);
    void CommitStep(int t);
    void HoldAndBegin(int t);
    void ReadCommit(int t);
    void CheckItems();
    void CheckTable(int t, bool order);

    const World world_;
    std::mt19937 random_{20240624};
    CloudModel model_;
    std::vector<std::unique_ptr<Item>> items_;
    std::vector<std::unique_ptr<Table>> tables_;
    std::string last_;
};

std::vector<long long> Simulation::SomeIds(std::size_t n) {
    std::vector<long long> ids;
    while (ids.size() < n) ids.push_back(RandomId());
    return ids;
}

void Simulation::Step() {
    const int t = Random(kTables), i = Random(world_.items);
    if (!TableAt(t) || OneIn(world_.tableLife)) return TableLife(t);
    if (!At(i)) return MakeItem(i);
    const int kind = Random(10);
    if (kind < 6) return ItemStep(i);
    if (kind < 8) return TableStep(t, i);
    CommitStep(t);
}

void Simulation::TableLife(int t) {
    if (TableAt(t)) {
        last_ = "destroy table";
        detached += model_.TableAt(t).added.empty() ? 0 : 1;
        TableAt(t).reset();
        model_.DestroyTable(t);
        return;
    }
    last_ = "make table";
    TableAt(t) = std::make_unique<Table>(CCloudTable::tabGpsBase);
    model_.MakeTable(t);
}

void Simulation::MakeItem(int i) {
    const int from = Random(world_.items);
    if (OneIn(4) && At(from)) {
        last_ = "copy";
        At(i) = std::make_unique<Item>(*At(from));
        model_.Copy(i, from);
        return;
    }
    const int t = Random(kTables);
    const bool fromCloud = OneIn(4), loose = OneIn(10) || !TableAt(t);
    last_ = "construct";
    At(i) = std::make_unique<Item>(loose ? nullptr : TableAt(t).get(), fromCloud);
    model_.Construct(i, loose ? CloudModel::NONE : t, fromCloud);
}

void Simulation::ItemStep(int i) {
    Item& item = *At(i);
    const int from = Random(world_.items);
    switch (Random(9)) {
        case 0:
            if (!OneIn(3)) break;
            last_ = "destroy";
            At(i).reset();
            model_.Destroy(i);
            return;
        case 1: {
            if (!At(from)) break;
            last_ = "assign";
            const Item& source = *At(from);
            item = source;
            model_.Assign(i, from);
            return;
        }
        case 2: {
            last_ = "set id";
            const long long id = RandomId();
            item.SetCloudId(id);
            model_.SetId(i, id);
            return;
        }
        case 3: {
            last_ = "set notify";
            const bool on = !OneIn(4);
            item.SetCloudNotify(on);
            model_.SetNotify(i, on);
            return;
        }
        case 4:
            last_ = "read record";
            return ReadRecord(i);
        default:
            break;
    }
    last_ = "change";
    const std::uint32_t flag = OneIn(20) ? 0 : 1u << Random(32);
    item.CloudItemChanged(flag);
    model_.Changed(i, flag);
}

void Simulation::ReadRecord(int i) {
    const long long id = RandomId();
    const std::uint32_t mask = OneIn(3) ? 0 : 1u << Random(32) | 1u << Random(32);
    const std::uint32_t since = OneIn(2) ? mask : mask & 0xFFFF;
    // Its own ticket, one that nobody has, or none: two items with one ticket have a test of their own.
    long long ticket = OneIn(3) ? 0 : model_.At(i).ticket + Random(5) - 2;
    if (ticket < 0 || !model_.IsTicketFree(i, ticket)) ticket = 0;
    restored += ticket > 0 && ticket != model_.At(i).ticket ? 1 : 0;
    const std::string bytes = test::Bytes().I64(id).U32(mask).U32(since).I64(ticket);
    ifpstream in(bytes.data(), bytes.size(), 1400);
    At(i)->LeggeDaFile(in, 1400);
    model_.Read(i, id, mask, since, ticket);
}

void Simulation::TableStep(int t, int i) {
    Table& table = *TableAt(t);
    if (model_.At(i).table == CloudModel::NONE) return Adopt(t, i);
    switch (Random(5)) {
        case 0:
        case 1:
            last_ = "add to table";
            collisions += model_.At(i).table == t && model_.At(i).id >= 1 ? 1 : 0;
            ASSERT_EQ(table.AddItemToTable(At(i).get()), model_.AddToTable(t, i));
            return;
        case 2: {
            last_ = "remove from table";
            const long long id = RandomId();
            ASSERT_EQ(table.DelItemFromTable(id), Real(model_.DelFromTable(t, id)));
            return;
        }
        case 3:
            last_ = "deleted locally";
            table.ItemDeletedLocally(At(i).get());
            model_.DeletedLocally(t, i);
            return;
        default: {
            last_ = "parent of an add record";
            const int counter = static_cast<int>(model_.TableAt(t).added.size()) + Random(4);
            const int parent = OneIn(10) ? CloudModel::NONE : i;
            const bool noTable = OneIn(10);
            ASSERT_EQ(CCloudTable::CalcParentId(Real(parent), noTable ? nullptr : &table, counter),
                      model_.ParentId(parent, noTable ? CloudModel::NONE : t, counter));
        }
    }
}

void Simulation::Adopt(int t, int i) {
    const long long ticket = model_.At(i).ticket;
    if (ticket != 0 && !model_.IsTicketFreeIn(t, i, ticket)) return;
    last_ = "adopt";
    ++adopted;
    TableAt(t)->Adopt(*At(i));
    model_.Adopt(t, i);
}

void Simulation::HoldAndBegin(int t) {
    last_ = "begin commit without some items";
    std::vector<CCloudItem*> items;
    std::set<int> held;
    for (int i = 0; i < world_.items; ++i) {
        if (!At(i) || !OneIn(5)) continue;
        items.push_back(At(i).get());
        held.insert(i);
    }
    std::shuffle(items.begin(), items.end(), random_);
    Table& table = *TableAt(t);
    heldBack += model_.TableAt(t).sent ? 0 : 1;
    table.HoldBack(items);
    const bool begun = table.BeginCommit();
    table.ReleaseHeld();
    ASSERT_EQ(begun, model_.Begin(t, held));
}

void Simulation::ReadCommit(int t) {
    last_ = "read commit";
    Table& table = *TableAt(t);
    reread += table.IsCommitUnderWay() ? 1 : 0;
    ofpstream out(1400);
    table.SalvaCommit(out);
    const std::string bytes(out.GetBytes());
    ifpstream in(bytes.data(), bytes.size(), 1400);
    table.LeggeCommit(in);
    model_.BeginAgain(t);
}

void Simulation::CommitStep(int t) {
    Table& table = *TableAt(t);
    const auto& sent = model_.TableAt(t).sent;
    if (OneIn(6)) return HoldAndBegin(t);
    if (OneIn(6)) return ReadCommit(t);
    switch (Random(6)) {
        case 0:
        case 1:
            last_ = "begin commit";
            ASSERT_EQ(table.BeginCommit(), model_.Begin(t));
            return;
        case 2: {
            last_ = "confirm added";
            const std::size_t n = sent ? sent->tickets.size() : 0;
            const auto ids = SomeIds(OneIn(10) ? n + 1 : n);
            const std::size_t before = table.named.size();
            ASSERT_EQ(table.ConfirmAdded(ids, 17), model_.ConfirmAdded(t, ids, 17));
            confirmed += static_cast<long>(table.named.size() - before);
            const auto& named = model_.TableAt(t).named;
            ASSERT_EQ(table.named.size(), named.size());
            for (std::size_t k = before; k < named.size(); ++k) {
                ASSERT_EQ(table.named[k].first, Real(named[k].first));
                ASSERT_EQ(table.named[k].second, named[k].second);
            }
            return;
        }
        case 3: {
            last_ = "confirm changed";
            auto ids = SomeIds(static_cast<std::size_t>(Random(4)));
            if (sent)
                for (const auto& [id, mask] : sent->masks)
                    if (OneIn(2)) ids.push_back(id);
            table.ConfirmChanged(ids);
            model_.ConfirmChanged(t, ids);
            return;
        }
        case 4:
            last_ = "confirm deleted";
            table.ConfirmDeleted();
            model_.ConfirmDeleted(t);
            return;
        default:
            last_ = "end commit";
            table.EndCommit();
            model_.End(t);
    }
}

void Simulation::Check(bool order) {
    CheckItems();
    for (int t = 0; t < kTables; ++t)
        if (TableAt(t)) CheckTable(t, order);
}

void Simulation::CheckItems() {
    for (int i = 0; i < world_.items; ++i) {
        const CloudModel::Item& expected = model_.At(i);
        ASSERT_EQ(At(i) != nullptr, expected.alive) << "item " << i;
        if (!At(i)) continue;
        const Item& item = *At(i);
        const CCloudTable* table =
            expected.table == CloudModel::NONE ? nullptr : TableAt(expected.table).get();
        ASSERT_EQ(item.GetTable(), table) << "item " << i;
        ASSERT_EQ(item.GetCloudId(), expected.id) << "item " << i;
        ASSERT_EQ(item.GetCloudFlag(), expected.mask) << "item " << i;
        ASSERT_EQ(item.GetTicket(), expected.ticket) << "item " << i;
        ASSERT_EQ(item.IsCloudNotify(), expected.reporting) << "item " << i;
    }
}

void Simulation::CheckTable(int t, bool order) {
    const Table& table = *TableAt(t);
    CloudModel::Table& expected = model_.TableAt(t);

    // The invariants, from the table's own answers.
    std::set<CCloudItem*> known;
    for (const auto& [id, item] : table.GetById()) {
        ASSERT_GE(id, 1);
        CCloudItem* found = nullptr;
        ASSERT_TRUE(table.FindItem(id, found));
        ASSERT_EQ(found, item);
        if (!item) {
            ASSERT_EQ(table.GetDeleted().count(id), 1u) << "a tombstone without a queued deletion";
            continue;
        }
        ASSERT_EQ(item->GetCloudId(), id);
        ASSERT_TRUE(known.insert(item).second) << "one item under two ids";
    }
    for (CCloudItem* item : table.GetChanged()) {
        ASSERT_EQ(known.count(item), 1u) << "a changed item that is not known by its id";
        ASSERT_NE(item->GetCloudFlag(), 0u);
        ++changedSeen;
    }

    // The same as the model's.
    ASSERT_EQ(table.GetById().size(), expected.byId.size());
    for (const auto& [id, item] : expected.byId) ASSERT_EQ(table.GetById().at(id), Real(item)) << id;
    ASSERT_EQ(table.GetChanged().size(), expected.changed.size());
    for (const int item : expected.changed) ASSERT_EQ(table.GetChanged().count(Real(item)), 1u);
    ASSERT_EQ(table.GetDeleted(), expected.deleted);
    tombstones += static_cast<long>(expected.deleted.size());
    ASSERT_EQ(table.IsCommitUnderWay(), expected.sent.has_value());

    if (!order) return;
    const std::vector<int> waiting = model_.Added(t);
    ASSERT_EQ(table.GetAdded().size(), waiting.size());
    for (std::size_t k = 0; k < waiting.size(); ++k) {
        ASSERT_EQ(table.GetAdded()[k], Real(waiting[k])) << "place " << k;
        ASSERT_EQ(known.count(table.GetAdded()[k]), 0u) << "added and known by id";
        ASSERT_LT(table.GetAdded()[k]->GetCloudId(), 1);
    }
}

class CloudRandom : public testing::TestWithParam<World> {};

TEST_P(CloudRandom, OperationsDoWhatTheModelDoes) {
    const World& world = GetParam();
    Simulation simulation(world);
    const long operations = Scaled(world.operations);
    for (long n = 0; n < operations; ++n) {
        simulation.Step();
        if (n % world.checkEvery == 0) simulation.Check(n % world.orderEvery == 0);
        if (HasFatalFailure()) {
            FAIL() << "operation " << n << ": " << simulation.LastOperation();
        }
    }
    EXPECT_GT(simulation.confirmed, operations / 1000);
    EXPECT_GT(simulation.tombstones, operations / 1000);
    EXPECT_GT(simulation.collisions, operations / 1000);
    EXPECT_GT(simulation.changedSeen, operations / 1000);
    EXPECT_GT(simulation.detached, 0);
    EXPECT_GT(simulation.restored, operations / 1000);
    EXPECT_GT(simulation.adopted, operations / 1000);
    EXPECT_GT(simulation.heldBack, operations / 1000);
    EXPECT_GT(simulation.reread, operations / 1000);
}

INSTANTIATE_TEST_SUITE_P(, CloudRandom,
                         testing::Values(World{"EveryStep", 30, 14, 1, 1, 1200, 1'000'000},
                                         World{"OrderSeldomAskedFor", 30, 14, 97, 1, 1200, 300'000},
                                         World{"ManyItems", 600, 1000, 3000, 150, 6000, 300'000}),
                         [](const auto& world) { return std::string(world.param.name); });

}  // namespace
