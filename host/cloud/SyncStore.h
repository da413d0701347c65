// SyncStore: where a sync server keeps its projects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/cloud/ItemFields.h"
#include "host/cloud/Value.h"

namespace gpssync {

struct StoredProject {
    std::int64_t number = 0;  // the store's own
    std::string key;
    std::string name;
    std::int64_t revision = 0;
    std::int64_t lastId = 0;  // ids up to this one were given to groups and points
};

/// Which commit did something, and from where.
struct Mark {
    std::int64_t revision = 0;  // 0: nobody did
    std::int32_t device = 0;

    bool operator==(const Mark&) const = default;
};

struct StoredItem {
    CloudKind kind = CloudKind::point;
    std::int64_t id = 0;
    std::int64_t group = 0;          // of a point
    Mark created, changed, deleted;  // changed: last, the creation included
    Values values;  // as kGroupFields or kPointFields; those of the map library mean nothing here

    bool operator==(const StoredItem&) const = default;
};

/// A datum of the map library, or the library's own with its type; shared by all groups of a project.
struct MapPart {
    Mark set;
    Values values;

    bool operator==(const MapPart&) const = default;
};

/// By which a datum is selected in the map library.
struct MapPlace {
    std::int64_t selector1 = 0, selector2 = 0, index = 0;

    auto operator<=>(const MapPlace&) const = default;
};

/// Who set a field group of an item that was changed after it was made.
struct Setter {
    std::uint32_t bit = 0;
    Mark set;

    bool operator==(const Setter&) const = default;
};

/// A value that another one has replaced.
struct HistoryEntry {
    CloudKind kind = CloudKind::point;
    std::int64_t id = 0;
    std::uint32_t bit = 0;
    std::string value;  // fields, joined by ';'
    Mark set, replaced;

    bool operator==(const HistoryEntry&) const = default;
};

struct StoredCommit {
    std::string id;
    std::int32_t device = 0;
    std::int64_t revision = 0;
    std::int64_t lastId = 0;  // of the project, with it
    std::string digest;       // of what was asked
    std::string answer;
    std::string head;               // of the revision
    std::string author;             // who used the device then
    std::int64_t base = 0;          // what it was made on
    std::vector<std::int64_t> own;  // and later revisions that its book had made
};

/// What a pull is about: newer than `revision`, not only by the revisions `own`, made up to `upTo`.
struct PullWindow {
    std::int64_t revision = 0;
    std::vector<std::int64_t> own;
    std::int64_t upTo = 0;
    std::int32_t device = 0;  // which one asks
};

struct Deletion {
    std::int64_t id = 0;
    Mark deleted;
    bool unseen = false;  // the commit that did it had not seen what the asking device made or set of it

    bool operator==(const Deletion&) const = default;
};

/// One user at a time, on one thread at a time. Everything is asked and done inside a transaction; what is
/// done is there for others, and stays, when Commit has returned. Errors: TransportError; the transaction is
/// then to be rolled back.
class SyncStore {
public:
    enum class Access : std::uint8_t {
        read,
        write,
        make  // write, and make the store when it is not there
    };

    /// Takes an item that is valid, and may be changed, while it is called.
    using TakeItem = std::function<void(StoredItem& item)>;

    virtual ~SyncStore() = default;

    /// What people call it; empty: it has no name.
    virtual std::string GetName() const { return {}; }

    /// What is read inside a transaction does not change. One that writes is the only one. Where there is no
    /// store: TransportError (notFound).
    virtual void Begin(Access access) = 0;
    virtual void Commit() = 0;
    /// Nothing of the transaction was done. Does nothing without a transaction.
    virtual void Rollback() noexcept = 0;

    // --- projects --------------------------------------------------------------------------------------

    virtual std::optional<StoredProject> FindProjectByName(const std::string& name) = 0;
    virtual std::optional<StoredProject> FindProjectByKey(const std::string& key) = 0;
    /// A new project, which has no revision yet. Requires: neither key nor name is there.
    virtual StoredProject AddProject(const std::string& key, const std::string& name) = 0;
    /// Keeps revision and last id.
    virtual void AdvanceProject(const StoredProject& project) = 0;

