// ConflictList: the conflicts of a book, while many of them come and go.
#pragma once

#include <cstdint>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "host/project/CloudState.h"

namespace gpsproject {

/// Works on the list of a CloudState, which is in the order of numbers. What is dropped leaves the list with
/// Sweep, all at once. Whoever changes the list without it says so with Forget.
class ConflictList {
public:
    ConflictList(std::vector<CloudConflict>& conflicts, int& last) : conflicts_(conflicts), last_(last) {}

    /// Gives it the next number. Of the same field the newest is what there is to decide: the one before is
    /// dropped. What was kept stays, each for itself.
    void Add(CloudConflict conflict);

    /// Null: there is none of that number, or it was dropped.
    const CloudConflict* Find(int number) const;

    /// Numbers of those about an item.
    std::vector<int> About(CloudKind kind, std::int64_t id);

    /// The set is empty afterwards.
    void Drop(std::set<int>& numbers) noexcept { dropped_.merge(numbers); }
    void Sweep() noexcept;

    /// A kept group was added again: kept points of it go into the new one from now on.
    void GroupAddedAgain(std::int64_t id, std::int64_t ticket);

    void Forget() noexcept;

private:
    void Index();
    CloudConflict* FindToChange(int number);

    std::vector<CloudConflict>& conflicts_;
    int& last_;
    std::set<int> dropped_;

    // By what they are about, and kept points by their groups. What has changed since may stand in them.
    std::set<std::tuple<CloudKind, std::int64_t, int>> about_;
    std::set<std::pair<std::int64_t, int>> keptOf_;
    bool indexed_ = false;
};

/// Sweeps at the end of a scope, however it ends.
class ConflictSweep {
public:
    explicit ConflictSweep(ConflictList& list) : list_(list) {}
    ~ConflictSweep() { list_.Sweep(); }
    ConflictSweep(const ConflictSweep&) = delete;
    ConflictSweep& operator=(const ConflictSweep&) = delete;

private:
    ConflictList& list_;
};

}  // namespace gpsproject
