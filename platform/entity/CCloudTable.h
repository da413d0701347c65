// CCloudTable: what a cloud project has to send of one kind of items, and what it knows by id.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <unordered_map>
#include <vector>

#include "platform/base/vexString.h"
#include "platform/entity/CCloudItem.h"

class CLibGen;

/// Three collections of items: added here and not confirmed (in order of creation), changed here and not
/// confirmed (by identity, in no order that means anything), and all those with an id. An id whose item was
/// deleted here stays as a tombstone (null) until the server confirms, so that a late reply does not bring
/// the item back.
///
/// One commit at a time is under way between BeginCommit and EndCommit: what it holds is remembered with
/// the masks of that moment, so that fields edited meanwhile stay marked.
///
/// Base of the tables of each kind, which override the virtual operations; the order of these is part of the
/// contract. Not destroyed through this class.
class GPS_PLATFORM_API CCloudTable {
public:
    enum enumTable { tabGpsBase = 3, tabGpsPnt = 4 };

    /// What a real value in a record is; all three are written alike, without any conversion of units.
    enum enumDoubleFormat {
        fmtLineare = 0,  // metres, and coefficients in their own units
        fmtAngolo = 1,   // degrees
        fmtFattore = 2   // scale (dimensionless), angle of rotation (degrees)
    };

    explicit CCloudTable(enumTable kind);

    /// A snapshot of the collections; the items keep pointing at the original, which alone detaches them.
    /// A copy must not outlive the items. Assigning to a table first detaches the items it had.
    CCloudTable(const CCloudTable& other);
    CCloudTable& operator=(const CCloudTable& other);

    /// The server has named the device that created the item. Default: nothing.
    virtual void SetCloudCreatorDevId(CCloudItem* item, int devId);
    /// Replaces `records` by those of the changed items. Default: no records.
    virtual void GenerateCommitString_Change(vex::String& records);
    /// Replaces `records` by those of the added items and adds their number. Default: no records.
    virtual void GenerateCommitString_Add(int& counter, vex::String& records);
    /// Applies a reply of the server: deletion, edit. False: refused. Default: refused.
    virtual bool UpdateSuccessful_Del(const std::vector<vex::String>& reply);
    virtual bool UpdateSuccessful_Edit(const std::vector<vex::String>& reply);
    /// Fills gaps of the local item of the same id; returns it or null. Default: null.
    virtual CCloudItem* Merge(CCloudItem* item);

    enumTable GetKind() const { return kind_; }

    /// The library whose items these are, or null. Set by the host after it made the library, and to null
    /// before that goes.
    void SetOwner(CLibGen* owner) { owner_ = owner; }
    CLibGen* GetOwner() const { return owner_; }

    // --- by id ---------------------------------------------------------------------------------------

    /// True when the id is known. `item` is then its item, or null for a tombstone; else unchanged.
    bool FindItem(long long id, CCloudItem*& item) const {
        const auto found = byId_.find(id);
        if (found == byId_.end()) return false;
        item = found->second;
        return true;
    }

    /// The item is in step with the server: it leaves the added items, is known by its id, its mask is 0.
    /// Requires: an item of this table with an id of 1 or more. A tombstone of that id gives way, with its
    /// queued deletion. Returns false, changing nothing, when the item is not of this table, has no id, or
    /// another item holds it.
    bool AddItemToTable(CCloudItem* item);

    /// Removes what is known under the id and returns the item, which stays alive and keeps its id. No
    /// deletion is queued. For a tombstone the queued deletion is dropped and null returned.
    CCloudItem* DelItemFromTable(long long id);

    /// The user, or a replay of what the user did, is about to delete the item; for a group, each of its
    /// points has to be announced as well. With an id it becomes a tombstone, and its deletion will be sent.
    /// Destruction alone announces nothing.
    void ItemDeletedLocally(CCloudItem* item);

    /// The parent as an add record refers to it: by its id; a parent that is added in the same commit by -k
    /// when its own record is the k-th of the commit, counted from 1; any other by 0. `counter` is the number
    /// of add records so far, those of the parent's table being the last of them.
    static long long CalcParentId(const CCloudItem* parent, CCloudTable* parentTable, int counter);

    // --- records ---------------------------------------------------------------------------------------

    /// Room that one real value needs in a line, with the ";" in front of it.
    static constexpr int MAX_DOUBLE_TEXT = 32;

    /// Appends ";" and a real value to a line that ends with a zero byte, and ends it again; returns the new
    /// end. `line` may be the line, or its end: then nothing is searched. "NULLVAL" for a value that is not
    /// valid (IsCoordValid), else the shortest decimal that reads back as the same value; no locale is asked.
    static char* ConcatDoubleValue(char* line, double value, enumDoubleFormat format);

    /// Replaces `records` by those of the items that were deleted here, in order of ids: "DEL", the table's
    /// kind and the id, joined by ";"; "\r\n" between two. They are the same for every kind of items.
    void GenerateCommitString_Del(vex::String& records) const;

