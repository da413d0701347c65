// gps_bench: what the field book costs.
//
//   gps_bench --ratios [--small] [PREFIX]                     the bounds, each beside its peer; exit status 1
//                                                              when one does not hold (never with --small)
//   gps_bench --list | --case NAME --count N ... --cold-heap  single metrics
//   gps_bench [--benchmark_...]                               Google Benchmark
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/Work.h"

namespace bench {

namespace {

void Register(const Work& work, const std::vector<std::size_t>& counts) {
    for (const std::size_t n : counts)
        benchmark::RegisterBenchmark(
            (work.name + "/" + std::to_string(n)).c_str(),
            [work, n](benchmark::State& state) {
                const auto run = work.prepare(n);
                run();
                for (auto _ : state) run();
                state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
            })
            ->Unit(benchmark::kMillisecond);
}

}  // namespace

void RegisterCases() {
    for (const auto& list :
         {RecomputeRatios(), MakeRatios(), SetterRatios(), PositionRatios(), SectionRatios(), StoreRatios(),
          SaveRatios(), ExchangeRatios(), JournalRatios(), SearchRatios(), StationRatios(), SyncStoreRatios(),
          SyncDeviceRatios(), CloudRecordRatios(), CloudReplyRatios()})
        for (const Ratio& r : list) {
            Register(r.subject, r.counts);
            Register(r.peer, r.counts);
        }
}

}  // namespace bench

int main(int argc, char** argv) {
    if (argc > 1 && std::strcmp(argv[1], "--ratios") == 0) {
        const bool small = argc > 2 && std::strcmp(argv[2], "--small") == 0;
        const char* const prefix = argc > (small ? 3 : 2) ? argv[small ? 3 : 2] : "";
        return bench::RunRatios(small, prefix) || small ? 0 : 1;
    }
    if (argc == 4 && std::strcmp(argv[1], "--peak-of-load") == 0)
        return bench::MeasurePeakOfLoad(argv[2], std::atoi(argv[3]));
    if (argc > 1 && std::strncmp(argv[1], "--benchmark", 11) != 0) return bench::RunMetrics(argc, argv);
    bench::RegisterCases();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
