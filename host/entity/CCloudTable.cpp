#include "platform/entity/CCloudTable.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <map>
#include <new>

#include "host/entity/CloudLink.h"
#include "platform/base/GpsValues.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

struct CCloudTable::Commit {
    std::vector<long long> tickets;            // of the added records, in emitted order
    std::map<long long, std::uint32_t> masks;  // of the changed records, by id
    std::set<long long> deleted;
};

CCloudTable::CCloudTable(enumTable kind) : kind_(kind), link_(new CCloudItem::TableLink{this}) {}

// A snapshot has a link of its own that no item shares: every operation that would change an item asks Owns.
CCloudTable::CCloudTable(const CCloudTable& other)
    : kind_(other.kind_),
      owner_(other.owner_),
      link_(new CCloudItem::TableLink{this}),
      lastTicket_(other.lastTicket_),
      added_(other.GetAdded()),
      changed_(other.GetChanged()),
      byId_(other.byId_),
      deleted_(other.deleted_),
      sent_(other.sent_ ? std::make_unique<Commit>(*other.sent_) : nullptr) {}

CCloudTable& CCloudTable::operator=(const CCloudTable& other) {
    if (this == &other) return *this;
    DetachItems();
    CCloudItem::TableLink* link = new CCloudItem::TableLink{this};
    CCloudItem::TableLink::Leave(link_);
    link_ = link;
    kind_ = other.kind_;
    owner_ = other.owner_;
    lastTicket_ = other.lastTicket_;
    added_ = other.GetAdded();
    addedGaps_ = 0;
    addedSorted_ = true;
    changed_ = other.GetChanged();
    byId_ = other.byId_;
    deleted_ = other.deleted_;
    sent_ = other.sent_ ? std::make_unique<Commit>(*other.sent_) : nullptr;
    changedLost_ = false;
    heldAdded_.clear();
    heldChanged_.clear();
    return *this;
}

CCloudTable::~CCloudTable() {
    DetachItems();
    CCloudItem::TableLink::Leave(link_);
}

void CCloudTable::DetachItems() {
    link_->table = nullptr;
    if (link_->users == 1) return;  // nobody but this table: a snapshot, whose items may be gone
    const auto detach = [this](CCloudItem* item) {
        if (!item || item->link_ != link_) return;
        item->addedSlot_ = -1;
        item->byId_ = false;
        item->changed_ = false;
    };
    for (CCloudItem* item : added_) detach(item);
    for (const auto& [id, item] : byId_) detach(item);
}

void CCloudTable::SetCloudCreatorDevId(CCloudItem*, int) {}
void CCloudTable::GenerateCommitString_Change(vex::String& records) { records.Empty(); }
void CCloudTable::GenerateCommitString_Add(int&, vex::String& records) { records.Empty(); }
bool CCloudTable::UpdateSuccessful_Del(const std::vector<vex::String>&) { return false; }
bool CCloudTable::UpdateSuccessful_Edit(const std::vector<vex::String>&) { return false; }
CCloudItem* CCloudTable::Merge(CCloudItem*) { return nullptr; }
void CCloudTable::SaveTmpItems(const std::vector<CCloudItem*>&, const std::set<CCloudItem*>&) {}

// --- by id ---------------------------------------------------------------------------------------------

bool CCloudTable::AddItemToTable(CCloudItem* item) {
    if (!Owns(item) || item->id_ < 1 || HoldsOther(*item)) return false;
    EnterById(*item);
    LeaveAdded(*item);
    LeaveChanged(*item);
    item->mask_ = 0;
    item->since_ = 0;
    return true;
}

CCloudItem* CCloudTable::DelItemFromTable(long long id) {
    const auto found = byId_.find(id);
    if (found == byId_.end()) return nullptr;
    CCloudItem* item = found->second;
    if (item && !Owns(item)) return nullptr;
    if (item) {
        LeaveById(*item);
    } else {
        byId_.erase(found);
        deleted_.erase(id);
    }
    return item;
}

void CCloudTable::ItemDeletedLocally(CCloudItem* item) {
    if (!Owns(item) || item->id_ < 1 || HoldsOther(*item)) return;
    deleted_.insert(item->id_);
    if (item->byId_)
        byId_.find(item->id_)->second = nullptr;
    else
        byId_.emplace(item->id_, nullptr);
    item->byId_ = false;
    LeaveChanged(*item);
}

