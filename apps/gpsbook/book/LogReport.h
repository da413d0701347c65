// LogReport: what became of the epochs of one log.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "apps/gpsbook/book/EpochFilter.h"
#include "apps/gpsbook/readers/Epoch.h"

namespace gpsbook {

/// How often something was met, and on which lines first.
struct Tally {
    static constexpr std::size_t kLines = 5;

    std::int64_t count = 0;
    std::vector<std::int64_t> lines;  // the first few

    void Add(std::int64_t line) {
        ++count;
        if (lines.size() < kLines) lines.push_back(line);
    }
};

struct LogReport {
    std::string file;
    std::string group;
    LogHeader header;
    std::int64_t epochs = 0;  // positions met, used or not
    std::int64_t points = 0;
    std::map<int, std::int64_t> byQuality;                                   // points by code, as delivered
    std::array<Tally, static_cast<std::size_t>(Reason::count_)> rejected{};  // positions that are no points
    std::array<Tally, static_cast<std::size_t>(Reason::count_)> ignored{};   // other damaged lines
    std::array<std::int64_t, 5> filtered{};                                  // by Verdict
    std::map<int, std::int64_t> alreadyIn;  // epochs by the group that has them, taken again or left out

    std::int64_t AlreadyThere() const {
        std::int64_t n = 0;
        for (const auto& [place, count] : alreadyIn) n += count;
        return n;
    }
};

}  // namespace gpsbook