    // --- of a project: commits -------------------------------------------------------------------------

    virtual std::optional<StoredCommit> FindCommit(std::int64_t project, const std::string& id) = 0;
    virtual void AddCommit(std::int64_t project, const StoredCommit& commit) = 0;
    /// Head of a revision; empty: there is none.
    virtual std::string HeadOf(std::int64_t project, std::int64_t revision) = 0;
    /// Who made it; empty: it has no name, or there is no such revision.
    virtual std::string AuthorOf(std::int64_t project, std::int64_t revision) = 0;

    // --- of a project: items ---------------------------------------------------------------------------

    /// False when there never was such an item; a deleted one is found.
    virtual bool FindItem(std::int64_t project, CloudKind kind, std::int64_t id, StoredItem& item) = 0;
    virtual void AddItem(std::int64_t project, const StoredItem& item) = 0;
    /// Keeps values and the mark of the change.
    virtual void ChangeItem(std::int64_t project, const StoredItem& item) = 0;
    /// The rest of the item stays as it is.
    virtual void DeleteItem(std::int64_t project, CloudKind kind, std::int64_t id, Mark deleted) = 0;
    virtual void DeletePointsOf(std::int64_t project, std::int64_t group, Mark deleted) = 0;
    /// Gives the points of a group, in order of ids, that were changed after a revision and are not deleted.
    virtual void ChangedPointsOf(std::int64_t project, std::int64_t group, std::int64_t after,
                                 const TakeItem& take) = 0;

    /// In order of bits; without one for a field that is as it was made.
    virtual std::vector<Setter> SettersOf(std::int64_t project, CloudKind kind, std::int64_t id) = 0;
    virtual void SetSetter(std::int64_t project, CloudKind kind, std::int64_t id, const Setter& setter) = 0;

    virtual void AddHistory(std::int64_t project, const HistoryEntry& entry) = 0;
    /// Of an item, oldest first.
    virtual std::vector<HistoryEntry> HistoryOf(std::int64_t project, CloudKind kind, std::int64_t id) = 0;

    // --- of a project: its map library -----------------------------------------------------------------

    virtual std::optional<MapPart> MapDatum(std::int64_t project, MapPlace place) = 0;
    virtual void SetMapDatum(std::int64_t project, MapPlace place, const MapPart& datum) = 0;
    virtual std::optional<MapPart> MapLibrary(std::int64_t project) = 0;
    virtual void SetMapLibrary(std::int64_t project, const MapPart& library) = 0;
    /// Ids, in their order, of the groups that are not deleted: those whose conversion selects the datum at
    /// this place, or all of them when none is given.
    virtual std::vector<std::int64_t> GroupsAt(std::int64_t project,
                                               const std::optional<MapPlace>& place) = 0;

    // --- of a project: what is newer -------------------------------------------------------------------

    /// Gives at most `limit` items with an id above `after`, in order of ids, and returns how many. An item
    /// deleted after the window is still given as it was.
    virtual std::size_t Newer(std::int64_t project, CloudKind kind, const PullWindow& window,
                              std::int64_t after, std::size_t limit, const TakeItem& take) = 0;

    /// At most `limit` deletions behind `after`, in order of revisions and ids. Also of what was made after
    /// the window's revision: a pull that ended in the middle may have brought it. Points that went with
    /// their group are left out; what the device made or set of one of them counts for the group.
    virtual std::vector<Deletion> NewerDeletions(std::int64_t project, CloudKind kind,
                                                 const PullWindow& window, const Deletion& after,
                                                 std::size_t limit) = 0;
};

/// A transaction that is rolled back when it is left without Commit.
class StoreTransaction {
public:
    StoreTransaction(SyncStore& store, SyncStore::Access access) : store_(store) {
        try {
            store_.Begin(access);
        } catch (...) {
            store_.Rollback();  // it may have begun
            throw;
        }
    }
    ~StoreTransaction() { store_.Rollback(); }
    StoreTransaction(const StoreTransaction&) = delete;
    StoreTransaction& operator=(const StoreTransaction&) = delete;

    void Commit() { store_.Commit(); }

private:
    SyncStore& store_;
};

}  // namespace gpssync
