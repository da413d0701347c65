// One setter, again and again on a point in the cache, against a bare compare-and-store.
#include <memory>

#include "bench/Work.h"
#include "bench/Workload.h"

namespace bench {

std::vector<Ratio> SetterRatios() {
    const Work library{"setter.library", [](std::size_t n) -> Run {
                           auto point = std::make_shared<CPunGps>(nullptr, false, nullptr);
                           return Run{[point, n] {
                                          double v = 0;
                                          for (std::size_t i = 0; i < n; ++i) {
                                              point->SetAltAnt(v += 0.001);
                                              Keep(*point);
                                          }
                                      },
                                      {}};
                       }};
    const Work bare{"setter.bare", [](std::size_t n) -> Run {
                        auto point = std::make_shared<PlainPoint>();
                        return Run{[point, n] {
                                       double v = 0;
                                       for (std::size_t i = 0; i < n; ++i) {
                                           const double next = v += 0.001;
                                           if (point->antenna != next) point->antenna = next;
                                           Keep(*point);
                                       }
                                   },
                                   {}};
                    }};
    return {{"setter", library, bare, {1'000'000}, [](std::size_t) { return 4.0; }, 0, 0}};
}

}  // namespace bench