long long CCloudTable::CalcParentId(const CCloudItem* parent, CCloudTable* parentTable, int counter) {
    if (!parent) return 0;
    if (parent->id_ >= 1) return parent->id_;
    if (!parentTable || parent->GetTable() != parentTable || parent->addedSlot_ < 0) return 0;
    const auto n = static_cast<long long>(parentTable->GetAdded().size());  // puts the slots in order
    return -(counter - n + parent->addedSlot_ + 1);
}

// --- records -----------------------------------------------------------------------------------------------

char* CCloudTable::ConcatDoubleValue(char* line, double value, enumDoubleFormat) {
    char* at = *line == '\0' ? line : line + std::strlen(line);
    *at++ = ';';
    if (IsCoordValid(value)) {
        at = std::to_chars(at, at + MAX_DOUBLE_TEXT, value).ptr;
    } else {
        std::memcpy(at, "NULLVAL", 7);
        at += 7;
    }
    *at = '\0';
    return at;
}

void CCloudTable::GenerateCommitString_Del(vex::String& records) const {
    records.Empty();
    const auto append = [&records](long long number) {
        char digits[24];
        const char* end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        records += std::string_view(digits, static_cast<std::size_t>(end - digits));
    };
    for (const long long id : deleted_) {
        records += records.IsEmpty() ? "DEL;" : "\r\nDEL;";
        append(kind_);
        records += ";";
        append(id);
    }
}

void CCloudTable::HoldBack(const std::vector<CCloudItem*>& items) {
    heldAdded_.reserve(heldAdded_.size() + items.size());
    heldChanged_.reserve(heldChanged_.size() + items.size());
    GetChanged();
    for (CCloudItem* item : items) {
        if (!Owns(item)) continue;
        if (item->addedSlot_ >= 0) {
            LeaveAdded(*item);
            heldAdded_.push_back(item);
        } else if (item->changed_) {
            LeaveChanged(*item);
            heldChanged_.push_back(item);
        }
    }
}

void CCloudTable::ReleaseHeld() {
    for (CCloudItem* item : heldAdded_) EnterAdded(*item);
    for (CCloudItem* item : heldChanged_) EnterChanged(*item);
    heldAdded_.clear();
    heldChanged_.clear();
}

// --- one commit ------------------------------------------------------------------------------------------

bool CCloudTable::BeginCommit() {
    if (sent_) return false;
    auto commit = std::make_unique<Commit>();
    commit->tickets.reserve(GetAdded().size());
    for (const CCloudItem* item : GetAdded()) commit->tickets.push_back(item->ticket_);
    for (const CCloudItem* item : GetChanged()) commit->masks.emplace(item->id_, item->mask_);
    commit->deleted = deleted_;
    for (CCloudItem* item : added_)
        if (Owns(item)) item->since_ = 0;
    for (CCloudItem* item : changed_)
        if (Owns(item)) item->since_ = 0;
    sent_ = std::move(commit);
    return true;
}

bool CCloudTable::ConfirmAdded(const std::vector<long long>& ids, int devId) {
    if (!sent_ || ids.size() != sent_->tickets.size()) return false;
    // Both lists are in order of tickets: one pass pairs them. A copy, because confirmed items leave.
    const std::vector<CCloudItem*> waiting = GetAdded();
    auto next = waiting.begin();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const long long ticket = sent_->tickets[i];
        while (next != waiting.end() && (*next)->ticket_ < ticket) ++next;
        CCloudItem* item = next != waiting.end() && (*next)->ticket_ == ticket ? *next : nullptr;
        ConfirmOneAdded(item, ids[i], devId);
    }
    return true;
}

void CCloudTable::ConfirmOneAdded(CCloudItem* item, long long id, int devId) {
    if (id < 1) return;  // refused: it stays among the added items
    const auto known = byId_.find(id);
    if (!item) {
        if (known != byId_.end()) return;  // confirmed before
        deleted_.insert(id);               // deleted here while the commit was under way
        byId_.emplace(id, nullptr);
        return;
    }
    if (!Owns(item) || (known != byId_.end() && known->second)) return;  // an id never moves to another item
    byId_[id] = item;  // the only step that can fail: nothing has changed then
    deleted_.erase(id);
    item->id_ = id;
    item->byId_ = true;
    LeaveAdded(*item);
    SetCloudCreatorDevId(item, devId);
    item->mask_ = item->since_;
    if (item->mask_ != 0) EnterChanged(*item);
}

