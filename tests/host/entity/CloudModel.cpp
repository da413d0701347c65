#include "tests/host/entity/CloudModel.h"

#include <algorithm>

namespace test {

CloudModel::CloudModel(int items, int tables)
    : items_(static_cast<std::size_t>(items)), tables_(static_cast<std::size_t>(tables)) {}

std::vector<int> CloudModel::Added(int table) {
    std::vector<int> order(TableAt(table).added.begin(), TableAt(table).added.end());
    std::sort(order.begin(), order.end(), [this](int a, int b) { return At(a).ticket < At(b).ticket; });
    return order;
}

bool CloudModel::IsKnown(int item) {
    const Item& it = At(item);
    if (it.table == NONE) return false;
    const auto entry = TableAt(it.table).byId.find(it.id);
    return entry != TableAt(it.table).byId.end() && entry->second == item;
}

bool CloudModel::IsHeldByOther(int item) {
    const Item& it = At(item);
    const auto entry = TableAt(it.table).byId.find(it.id);
    return entry != TableAt(it.table).byId.end() && entry->second != NONE && entry->second != item;
}

void CloudModel::EnterAdded(int item) {
    Item& it = At(item);
    if (it.ticket == 0) it.ticket = ++TableAt(it.table).tickets;
    TableAt(it.table).added.insert(item);
}

void CloudModel::LeaveById(int item) {
    if (!IsKnown(item)) return;
    Table& table = TableAt(At(item).table);
    table.byId.erase(At(item).id);
    table.changed.erase(item);
}

void CloudModel::EnterById(int item) {
    Table& table = TableAt(At(item).table);
    table.byId[At(item).id] = item;
    table.deleted.erase(At(item).id);
}

// --- items -------------------------------------------------------------------------------------------------

void CloudModel::Construct(int item, int table, bool fromCloud) {
    At(item) = Item{};
    At(item).alive = true;
    At(item).table = table;
    if (table != NONE && !fromCloud) EnterAdded(item);
}

void CloudModel::Copy(int item, int from) {
    const Item source = At(from);
    At(item) = Item{};
    At(item).alive = true;
    At(item).id = source.id;
    At(item).mask = source.mask;
    At(item).since = source.mask;  // no commit of a table that adopts it holds these bits
    At(item).reporting = source.reporting;
}

void CloudModel::Assign(int item, int from) {
    if (item == from) return;
    Item& it = At(item);
    if (it.table != NONE) LeaveById(item);
    it.id = At(from).id;
    it.mask = At(from).mask;
    it.since = At(from).mask;  // nothing of what came was in a commit of this table
    it.reporting = At(from).reporting;
    if (it.table == NONE) return;
    if (it.id < 1) {
        EnterAdded(item);
        return;
    }
    TableAt(it.table).added.erase(item);
    if (IsHeldByOther(item)) return;
    EnterById(item);
    if (it.mask != 0) TableAt(it.table).changed.insert(item);
}

void CloudModel::Destroy(int item) {
    if (At(item).table != NONE) {
        TableAt(At(item).table).added.erase(item);
        LeaveById(item);
    }
    At(item) = Item{};
}

void CloudModel::Changed(int item, std::uint32_t flag) {
    Item& it = At(item);
    if (!it.reporting) return;
    it.mask |= flag;
    it.since |= flag;
    if (IsKnown(item) && it.mask != 0) TableAt(it.table).changed.insert(item);
}

void CloudModel::SetNotify(int item, bool on) {
    At(item).reporting = on;
    if (on && At(item).table != NONE && At(item).id < 1) EnterAdded(item);
}

void CloudModel::SetId(int item, long long id) {
    Item& it = At(item);
    if (it.table != NONE) LeaveById(item);
    if (id >= 1) {
        it.id = id;
        if (it.table != NONE) TableAt(it.table).added.erase(item);
        return;
    }
    it.id = 0;
    it.mask = it.since = 0;
    if (it.table != NONE) EnterAdded(item);
}

void CloudModel::Read(int item, long long id, std::uint32_t mask, std::uint32_t since, long long ticket) {
    Item& it = At(item);
    if (it.table != NONE) {
        LeaveById(item);
        TableAt(it.table).added.erase(item);
    }
    it.id = id < 1 ? 0 : id;
    it.mask = mask;
    it.since = since;
    const bool dropped = it.table != NONE && it.id > 0 && IsHeldByOther(item);
    if (dropped) {
        it.id = 0;
        it.mask = it.since = 0;
    } else if (ticket > 0 || it.id > 0) {
        it.ticket = ticket;
    }
    if (it.table == NONE) return;
    Table& table = TableAt(it.table);
    table.tickets = std::max(table.tickets, it.ticket);
    if (it.id == 0) {
        EnterAdded(item);
        return;
    }
    EnterById(item);
    if (it.mask != 0) table.changed.insert(item);
}

bool CloudModel::IsTicketFree(int item, long long ticket) {
    return IsTicketFreeIn(At(item).table, item, ticket);
}

bool CloudModel::IsTicketFreeIn(int table, int item, long long ticket) {
    // Items that are known by their id may come back among the added ones: their tickets count, too.
    for (std::size_t other = 0; other < items_.size(); ++other)
        if (static_cast<int>(other) != item && items_[other].alive && items_[other].table == table &&
            items_[other].ticket == ticket)
            return false;
    return true;
}

void CloudModel::Adopt(int table, int item) {
    Item& it = At(item);
    if (it.table != NONE) return;
    it.table = table;
    TableAt(table).tickets = std::max(TableAt(table).tickets, it.ticket);
    if (it.id >= 1 && !IsHeldByOther(item)) {
        EnterById(item);
        if (it.mask != 0) TableAt(table).changed.insert(item);
        return;
    }
    it.id = 0;
    it.mask = it.since = 0;
    EnterAdded(item);
}

// --- tables ------------------------------------------------------------------------------------------------

void CloudModel::MakeTable(int table) {
    TableAt(table) = Table{};
    TableAt(table).alive = true;
}

void CloudModel::DestroyTable(int table) {
    TableAt(table) = Table{};
    for (Item& item : items_)
        if (item.table == table) item.table = NONE;
}

bool CloudModel::AddToTable(int table, int item) {
    Item& it = At(item);
    if (it.table != table || it.id < 1 || IsHeldByOther(item)) return false;
    TableAt(table).added.erase(item);
    TableAt(table).changed.erase(item);
    EnterById(item);
    it.mask = it.since = 0;
    return true;
}

int CloudModel::DelFromTable(int table, long long id) {
    Table& t = TableAt(table);
    const auto entry = t.byId.find(id);
    if (entry == t.byId.end()) return NONE;
    const int item = entry->second;
    t.byId.erase(entry);
    if (item == NONE) t.deleted.erase(id);
    t.changed.erase(item);
    return item;
}

void CloudModel::DeletedLocally(int table, int item) {
    if (At(item).table != table || At(item).id < 1 || IsHeldByOther(item)) return;
    TableAt(table).changed.erase(item);
    TableAt(table).byId[At(item).id] = NONE;
    TableAt(table).deleted.insert(At(item).id);
}

long long CloudModel::ParentId(int parent, int table, int counter) {
    if (parent == NONE) return 0;
    if (At(parent).id >= 1) return At(parent).id;
    if (table == NONE || At(parent).table != table || TableAt(table).added.count(parent) == 0) return 0;
    const std::vector<int> order = Added(table);
    const auto place = std::find(order.begin(), order.end(), parent) - order.begin();
    const auto before = counter - static_cast<long long>(order.size());  // records of other tables
    return -(before + place + 1);
}

// --- commits -----------------------------------------------------------------------------------------------

bool CloudModel::Begin(int table, const std::set<int>& held) {
    Table& t = TableAt(table);
    if (t.sent) return false;
    t.sent.emplace();
    for (const int item : Added(table)) {
        if (held.count(item) == 1) continue;
        t.sent->tickets.push_back(At(item).ticket);
        At(item).since = 0;
    }
    for (const int item : t.changed) {
        if (held.count(item) == 1) continue;
        t.sent->masks[At(item).id] = At(item).mask;
        At(item).since = 0;
    }
    t.sent->deleted = t.deleted;
    return true;
}

void CloudModel::BeginAgain(int table) {
    Table& t = TableAt(table);
    if (!t.sent) return;
    for (const int item : t.added)
        for (const long long ticket : t.sent->tickets)
            if (At(item).ticket == ticket) At(item).since = 0;
    for (const auto& [id, mask] : t.sent->masks) {
        const auto known = t.byId.find(id);
        if (known != t.byId.end() && known->second != NONE) At(known->second).since = 0;
    }
}

int CloudModel::ByTicket(int table, long long ticket) {
    for (const int item : TableAt(table).added)
        if (At(item).ticket == ticket) return item;
    return NONE;
}

bool CloudModel::ConfirmAdded(int table, const std::vector<long long>& ids, int devId) {
    Table& t = TableAt(table);
    if (!t.sent || t.sent->tickets.size() != ids.size()) return false;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const long long id = ids[i];
        if (id < 1) continue;
        const int item = ByTicket(table, t.sent->tickets[i]);
        const bool known = t.byId.count(id) == 1;
        if (item == NONE) {
            if (known) continue;
            t.byId[id] = NONE;
            t.deleted.insert(id);
            continue;
        }
        if (known && t.byId[id] != NONE) continue;  // another item's
        At(item).id = id;
        t.added.erase(item);
        EnterById(item);
        t.named.emplace_back(item, devId);
        At(item).mask = At(item).since;
        if (At(item).mask != 0) t.changed.insert(item);
    }
    return true;
}

void CloudModel::ConfirmChanged(int table, const std::vector<long long>& ids) {
    Table& t = TableAt(table);
    if (!t.sent) return;
    for (const long long id : ids) {
        if (t.sent->masks.count(id) == 0 || t.byId.count(id) == 0 || t.byId[id] == NONE) continue;
        Item& item = At(t.byId[id]);
        const std::uint32_t confirmed = t.sent->masks[id] & ~item.since;
        item.mask &= ~confirmed;
        if (item.mask == 0) t.changed.erase(t.byId[id]);
    }
}

void CloudModel::ConfirmDeleted(int table) {
    Table& t = TableAt(table);
    if (!t.sent) return;
    for (const long long id : t.sent->deleted)
        if (t.deleted.erase(id) == 1) t.byId.erase(id);
}

void CloudModel::End(int table) { TableAt(table).sent.reset(); }

}  // namespace test
