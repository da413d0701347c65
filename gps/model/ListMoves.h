// ListMoves: how the positions of a list have moved since they were noted.
#pragma once

#include <array>
#include <cstddef>
#include <limits>

/// Where insertions and deletions have moved what stands behind them: what stood at a position when positions
/// were noted stands at Now of it now. Kept as steps: from a noted position on, everything is shifted by so
/// much. Work in one place of a list makes one step, however many items go in or out there. When all steps
/// are used up, further edits are left out: Now is then only near, as everything here is only a hint.
class ListMoves {
public:
    ListMoves() { from_.fill(kNever); }

    /// An item was inserted at a position of a list that had `size` items.
    void Inserted(int at, int size) {
        if (at != size) Shift(at, 1);
    }

    /// The item at a position was taken out of a list that had `size` items.
    void Deleted(int at, int size) {
        if (at == size - 1) return;
        // A step that began with this item begins behind it: nothing else of it is left there.
        const std::size_t k = StepOf(at);
        if (k > 0 && from_[k - 1] + by_[k] == at && (k == count_ || from_[k] > from_[k - 1] + 1)) {
            ++from_[k - 1];
            for (std::size_t i = k; i <= count_; ++i) --by_[i];
            return Tidy(k);
        }
        Shift(at + 1, -1);
    }

    /// Where that stands now which was noted at a position.
    int Now(int noted) const {
        if (count_ == 0) return noted;
        // Without a branch on the position, which no processor could foresee.
        int step = 0;
        if (count_ <= kFew) {
            for (std::size_t k = 0; k < kFew; ++k) step += noted >= from_[k];
        } else {
            for (std::size_t k = 0; k < kMost; ++k) step += noted >= from_[k];
        }
        return noted + by_[static_cast<std::size_t>(step)];
    }

    /// The position to note for what stands somewhere now: the inverse of Now, or for what came later its
    /// neighbour.
    int Noted(int now) const {
        const std::size_t k = StepOf(now);
        const int noted = now - by_[k];
        return k < count_ && noted > from_[k] ? from_[k] : noted;
    }

    /// All positions were noted anew.
    void Clear() { *this = ListMoves(); }

private:
    static constexpr std::size_t kFew = 8;
    static constexpr std::size_t kMost = 32;
    static constexpr int kNever = std::numeric_limits<int>::max();

    // The last step that begins at or before what stands somewhere now; 0: before the first.
    std::size_t StepOf(int now) const {
        std::size_t k = count_;
        while (k > 0 && from_[k - 1] + by_[k] > now) --k;
        return k;
    }

    // Everything from a present position on has moved.
    void Shift(int at, int by) {
        // The first noted position that stands there or behind.
        const std::size_t k = StepOf(at);
        const int from = at - by_[k];
        std::size_t first = k;  // from this step on shifts change
        const bool begins = k > 0 && from_[k - 1] == from;
        if (!begins && k < count_ && from >= from_[k]) {
            first = k + 1;  // among what came later
        } else if (!begins) {
            if (count_ == kMost) return;
            for (std::size_t i = count_; i > k; --i) {
                from_[i] = from_[i - 1];
                by_[i + 1] = by_[i];
            }
            from_[k] = from;
            by_[k + 1] = by_[k];
            ++count_;
            first = k + 1;
        }
        for (std::size_t i = first; i <= count_; ++i) by_[i] += by;
        Tidy(first);
    }

    // A step that shifts as the one before it is none.
    void Tidy(std::size_t k) {
        if (k == 0 || by_[k] != by_[k - 1]) return;
        for (std::size_t i = k; i < count_; ++i) {
            from_[i - 1] = from_[i];
            by_[i] = by_[i + 1];
        }
        from_[--count_] = kNever;
    }

    std::array<int, kMost> from_;      // noted positions at which steps begin, ascending
    std::array<int, kMost + 1> by_{};  // shift before the first step, and of each step
    std::size_t count_ = 0;
};
