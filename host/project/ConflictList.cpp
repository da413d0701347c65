#include "host/project/ConflictList.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace gpsproject {

namespace {

bool IsKeptPoint(const CloudConflict& conflict) {
    return conflict.kind == CloudConflict::Kind::kept && conflict.clash.kind == CloudKind::point;
}

}  // namespace

void ConflictList::Add(CloudConflict conflict) {
    const CloudClash& clash = conflict.clash;
    const bool keptPoint = IsKeptPoint(conflict);
    std::set<int> replaced;
    for (const int number : About(clash.kind, clash.id)) {
        const CloudConflict& other = *Find(number);
        if (other.kind == conflict.kind && other.clash.bit == clash.bit && other.record == conflict.record)
            replaced.insert(number);
    }
    conflict.number = last_ + 1;
    about_.emplace(clash.kind, clash.id, conflict.number);
    if (keptPoint) keptOf_.emplace(conflict.groupId, conflict.number);
    conflicts_.push_back(std::move(conflict));
    // Nothing fails from here on.
    ++last_;
    dropped_.merge(replaced);
}

const CloudConflict* ConflictList::Find(int number) const {
    const auto found = std::ranges::lower_bound(conflicts_, number, {}, &CloudConflict::number);
    if (found == conflicts_.end() || found->number != number || dropped_.contains(number)) return nullptr;
    return &*found;
}

CloudConflict* ConflictList::FindToChange(int number) { return const_cast<CloudConflict*>(Find(number)); }

std::vector<int> ConflictList::About(CloudKind kind, std::int64_t id) {
    if (!indexed_) Index();
    std::vector<int> numbers;
    auto next = about_.lower_bound({kind, id, std::numeric_limits<int>::min()});
    for (; next != about_.end(); ++next) {
        const auto& [itsKind, itsId, number] = *next;
        if (itsKind != kind || itsId != id) break;
        const CloudConflict* const conflict = Find(number);
        if (conflict && conflict->clash.kind == kind && conflict->clash.id == id) numbers.push_back(number);
    }
    return numbers;
}

void ConflictList::GroupAddedAgain(std::int64_t id, std::int64_t ticket) {
    if (!indexed_) Index();
    auto next = keptOf_.lower_bound({id, std::numeric_limits<int>::min()});
    for (; next != keptOf_.end() && next->first == id; ++next)
        if (CloudConflict* const kept = FindToChange(next->second)) kept->groupId = -ticket;
}

void ConflictList::Index() {
    about_.clear();
    keptOf_.clear();
    for (const CloudConflict& conflict : conflicts_) {
        about_.emplace(conflict.clash.kind, conflict.clash.id, conflict.number);
        if (IsKeptPoint(conflict)) keptOf_.emplace(conflict.groupId, conflict.number);
    }
    indexed_ = true;
}

void ConflictList::Sweep() noexcept {
    if (dropped_.empty()) return;
    std::erase_if(conflicts_, [this](const CloudConflict& one) { return dropped_.contains(one.number); });
    dropped_.clear();
}

void ConflictList::Forget() noexcept {
    dropped_.clear();
    about_.clear();
    keptOf_.clear();
    indexed_ = false;
}

}  // namespace gpsproject
