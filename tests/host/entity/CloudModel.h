// CloudModel: what items and tables should do, written as plainly as possible.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace test {

/// Items and tables are numbers; every question is answered by looking everything through. Shares no code and
/// no structure with what it is compared with.
class CloudModel {
public:
    static constexpr int NONE = -1;

    struct Item {
        bool alive = false;
        int table = NONE;
        long long id = 0;
        std::uint32_t mask = 0;
        std::uint32_t since = 0;  // bits set since the last commit began
        long long ticket = 0;     // 0: never among the added items
        bool reporting = true;
    };

    struct Commit {
        std::vector<long long> tickets;
        std::map<long long, std::uint32_t> masks;
        std::set<long long> deleted;
    };

    struct Table {
        bool alive = false;
        std::set<int> added;
        std::set<int> changed;
        std::map<long long, int> byId;  // NONE: a tombstone
        std::set<long long> deleted;
        std::optional<Commit> sent;
        long long tickets = 0;
        std::vector<std::pair<int, int>> named;  // item, device
    };

    CloudModel(int items, int tables);

    Item& At(int item) { return items_[static_cast<std::size_t>(item)]; }
    Table& TableAt(int table) { return tables_[static_cast<std::size_t>(table)]; }

    /// The added items of a table by ticket, which is the order of their creation.
    std::vector<int> Added(int table);

    // --- items -----------------------------------------------------------------------------------------

    void Construct(int item, int table, bool fromCloud);
    void Copy(int item, int from);
    void Assign(int item, int from);
    void Destroy(int item);
    void Changed(int item, std::uint32_t flag);
    void SetNotify(int item, bool on);
    void SetId(int item, long long id);

    /// Reads a record. Requires: no other added item of the table has this ticket.
    void Read(int item, long long id, std::uint32_t mask, std::uint32_t since, long long ticket);
    bool IsTicketFree(int item, long long ticket);

    /// Requires: no other item of the table has the item's ticket.
    void Adopt(int table, int item);
    bool IsTicketFreeIn(int table, int item, long long ticket);

    // --- tables ----------------------------------------------------------------------------------------

    void MakeTable(int table);
    void DestroyTable(int table);
    bool AddToTable(int table, int item);
    int DelFromTable(int table, long long id);
    void DeletedLocally(int table, int item);
    long long ParentId(int parent, int table, int counter);

    /// `held`: items that are kept out of it.
    bool Begin(int table, const std::set<int>& held = {});
    /// The commit under way is read from a journal, just as it is.
    void BeginAgain(int table);
    bool ConfirmAdded(int table, const std::vector<long long>& ids, int devId);
    void ConfirmChanged(int table, const std::vector<long long>& ids);
    void ConfirmDeleted(int table);
    void End(int table);

private:
    bool IsKnown(int item);        // the entry of its id is this item
    bool IsHeldByOther(int item);  // the entry of its id is another item
    void EnterAdded(int item);
    void LeaveById(int item);
    void EnterById(int item);
    int ByTicket(int table, long long ticket);

    std::vector<Item> items_;
    std::vector<Table> tables_;
};

}  // namespace test
