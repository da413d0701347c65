// ListMoves: how the positions of a list have moved since they were noted.
#pragma once

#include <array>
#include <cstddef>

/// A short log of insertions and deletions: what stood at a position when positions were noted stands at Now
/// of it now. Work in one place of a list makes one entry, however many items go in or out there. With a full
/// log, further edits are left out: Now is then only near, as everything here is only a hint.
class ListMoves {
public:
    /// An item was inserted at a position of a list that had `size` items.
    void Inserted(int at, int size) {
        if (at == size) return;  // nothing moved
        if (count_ > 0) {
            Move& last = moves_[count_ - 1];
            if (last.by > 0 && at >= last.from && at <= last.from + last.by) return Grow(last, last.from, 1);
            if (last.by < 0 && at == last.from) return Grow(last, last.from, 1);
        }
        Append(at, 1);
    }

    /// The item at a position was taken out of a list that had `size` items.
    void Deleted(int at, int size) {
        if (at == size - 1) return;
        if (count_ > 0) {
            Move& last = moves_[count_ - 1];
            if (last.by < 0 && (at == last.from || at == last.from - 1)) return Grow(last, at, -1);
            if (last.by > 0 && at >= last.from && at < last.from + last.by) return Grow(last, last.from, -1);
        }
        Append(at, -1);
    }

    /// Where that stands now which was noted at a position.
    int Now(int noted) const {
        // Without a branch on the position, which no processor could foresee.
        for (std::size_t k = 0; k < count_; ++k)
            noted += moves_[k].by * static_cast<int>(noted >= moves_[k].from);
        return noted;
    }

    /// The position to note for what stands somewhere now: the inverse of Now, or for what came later its
    /// neighbour.
    int Noted(int now) const {
        for (std::size_t k = count_; k-- > 0;) {
            const Move& m = moves_[k];
            if (now >= m.from + (m.by > 0 ? m.by : 0))
                now -= m.by;
            else if (now > m.from)
                now = m.from;
        }
        return now;
    }

    /// All positions were noted anew.
    void Clear() { count_ = 0; }

private:
    struct Move {
        int from = 0;  // positions from here on
        int by = 0;    // moved by so many
    };

    void Append(int from, int by) {
        if (count_ < moves_.size()) moves_[count_++] = {from, by};
    }
    void Grow(Move& move, int from, int by) {
        move = {from, move.by + by};
        if (move.by == 0) --count_;
    }

    std::array<Move, 8> moves_{};
    std::size_t count_ = 0;
};
