#include "platform/entity/CCloudItem.h"

#include <memory>
#include <utility>

#include "host/entity/CloudLink.h"
#include "platform/base/BlockWriter.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/entity/CCloudTable.h"

const CCloudItem::Observer* CCloudItem::observer_ = nullptr;

CCloudItem::CCloudItem(CCloudTable* table, bool fromCloud) {
    if (!table) return;
    if (!fromCloud) table->EnterAdded(*this);  // may throw: before anything is shared
    link_ = TableLink::Share(table->link_);
}

CCloudItem::CCloudItem(const CCloudItem& other)
    : id_(other.id_), mask_(other.mask_), since_(other.mask_), reporting_(other.reporting_) {}

CCloudItem& CCloudItem::operator=(const CCloudItem& other) {
    if (this == &other) return *this;
    CCloudTable* table = GetTable();
    if (table) table->LeaveById(*this);
    id_ = other.id_;
    mask_ = other.mask_;
    since_ = other.mask_;  // no commit under way holds these bits
    reporting_ = other.reporting_;
    if (!table) return *this;
    if (id_ < 1) {
        table->EnterAdded(*this);
        return *this;
    }
    table->LeaveAdded(*this);
    if (table->HoldsOther(*this)) return *this;
    table->EnterById(*this);
    if (mask_ != 0) table->EnterChanged(*this);
    return *this;
}

CCloudItem::~CCloudItem() {
    if (CCloudTable* table = GetTable()) {
        table->LeaveAdded(*this);
        table->LeaveById(*this);
    }
    TableLink::Leave(link_);
}

int CCloudItem::GetCloudCreatorDevId() const { return -1; }

void CCloudItem::ConvCoordChanged() {}

CCloudTable* CCloudItem::GetTable() const { return link_ ? link_->table : nullptr; }

void CCloudItem::SetCloudNotify(bool on) {
    reporting_ = on;
    CCloudTable* table = GetTable();
    if (on && table && id_ < 1) table->EnterAdded(*this);
}

void CCloudItem::SetCloudId(long long n) {
    CCloudTable* table = GetTable();
    if (table) table->LeaveById(*this);
    if (n >= 1) {
        if (table) table->LeaveAdded(*this);
        id_ = n;
        return;
    }
    id_ = 0;
    mask_ = 0;
    since_ = 0;
    if (table) table->EnterAdded(*this);
}

void CCloudItem::SalvaInFile(ofpstream& out, short, bool asCopy) const {
    BlockWriter fields(out, 24);
    fields.WriteInt64(asCopy ? 0 : id_);
    fields.WriteUInt(asCopy ? 0 : mask_);
    fields.WriteUInt(asCopy ? 0 : since_);
    fields.WriteInt64(asCopy ? 0 : ticket_);
}

void CCloudItem::LeggeDaFile(ifpstream& in, short) {
    const long long id = in.ReadInt64();
    const std::uint32_t mask = in.ReadUInt();
    const std::uint32_t since = in.ReadUInt();
    const long long ticket = in.ReadInt64();

    CCloudTable* table = GetTable();
    if (table) {
        table->LeaveById(*this);
        // Added items stand in order of their tickets: the item leaves with the old one.
        table->LeaveAdded(*this);
    }
    id_ = id < 1 ? 0 : id;
    mask_ = mask;
    since_ = since;
    // The ticket belongs to the item with the id: who does not get the one keeps its own of the other, too.
    const bool dropped = table && id_ > 0 && table->HoldsOther(*this);
    if (dropped) {
        id_ = 0;
        mask_ = 0;
        since_ = 0;
    } else if (ticket > 0 && ticket <= TICKET_MAX) {
        ticket_ = ticket;
    } else if (id_ > 0) {
        ticket_ = 0;  // it came from the server: what it drew while it was made is nobody's
    }
    if (!table) return;
    table->TicketUsed(ticket_);
    if (id_ == 0) {
        table->EnterAdded(*this);
        return;
    }
    table->EnterById(*this);
    if (mask_ != 0) table->EnterChanged(*this);
}

void CCloudItem::EnterChanged() noexcept {
    if (CCloudTable* table = GetTable()) table->EnterChanged(*this);
}

void CCloudItem::TellObserver(std::uint32_t flag) const { (*observer_)(*this, flag); }

void CCloudItem::SetObserver(Observer observer) {
    static Observer kept;
    kept = std::move(observer);
    observer_ = kept ? &kept : nullptr;
}
