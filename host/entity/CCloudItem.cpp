#include "platform/entity/CCloudItem.h"

#include <memory>
#include <utility>

#include "host/entity/CloudLink.h"
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

void CCloudItem::EnterChanged() noexcept {
    if (CCloudTable* table = GetTable()) table->EnterChanged(*this);
}

void CCloudItem::TellObserver(std::uint32_t flag) const { (*observer_)(*this, flag); }

void CCloudItem::SetObserver(Observer observer) {
    static Observer kept;
    kept = std::move(observer);
    observer_ = kept ? &kept : nullptr;
}
