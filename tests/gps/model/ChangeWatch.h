// ChangeWatch and DrawingWatch: write down what the model reports.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "platform/cad/COrkaEng.h"
#include "platform/entity/CCloudItem.h"

namespace test {

/// Every report of changed fields while it lives, of all items.
class ChangeWatch {
public:
    using Calls = std::vector<std::pair<const CCloudItem*, std::uint32_t>>;

    ChangeWatch() {
        CCloudItem::SetObserver(
            [this](const CCloudItem& item, std::uint32_t flag) { calls_.emplace_back(&item, flag); });
    }
    ~ChangeWatch() { CCloudItem::SetObserver({}); }
    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    /// The calls since the last time.
    Calls Take() { return std::exchange(calls_, {}); }

private:
    Calls calls_;
};

/// Every call for a drawing reference while it lives: +1 taken, -1 given back.
class DrawingWatch {
public:
    using Calls = std::vector<std::pair<int, long long>>;

    DrawingWatch() {
        COrkaEng::SetWatcher([this](int step, long long drawing) { calls_.emplace_back(step, drawing); });
    }
    ~DrawingWatch() { COrkaEng::SetWatcher({}); }
    DrawingWatch(const DrawingWatch&) = delete;
    DrawingWatch& operator=(const DrawingWatch&) = delete;

    Calls Take() { return std::exchange(calls_, {}); }

private:
    Calls calls_;
};

}  // namespace test
