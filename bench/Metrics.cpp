// Single metrics by name, one a line: "name value unit". What other programs that measure the same work print
// can be put beside them.
#include <fmt/format.h>
#include <malloc.h>

#include <algorithm>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/Store.h"
#include "bench/Work.h"
#include "bench/Workload.h"

namespace bench {

namespace {

struct Options {
    std::size_t count = 1'000'000;
    bool coldHeap = false;
};

void Report(const std::string& name, double value, const char* unit) {
    fmt::print("{} {:.6g} {}\n", name, value, unit);
}

// The first touch of a page costs anything on a virtual machine: the heap is made resident before.
void WarmHeap(std::size_t bytes) {
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
    void* block = std::malloc(bytes);
    if (!block) return;
    std::memset(block, 1, bytes);
    std::free(block);
}

double Timed(const Work& work, std::size_t n) {
    const auto run = work.prepare(n);
    run();
    return NsPerItem(run, n);
}

void Recompute(const Options& o) {
    const auto ratios = RecomputeRatios();
    Report("book.recompute.utm", Timed(ratios[0].subject, o.count), "ns/point");
    Report("book.recompute.datum", Timed(ratios[1].subject, o.count), "ns/point");
}

void Position(const Options&) {
    Report("book.position", Timed(PositionRatios()[1].subject, 100'000), "ns/lookup");
}

void SetField(const Options&) {
    Report("book.set_field", Timed(SetterRatios()[0].subject, 1'000'000), "ns/set");
}

double HeapBytes() {
    const auto m = mallinfo2();
    return static_cast<double>(m.uordblks) + static_cast<double>(m.hblkhd);
}

void Point(const Options& o) {
    const auto fixes = MakeFixes(o.count);
    const auto n = static_cast<double>(o.count);
    auto book = std::make_unique<CLibGps>(nullptr, nullptr, nullptr, nullptr, 0);
    book->AddGrp(false);
    book->PunArReserve(0, static_cast<int>(o.count));
    const double heap = HeapBytes();
    double start = CpuNs();
    for (const Fix& f : fixes) Fill(*book->AddPun(0, false), f);
    Report("book.point.make", (CpuNs() - start) / n, "ns/point");
    Report("book.point.heap", (HeapBytes() - heap) / n, "B/point");
    for (int pass = 0; pass < 2; ++pass) {  // the first unmeasured
        start = CpuNs();
        for (int i = 0; i < static_cast<int>(o.count); ++i) {
            CPunGps& p = *book->GetPunAt(0, i);
            p.SetCoord(p.GetLat() + p.GetElev() + pass, p.GetLong() + p.GetElev(), p.GetElev() - 40);
        }
    }
    Report("book.walk", (CpuNs() - start) / n, "ns/point");
    start = CpuNs();
    book.reset();
    Report("book.point.free", (CpuNs() - start) / n, "ns/point");
}

void Stream(const Options& o) {
    const auto ratios = StoreRatios();
    for (const auto& [name, work] :
         {std::pair{"book.write.wall", ratios[0].subject}, std::pair{"book.read.wall", ratios[1].subject}}) {
        const auto run = work.prepare(o.count);
        run();
        Report(name, NsPerItem(run, 1, true) / 1e9, "s");
    }
    const auto bytes = static_cast<double>(std::filesystem::file_size(ScratchFile("section")));
    Report("book.bytes_per_point", bytes / static_cast<double>(o.count), "B/point");
}

const std::vector<std::pair<std::string, std::function<void(const Options&)>>>& Cases() {
    static const std::vector<std::pair<std::string, std::function<void(const Options&)>>> cases{
        {"book.recompute", Recompute},
        {"book.position", Position},
        {"book.set_field", SetField},
        {"book.point", Point},
        {"book.stream", Stream}};
    return cases;
}

}  // namespace

int RunMetrics(int argc, char** argv) {
    Options options;
    std::vector<std::string> wanted;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--list") {
            for (const auto& [name, run] : Cases()) fmt::print("{}\n", name);
            return 0;
        }
        if (arg == "--case" && hasValue) {
            wanted.emplace_back(argv[++i]);
        } else if (arg == "--count" && hasValue) {
            options.count = static_cast<std::size_t>(std::strtoull(argv[++i], nullptr, 10));
        } else if (arg == "--dir" && hasValue) {
            SetScratchFolder(argv[++i]);
        } else if (arg == "--cold-heap") {
            options.coldHeap = true;
        } else {
            fmt::print(stderr, "gps_bench: {}: unknown, or without its value\n", arg);
            return 2;
        }
    }
    if (options.count == 0) {
        fmt::print(stderr, "gps_bench: --count wants a number above 0\n");
        return 2;
    }
    for (const std::string& name : wanted)
        if (std::none_of(Cases().begin(), Cases().end(), [&](const auto& c) { return c.first == name; })) {
            fmt::print(stderr, "gps_bench: --case {}: unknown; --list names them all\n", name);
            return 2;
        }
    if (!options.coldHeap) WarmHeap(options.count * 1500);
    for (const auto& [name, run] : Cases())
        if (wanted.empty() || std::find(wanted.begin(), wanted.end(), name) != wanted.end()) run(options);
    return 0;
}

}  // namespace bench
