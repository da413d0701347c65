#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ctime>

#include "bench/Work.h"

namespace bench {

namespace {

constexpr int kRounds = 7;
constexpr int kWallRounds = 3;

struct Measured {
    double ratio;
    double subjectNs;
    double peerNs;
};

// Subject and peer in turn; the median of the ratios within each round.
Measured Measure(const Ratio& r, std::size_t n, int rounds) {
    const auto subject = r.subject.prepare(n);
    const auto peer = r.peer.prepare(n);
    subject();  // once unmeasured: memory, caches, what is made at first use
    peer();
    std::vector<double> ratios, subjects, peers;
    for (int i = 0; i < rounds; ++i) {
        subjects.push_back(NsPerItem(subject, n, r.wall));
        peers.push_back(NsPerItem(peer, n, r.wall));
        ratios.push_back(subjects.back() / peers.back());
    }
    return {Median(ratios), Median(subjects), Median(peers)};
}

bool Print(const std::string& name, const std::string& measured, const std::string& bound, bool holds) {
    fmt::print("{:<42} {:<36} {:<22} {}\n", name, measured, bound, holds ? "holds" : "DOES NOT HOLD");
    return holds;
}

bool RunRatio(const Ratio& r, bool small) {
    bool all = true;
    double first = 0, last = 0;
    const std::size_t used = small ? 1 : r.counts.size();
    for (std::size_t i = 0; i < used; ++i) {
        const std::size_t n = small ? std::min<std::size_t>(r.counts[i], 10'000) : r.counts[i];
        const Measured m = Measure(r, n, small ? 1 : r.wall ? kWallRounds : kRounds);
        last = m.ratio;
        if (i == 0) first = m.ratio;
        const bool holds = m.ratio <= r.bound(n) || (r.enough > 0 && m.subjectNs <= r.enough);
        std::string bound = fmt::format("<= {:.2f}", r.bound(n));
        if (std::isinf(r.bound(n)))
            bound = "(shown only)";
        else if (r.enough > 0)
            bound += fmt::format(" or <= {:g} ns", r.enough);
        all =
            Print(fmt::format("{} n={}", r.name, n),
                  fmt::format("{:.3f} ({:.1f} / {:.1f} ns)", m.ratio, m.subjectNs, m.peerNs), bound, holds) &&
            all;
    }
    if (r.growth > 0 && used > 1)
        all = Print(r.name + " growth", fmt::format("{:.3f}", last / first),
                    fmt::format("<= {:.2f}", r.growth), last / first <= r.growth) &&
              all;
    return all;
}

bool RunFigure(const Figure& f, bool small) {
    bool all = true;
    for (std::size_t i = 0; i < (small ? 1 : f.counts.size()); ++i) {
        std::vector<double> values;
        const std::size_t n = small ? std::min<std::size_t>(f.counts[i], 10'000) : f.counts[i];
        for (int round = 0; round < (small ? 1 : 5); ++round) values.push_back(f.measure(n));
        const double value = Median(values);
        const bool holds = f.atLeast ? value >= f.bound : value <= f.bound;
        all = Print(fmt::format("{} n={}", f.name, n), fmt::format("{:.3f} {}", value, f.unit),
                    fmt::format("{} {:g}", f.atLeast ? ">=" : "<=", f.bound), holds) &&
              all;
    }
    return all;
}

}  // namespace

double CpuNs() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return 1e9 * static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec);
}

double WallNs() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return 1e9 * static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec);
}

double NsPerItem(const Run& run, std::size_t n, bool wall) {
    const auto now = wall ? WallNs : CpuNs;
    constexpr double kLong = 20e6;  // ns: far above the clock's step and what a single interrupt costs
    double spent = 0;
    int calls = 0;
    while (spent < kLong) {
        if (run.before) run.before();
        const double before = now();
        run.run();
        spent += now() - before;
        ++calls;
    }
    return spent / calls / static_cast<double>(n);
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool RunRatios(bool small, const std::string& prefix) {
    bool all = true;
    for (const auto& list :
         {RecomputeRatios(), MakeRatios(), SetterRatios(), PositionRatios(), SectionRatios(), StoreRatios(),
          SaveRatios(), ExchangeRatios(), JournalRatios(), SearchRatios(), StationRatios(), SyncStoreRatios(),
          SyncDeviceRatios(), CloudRecordRatios(), CloudReplyRatios()})
        for (const Ratio& r : list)
            if (r.name.starts_with(prefix)) all = RunRatio(r, small) && all;
    for (const auto& list : {MakeFigures(), NmeaFigures(), LoadFigures(), JournalFigures()})
        for (const Figure& f : list)
            if (f.name.starts_with(prefix)) all = RunFigure(f, small) && all;
    return all;
}

}  // namespace bench
