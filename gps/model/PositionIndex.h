// PositionIndex: where groups and points stood when they were last found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

/// Hints by pointer value. An object is never looked into: its pointer may be one to an object that is gone,
/// and a million points are forty times larger than what is kept here, so that a look-up stays in the cache.
///
/// Open addressing with linear probing (D. E. Knuth, The Art of Computer Programming 3, 6.4, algorithms L and
/// R), at most half full so that the first probe mostly hits, 8 bytes an entry: 32 bits of the address, which
/// tell objects apart that lie within 64 GiB, and a place by page of 256 positions. Two objects that are
/// taken for each other only cost each other a search.
class PositionIndex {
public:
    /// A position in a group's list of points; for a group itself `group` is kGroups and `at` its position.
    struct Place {
        int group;
        int at;
    };
    static constexpr int kGroups = -1;

    bool IsEmpty() const { return count_ == 0; }

    /// What is known of an object.
    std::optional<Place> Find(const void* object) const {
        if (count_ == 0) return std::nullopt;
        const std::uint32_t key = Key(object);
        for (std::size_t at = Slot(key); entries_[at].where != 0; at = (at + 1) & mask_)
            if (entries_[at].key == key) return PlaceOf(entries_[at].where);
        return std::nullopt;
    }

    /// Remembers a place. Without memory for it everything is forgotten: it is only hints.
    void Set(const void* object, int group, int at) noexcept;

    void Erase(const void* object) noexcept;
    void Clear() noexcept;

private:
    struct Entry {
        std::uint32_t key = 0;
        std::uint32_t where = 0;  // page and position in it; 0: free
    };
    struct Page {
        int group;
        int first;  // position
    };

    // Objects lie at multiples of 16.
    static std::uint32_t Key(const void* object) {
        return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(object) >> 4);
    }
    // The upper bits of the product depend on all bits of the key.
    std::size_t Slot(std::uint32_t key) const { return key * 0x9E3779B97F4A7C15ull >> shift_; }
    Place PlaceOf(std::uint32_t where) const {
        const Page& page = pages_[where >> 8];
        return {page.group, page.first + static_cast<int>(where & 255)};
    }
    std::uint32_t Where(int group, int at);
    void Grow();
    void Insert(Entry entry);

    std::vector<Entry> entries_;
    std::size_t count_ = 0;
    std::size_t mask_ = 0;
    int shift_ = 63;
    std::vector<Page> pages_;
    std::vector<std::vector<std::uint32_t>> pagesOf_;  // by group + 1, then by position / 256; 0: none yet
};
