#include "gps/model/PositionIndex.h"

#include <new>
#include <stdexcept>

void PositionIndex::Set(const void* object, int group, int at) noexcept {
    try {
        if ((count_ + 1) * 2 > entries_.size()) Grow();
        Insert({Key(object), Where(group, at)});
    } catch (const std::bad_alloc&) {
        Clear();
    } catch (const std::length_error&) {
        Clear();
    }
}

void PositionIndex::Insert(Entry entry) {
    std::size_t at = Slot(entry.key);
    while (entries_[at].where != 0 && entries_[at].key != entry.key) at = (at + 1) & mask_;
    if (entries_[at].where == 0) ++count_;
    entries_[at] = entry;
}

void PositionIndex::Erase(const void* object) noexcept {
    if (count_ == 0) return;
    const std::uint32_t key = Key(object);
    std::size_t hole = Slot(key);
    while (entries_[hole].where != 0 && entries_[hole].key != key) hole = (hole + 1) & mask_;
    if (entries_[hole].where == 0) return;
    --count_;
    // Entries behind the hole that could not be reached past it any more move into it.
    for (std::size_t at = (hole + 1) & mask_; entries_[at].where != 0; at = (at + 1) & mask_) {
        const std::size_t home = Slot(entries_[at].key);
        if (((at - home) & mask_) < ((at - hole) & mask_)) continue;
        entries_[hole] = entries_[at];
        hole = at;
    }
    entries_[hole] = {};
}

void PositionIndex::Clear() noexcept { *this = PositionIndex(); }

std::uint32_t PositionIndex::Where(int group, int at) {
    const auto list = static_cast<std::size_t>(group + 1), block = static_cast<std::size_t>(at) / 256;
    if (pages_.empty()) pages_.push_back({kGroups, 0});  // page 0 stays unused: no place is 0
    if (pagesOf_.size() <= list) pagesOf_.resize(list + 1);
    if (pagesOf_[list].size() <= block) pagesOf_[list].resize(block + 1);
    std::uint32_t& page = pagesOf_[list][block];
    if (page == 0) {
        pages_.push_back({group, static_cast<int>(block * 256)});
        page = static_cast<std::uint32_t>(pages_.size() - 1);
    }
    return page << 8 | static_cast<std::uint32_t>(at & 255);
}

void PositionIndex::Grow() {
    std::vector<Entry> old(entries_.empty() ? 64 : entries_.size() * 2);
    std::swap(old, entries_);
    mask_ = entries_.size() - 1;
    shift_ = 64;
    for (std::size_t n = entries_.size(); n > 1; n /= 2) --shift_;
    count_ = 0;
    for (const Entry& entry : old)
        if (entry.where != 0) Insert(entry);
}
