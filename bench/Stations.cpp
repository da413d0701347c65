// The station at a position, against a look at every station.
#include <limits>
#include <memory>

#include "bench/Work.h"
#include "bench/Workload.h"
#include "host/coord/StationCatalogue.h"
#include "platform/coord/CEllissoide.h"

namespace bench {

namespace {

constexpr StationCatalogue::Query kQuery{5, CTrovaNomeBaseGps::provTutte, {}};
constexpr std::size_t kQuestions = 1024;

// All over the earth, at heights up to 3 km.
std::vector<Station> MakeStations(std::size_t n) {
    Random random(11);
    std::vector<Station> stations(n);
    for (Station& s : stations) {
        CEllissoide().GrafToGeoc(random.Uniform(-80, 80), random.Uniform(-180, 180), random.Uniform(0, 3000),
                                 s.position[0], s.position[1], s.position[2]);
        s.frame = "ETRF2000";
    }
    return stations;
}

// Every other base stands a metre beside a station, the others 50 m beside one, where none is found.
std::vector<StationCatalogue::Position> MakeQuestions(const std::vector<Station>& stations) {
    Random random(12);
    std::vector<StationCatalogue::Position> at;
    for (std::size_t i = 0; i < kQuestions; ++i) {
        at.push_back(stations[random.Below(stations.size())].position);
        at.back()[0] += i % 2 == 0 ? 1 : 50;
    }
    return at;
}

template <class Ask>
Work Asking(const char* name, Ask ask) {
    return {name, [ask](std::size_t n) -> Run {
                auto catalogue = std::make_shared<StationCatalogue>(MakeStations(n));
                auto questions = std::make_shared<std::vector<StationCatalogue::Position>>(
                    MakeQuestions(catalogue->Stations()));
                return Run{[=] {
                               for (const auto& at : *questions) Keep(ask(*catalogue, at));
                           },
                           {}};
            }};
}

const Station* Scan(const StationCatalogue& catalogue, const StationCatalogue::Position& at) {
    const Station* nearest = nullptr;
    double best = kQuery.radius * kQuery.radius;
    for (const Station& s : catalogue.Stations()) {
        const double x = s.position[0] - at[0], y = s.position[1] - at[1], z = s.position[2] - at[2];
        const double squared = x * x + y * y + z * z;
        if (squared > best || (nearest && squared == best)) continue;
        nearest = &s;
        best = squared;
    }
    return nearest;
}

}  // namespace

std::vector<Ratio> StationRatios() {
    // At least a hundred times faster at 10^5 stations; at fewer a scan costs less.
    const auto bound = [](std::size_t n) {
        return n >= 100'000 ? 0.01 : std::numeric_limits<double>::infinity();
    };
    const auto index = [](const StationCatalogue& c, const StationCatalogue::Position& at) {
        return c.Find(at, kQuery);
    };
    return {{"stations.find",
             Asking("stations.find.index", index),
             Asking("stations.find.scan", Scan),
             {1'000, 10'000, 100'000},
             bound,
             0,
             0}};
}

}  // namespace bench
