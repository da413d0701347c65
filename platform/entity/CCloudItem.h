// CCloudItem: the part of an object that takes part in the cloud project.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/base/PlatformExport.h"
#include "platform/base/streams.h"

class CCloudTable;

/// Known to a server under an id, with a mask of the fields that changed here and that the server has not
/// confirmed. An item may belong to a table (CCloudTable), which collects what is to be sent.
///
/// State: table (may be null), id (0: none; server ids are 1 or more), mask, the bits set since the last
/// commit began, a ticket and a switch for reporting.
/// Tickets are numbers of the table's own. An item draws one when it becomes an added item for the first time
/// and keeps it for good: it is how an add record finds back to its item, even in another session.
///
/// What always holds: no item is both added and known by id; changed items are known by id, and their masks
/// say what changed; destroyed items are nowhere.
///
/// The order of the virtual operations is part of the contract.
class GPS_PLATFORM_API CCloudItem {
public:
    /// With a table and not `fromCloud`: the item enters the table's added items at once.
    /// `table` may be null: the item works and remembers its mask, but nobody is told.
    CCloudItem(CCloudTable* table, bool fromCloud);

    /// A detached value: id, mask and switch are copied; no table, no ticket.
    CCloudItem(const CCloudItem& other);

    /// Takes over id, mask and switch and keeps table and ticket. With a table: id >= 1 leaves the added
    /// items and enters the items by id when that id is free or a tombstone (whose deletion is then dropped);
    /// id 0 enters the added items. An id that another item holds is not taken over in the table.
    CCloudItem& operator=(const CCloudItem& other);

    /// Device that created the item in the cloud; -1 when unknown.
    virtual int GetCloudCreatorDevId() const;

    /// Called by a coordinate conversion that belongs to this item after a real change.
    virtual void ConvCoordChanged();

    long long GetCloudId() const { return id_; }

    /// Mask of the fields changed here since the server's last confirmation.
    std::uint32_t GetCloudFlag() const { return mask_; }

    bool IsCloudMine(int devId) const { return GetCloudCreatorDevId() == devId; }
    bool IsCloudNotify() const { return reporting_; }
    long long GetTicket() const { return ticket_; }
    CCloudTable* GetTable() const;

    /// Reports changed fields. With reporting off nothing is remembered. Else the bits enter the mask and an
    /// item that its table holds by id becomes a changed one.
    void CloudItemChanged(std::uint32_t flag) {
        if (observer_) [[unlikely]]
            TellObserver(flag);
        // Bits that stand in both words already: the item is where it belongs, and there is nothing to do.
        if ((mask_ & since_ & flag) == flag || !reporting_) return;
        mask_ |= flag;
        since_ |= flag;
        if (byId_ && !changed_) EnterChanged();  // never fails: setters do not
    }

    /// Switches reporting. Turning it on puts an item with a table, without id and not yet among the added
    /// ones there ("mark it for the cloud"). One switch, not nested.
    void SetCloudNotify(bool on);

    /// n >= 1: the item takes the id and leaves the added items; the table knows it by id only after
    /// AddItemToTable, so that a server's values stored in between are not taken for local changes.
    /// n < 1: id and mask become 0 and the item enters the added items, if it has a table.
    void SetCloudId(long long n);

    /// Tables count tickets from 1: a higher one comes from a damaged file, and counting on from it would
    /// overflow.
    static constexpr long long TICKET_MAX = 1LL << 62;

    /// The item's record in a project stream: id, mask, bits since the last commit, ticket; 24 bytes in every
    /// version. With `asCopy` all of them are 0: what goes into an exchange file is not the same cloud item.
    void SalvaInFile(ofpstream& out, short version, bool asCopy) const;

    /// Reads such a record, as an assignment does: an item with an id leaves the added items and is known by
    /// it, and changed as its mask says; without an id it is an added one. A ticket above 0 is restored, and
    /// the table draws none up to it any more; an item with an id has none when its record has none. An id
    /// that another item of the table holds is dropped, with mask and ticket: the item is then an added one.
    void LeggeDaFile(ifpstream& in, short version);

    /// For tests and tools of the open host: told of every CloudItemChanged at entry, before the switch is
    /// looked at. An empty function ends it.
    using Observer = std::function<void(const CCloudItem& item, std::uint32_t flag)>;
    static void SetObserver(Observer observer);

protected:
    /// Leaves every collection and queues nothing: closing a book deletes nothing on the server.
    /// Not virtual: objects are destroyed as what they are.
    ~CCloudItem();

private:
    friend class CCloudTable;
    struct TableLink;  // outlives the table, so that an item never holds a dangling table

    void TellObserver(std::uint32_t flag) const;
    void EnterChanged() noexcept;

    static const Observer* observer_;

    TableLink* link_ = nullptr;
    long long id_ = 0;
    long long ticket_ = 0;
    std::uint32_t mask_ = 0;
    std::uint32_t since_ = 0;
    std::int32_t addedSlot_ = -1;  // place among the table's added items, -1: not there
    bool reporting_ = true;
    bool byId_ = false;     // the table's entry of this id is this item
    bool changed_ = false;  // among the table's changed items
};