void CCloudTable::ConfirmChanged(const std::vector<long long>& accepted) {
    if (!sent_) return;
    for (const long long id : accepted) {
        const auto sent = sent_->masks.find(id);
        const auto known = byId_.find(id);
        if (sent == sent_->masks.end() || known == byId_.end() || !known->second) continue;
        CCloudItem& item = *known->second;
        if (!Owns(&item)) continue;
        item.mask_ &= ~(sent->second & ~item.since_);
        if (item.mask_ == 0) LeaveChanged(item);
    }
}

void CCloudTable::ConfirmDeleted() {
    if (!sent_) return;
    for (const long long id : sent_->deleted) {
        if (deleted_.erase(id) == 0) continue;  // dropped since, when an item took the id over
        byId_.erase(id);
    }
}

void CCloudTable::EndCommit() { sent_.reset(); }

std::size_t CCloudTable::GetSentAdded() const { return sent_ ? sent_->tickets.size() : 0; }
std::size_t CCloudTable::GetSentChanged() const { return sent_ ? sent_->masks.size() : 0; }
std::size_t CCloudTable::GetSentDeleted() const { return sent_ ? sent_->deleted.size() : 0; }

// --- state that is kept between sessions -----------------------------------------------------------------

void CCloudTable::SalvaStato(ofpstream& out) const {
    out.WriteInt64(lastTicket_);
    out.WriteInt64(static_cast<std::int64_t>(deleted_.size()));
    for (const long long id : deleted_) out.WriteInt64(id);
    SalvaCommit(out);
}

void CCloudTable::LeggeStato(ifpstream& in) {
    const long long last = in.ReadInt64();
    if (last > 0 && last <= CCloudItem::TICKET_MAX) TicketUsed(last);
    const std::int64_t count = in.ReadInt64();
    for (std::int64_t i = 0; i < count && in.IsOk(); ++i) {
        const long long id = in.ReadInt64();
        if (in.IsOk() && id >= 1 && byId_.emplace(id, nullptr).second) deleted_.insert(id);
    }
    LeggeCommit(in);
}

void CCloudTable::SalvaCommit(ofpstream& out) const {
    out.WriteUChar(sent_ ? 1 : 0);
    if (!sent_) return;
    out.WriteInt64(static_cast<std::int64_t>(sent_->tickets.size()));
    for (const long long ticket : sent_->tickets) out.WriteInt64(ticket);
    out.WriteInt64(static_cast<std::int64_t>(sent_->masks.size()));
    for (const auto& [id, mask] : sent_->masks) {
        out.WriteInt64(id);
        out.WriteUInt(mask);
    }
    out.WriteInt64(static_cast<std::int64_t>(sent_->deleted.size()));
    for (const long long id : sent_->deleted) out.WriteInt64(id);
}

void CCloudTable::LeggeCommit(ifpstream& in) {
    sent_.reset();
    if (in.ReadUChar() == 0) return;
    auto commit = std::make_unique<Commit>();
    const auto times = [&in](auto read) {
        const std::int64_t count = in.ReadInt64();
        for (std::int64_t i = 0; i < count && in.IsOk(); ++i) read();
    };
    // A ticket of the commit is nobody else's, also when its item did not come back.
    times([&] {
        const long long ticket = in.ReadInt64();
        commit->tickets.push_back(ticket);
        if (ticket > 0 && ticket <= CCloudItem::TICKET_MAX) TicketUsed(ticket);
    });
    times([&] {
        const long long id = in.ReadInt64();
        commit->masks.emplace(id, in.ReadUInt());
    });
    times([&] { commit->deleted.insert(in.ReadInt64()); });
    if (!in.IsOk()) return;  // half a commit is none
    // As when it began: what changed until then is part of it.
    auto ticket = commit->tickets.begin();
    for (CCloudItem* item : GetAdded()) {
        while (ticket != commit->tickets.end() && *ticket < item->ticket_) ++ticket;
        if (ticket == commit->tickets.end()) break;
        if (*ticket == item->ticket_ && Owns(item)) item->since_ = 0;
    }
    for (const auto& [id, mask] : commit->masks) {
        const auto known = byId_.find(id);
        if (known != byId_.end() && Owns(known->second)) known->second->since_ = 0;
    }
    sent_ = std::move(commit);
}

