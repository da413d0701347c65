// Making points: time and memory against plain objects with the same fields.
#include <malloc.h>

#include <memory>

#include "bench/Work.h"
#include "bench/Workload.h"

namespace bench {

namespace {

Work MakeInBook() {
    return {"make.library", [](std::size_t n) -> Run {
                auto fixes = std::make_shared<std::vector<Fix>>(MakeFixes(n));
                return Run{[fixes] {
                               CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
                               book.AddGrp(false);
                               for (const Fix& f : *fixes) Fill(*book.AddPun(0, false), f);
                           },
                           {}};
            }};
}

Work MakePlain() {
    return {"make.plain", [](std::size_t n) -> Run {
                auto fixes = std::make_shared<std::vector<Fix>>(MakeFixes(n));
                return Run{[fixes] {
                               std::vector<std::unique_ptr<PlainPoint>> points;
                               for (const Fix& f : *fixes) {
                                   points.push_back(std::make_unique<PlainPoint>());
                                   Fill(*points.back(), f);
                               }
                           },
                           {}};
            }};
}

double HeapBytes() {
    const auto m = mallinfo2();
    return static_cast<double>(m.uordblks) + static_cast<double>(m.hblkhd);
}

// Heap of n points in a book over heap of n plain objects.
double MemoryRatio(std::size_t n) {
    const auto fixes = MakeFixes(n);
    double before = HeapBytes();
    double library = 0, plain = 0;
    {
        CLibGps book(nullptr, nullptr, nullptr, nullptr, 0);
        book.AddGrp(false);
        for (const Fix& f : fixes) Fill(*book.AddPun(0, false), f);
        library = HeapBytes() - before;
    }
    before = HeapBytes();
    {
        std::vector<std::unique_ptr<PlainPoint>> points;
        for (const Fix& f : fixes) {
            points.push_back(std::make_unique<PlainPoint>());
            Fill(*points.back(), f);
        }
        plain = HeapBytes() - before;
    }
    return library / plain;
}

}  // namespace

std::vector<Ratio> MakeRatios() {
    return {{"make",
             MakeInBook(),
             MakePlain(),
             {10'000, 100'000, 1'000'000},
             [](std::size_t n) { return n >= 1'000'000 ? 1.25 : 2.0; },
             0,
             1.2}};
}

std::vector<Figure> MakeFigures() {
    return {{"make.memory", "x plain", MemoryRatio, {10'000, 100'000, 1'000'000}, 1.25, false}};
}

}  // namespace bench