    /// Takes items out of what is to be sent, until ReleaseHeld: those that a record cannot carry. They must
    /// not be destroyed meanwhile. Items that are not to be sent, or of another table, are passed over.
    void HoldBack(const std::vector<CCloudItem*>& items);
    void ReleaseHeld();

    // --- one commit ----------------------------------------------------------------------------------

    /// Remembers what a commit sends: added items, changed ones with their masks, deletions.
    /// False, changing nothing, while another commit is under way.
    bool BeginCommit();
    bool IsCommitUnderWay() const { return sent_ != nullptr; }

    /// Requires: the items of the commit are still there, or were deleted by the user meanwhile; with the
    /// book closed, a table takes no confirmations. Ids of the added records in the order in which they were
    /// sent. An id below 1: refused, the item stays added. A record whose item is gone: the id becomes a
    /// tombstone and its deletion is queued. Else the item is known by its id and keeps only the bits set
    /// since the commit began. An id that another item holds is not given away: the item stays added.
    /// `devId`: this device, which has created what it added (SetCloudCreatorDevId). A second call with the
    /// same ids changes nothing. Returns false, changing nothing, when the number of ids is not the number of
    /// records or no commit is under way.
    bool ConfirmAdded(const std::vector<long long>& ids, int devId);

    /// Clears, in each accepted record, the bits that were sent and not set again since.
    void ConfirmChanged(const std::vector<long long>& accepted);

    /// The deletions sent are done: they leave the queue, and their tombstones go.
    void ConfirmDeleted();

    /// The commit is answered and done with.
    void EndCommit();

    /// What the commit under way holds: added items (by ticket), changed and deleted ones.
    std::size_t GetSentAdded() const;
    std::size_t GetSentChanged() const;
    std::size_t GetSentDeleted() const;

    // --- state that is kept between sessions ---------------------------------------------------------

    /// The items' own records hold their state; these hold what belongs to the table: the last ticket, the
    /// deletions to be sent, the commit under way. Read before the items, into an empty table: an item that
    /// is read later takes the place of a tombstone of its id, and finds its ticket not used.
    void SalvaStato(ofpstream& out) const;
    void LeggeStato(ifpstream& in);

    /// The commit under way alone, or none. Reading it begins that commit as BeginCommit did: what its items
    /// that are here changed before is since then part of it.
    void SalvaCommit(ofpstream& out) const;
    void LeggeCommit(ifpstream& in);

    /// An item that was made without a table becomes one of this table, as if it had been made with it: by
    /// its id, or among the added ones. Nothing for an item that has a table.
    void Adopt(CCloudItem& item);

    /// Has the waiting items written into the journal, and those handed in before them.
    void StoreTmpItems(const std::vector<CCloudItem*>& more, const std::set<CCloudItem*>& others) {
        SaveTmpItems(more, others);
    }

    // --- what is waiting (read only) -----------------------------------------------------------------

    /// Items without confirmation, in order of creation.
    const std::vector<CCloudItem*>& GetAdded() const;
    const std::set<CCloudItem*>& GetChanged() const;
    const std::set<long long>& GetDeleted() const { return deleted_; }
    const std::unordered_map<long long, CCloudItem*>& GetById() const { return byId_; }

protected:
    /// Detaches every item that belongs to this table: it goes on without one.
    ~CCloudTable();

    /// Writes waiting items into the journal; called by the cloud layer. Default: nothing.
    virtual void SaveTmpItems(const std::vector<CCloudItem*>& more, const std::set<CCloudItem*>& others);

private:
    friend class CCloudItem;
    struct Commit;

    void EnterAdded(CCloudItem& item);
    void LeaveAdded(CCloudItem& item);
    void EnterById(CCloudItem& item);
    void LeaveById(CCloudItem& item);
    void EnterChanged(CCloudItem& item) noexcept;
    void LeaveChanged(CCloudItem& item);
    void TicketUsed(long long ticket);
    bool Owns(const CCloudItem* item) const;
    bool HoldsOther(const CCloudItem& item) const;
    void TidyAdded() const;
    void ConfirmOneAdded(CCloudItem* item, long long id, int devId);
    void DetachItems();

    enumTable kind_;
    CLibGen* owner_ = nullptr;
    CCloudItem::TableLink* link_;
    mutable long long lastTicket_ = 0;

    // Slots of items that left in the middle are null and counted until someone looks at the list: leaving
    // costs the same wherever the item stands.
    mutable std::vector<CCloudItem*> added_;
    mutable std::size_t addedGaps_ = 0;
    mutable bool addedSorted_ = true;

    mutable std::set<CCloudItem*> changed_;
    mutable bool changedLost_ = false;  // memory ended: some changed items are not in the set yet
    std::unordered_map<long long, CCloudItem*> byId_;
    std::set<long long> deleted_;
    std::unique_ptr<Commit> sent_;
    std::vector<CCloudItem*> heldAdded_, heldChanged_;
};