void CCloudTable::Adopt(CCloudItem& item) {
    if (item.GetTable()) return;
    CCloudItem::TableLink::Leave(item.link_);
    item.link_ = CCloudItem::TableLink::Share(link_);
    TicketUsed(item.ticket_);
    if (item.id_ >= 1 && !HoldsOther(item)) {
        EnterById(item);
        if (item.mask_ != 0) EnterChanged(item);
        return;
    }
    item.id_ = 0;
    item.mask_ = 0;
    item.since_ = 0;
    EnterAdded(item);
}

// --- collections -----------------------------------------------------------------------------------------

const std::vector<CCloudItem*>& CCloudTable::GetAdded() const {
    TidyAdded();
    return added_;
}

bool CCloudTable::Owns(const CCloudItem* item) const { return item && item->link_ == link_; }

bool CCloudTable::HoldsOther(const CCloudItem& item) const {
    const auto found = byId_.find(item.id_);
    return found != byId_.end() && found->second && found->second != &item;
}

void CCloudTable::EnterAdded(CCloudItem& item) {
    if (item.addedSlot_ >= 0) return;
    const long long ticket = item.ticket_ > 0 ? item.ticket_ : lastTicket_ + 1;
    const bool inOrder = added_.empty() || added_.back()->ticket_ < ticket;
    added_.push_back(&item);
    addedSorted_ = addedSorted_ && inOrder;
    item.addedSlot_ = static_cast<std::int32_t>(added_.size() - 1);
    item.ticket_ = ticket;
    TicketUsed(ticket);
}

void CCloudTable::TicketUsed(long long ticket) { lastTicket_ = std::max(lastTicket_, ticket); }

void CCloudTable::LeaveAdded(CCloudItem& item) {
    if (item.addedSlot_ < 0) return;
    added_[static_cast<std::size_t>(item.addedSlot_)] = nullptr;
    item.addedSlot_ = -1;
    ++addedGaps_;
    while (!added_.empty() && !added_.back()) {  // the last slot is never a gap
        added_.pop_back();
        --addedGaps_;
    }
    if (addedGaps_ > 64 && addedGaps_ > added_.size() / 2) TidyAdded();
}

void CCloudTable::TidyAdded() const {
    if (addedGaps_ == 0 && addedSorted_) return;
    std::erase(added_, nullptr);
    if (!addedSorted_) {
        const auto sort = [this] {
            std::stable_sort(added_.begin(), added_.end(), [](const CCloudItem* a, const CCloudItem* b) {
                return a->ticket_ < b->ticket_;
            });
        };
        sort();
        // Two files can bring the same ticket. The item that came first keeps it.
        const long long drawn = lastTicket_;
        long long before = 0;
        for (CCloudItem* item : added_) {
            if (item->ticket_ == before)
                item->ticket_ = ++lastTicket_;
            else
                before = item->ticket_;
        }
        if (lastTicket_ != drawn) sort();
    }
    for (std::size_t i = 0; i < added_.size(); ++i) added_[i]->addedSlot_ = static_cast<std::int32_t>(i);
    addedGaps_ = 0;
    addedSorted_ = true;
}

void CCloudTable::EnterById(CCloudItem& item) {
    byId_[item.id_] = &item;
    deleted_.erase(item.id_);  // a tombstone of that id gives way
    item.byId_ = true;
}

void CCloudTable::LeaveById(CCloudItem& item) {
    LeaveChanged(item);
    if (!item.byId_) return;
    byId_.erase(item.id_);
    item.byId_ = false;
}

void CCloudTable::EnterChanged(CCloudItem& item) noexcept {
    try {
        changed_.insert(&item);
        item.changed_ = true;
    } catch (const std::bad_alloc&) {
        changedLost_ = true;  // its mask stands: GetChanged finds it again
    }
}

const std::set<CCloudItem*>& CCloudTable::GetChanged() const {
    if (!changedLost_) return changed_;
    for (const auto& [id, item] : byId_) {
        if (!item || item->mask_ == 0 || item->changed_ || !Owns(item)) continue;
        changed_.insert(item);
        item->changed_ = true;
    }
    changedLost_ = false;
    return changed_;
}

void CCloudTable::LeaveChanged(CCloudItem& item) {
    if (!item.changed_) return;
    changed_.erase(&item);
    item.changed_ = false;
}
