// Work: something that is measured, and the measuring.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace bench {

/// Something that is done and timed; `before` each time something that is not timed.
struct Run {
    std::function<void()> run;
    std::function<void()> before;

    void operator()() const {
        if (before) before();
        run();
    }
};

/// A piece of work on n items. `prepare` makes what it works on and gives what is done, which may be done any
/// number of times at the same cost.
struct Work {
    std::string name;
    std::function<Run(std::size_t n)> prepare;
};

/// Two pieces of work on the same items, and what their cost may be to each other.
struct Ratio {
    std::string name;
    Work subject;
    Work peer;
    std::vector<std::size_t> counts;             // numbers of items
    std::function<double(std::size_t n)> bound;  // largest ratio subject / peer; infinite: only shown
    double enough = 0;  // ns per item that are good enough whatever the peer costs; 0: none
    double growth = 0;  // largest growth of the ratio from first to last count; 0: not asked
    bool wall = false;  // by the clock on the wall, for work that waits for a disk; three rounds
};

/// A figure with a bound of its own.
struct Figure {
    std::string name;
    std::string unit;
    std::function<double(std::size_t n)> measure;
    std::vector<std::size_t> counts;
    double bound;
    bool atLeast;  // the figure must be at least the bound; else at most
};

/// Keeps the compiler from throwing a result away.
template <class T>
inline void Keep(const T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

/// CPU nanoseconds of this thread since it began.
double CpuNs();

/// Nanoseconds on the wall's clock.
double WallNs();

/// CPU nanoseconds per item of `run`, or those on the wall, repeated until it has taken 20 ms.
double NsPerItem(const Run& run, std::size_t n, bool wall = false);

double Median(std::vector<double> values);

// The cases, a file each.
std::vector<Ratio> RecomputeRatios();
std::vector<Ratio> MakeRatios();
std::vector<Ratio> SetterRatios();
std::vector<Ratio> PositionRatios();
std::vector<Ratio> SectionRatios();
std::vector<Ratio> StoreRatios();
std::vector<Ratio> SaveRatios();
std::vector<Ratio> SearchRatios();
std::vector<Ratio> StationRatios();
std::vector<Ratio> SyncDeviceRatios();
std::vector<Ratio> SyncStoreRatios();
std::vector<Ratio> CloudRecordRatios();
std::vector<Ratio> CloudReplyRatios();
std::vector<Ratio> ExchangeRatios();
std::vector<Ratio> JournalRatios();
std::vector<Figure> JournalFigures();
std::vector<Figure> LoadFigures();
std::vector<Figure> MakeFigures();
std::vector<Figure> NmeaFigures();

/// Measures everything whose name begins with `prefix` and prints a line each: name, measured, bound, holds
/// or not. True when all hold.
bool RunRatios(bool small, const std::string& prefix);

/// Registers everything with Google Benchmark.
void RegisterCases();

/// In a fresh process: opens a project and answers with LoadFigures' ratio on a file descriptor.
int MeasurePeakOfLoad(const char* file, int answerTo);

/// Single metrics by name, for comparison with other programs. Returns an exit status.
int RunMetrics(int argc, char** argv);

}  // namespace bench
