// Stations found by position, against a look at every one of them.
#include "host/coord/StationCatalogue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/coord/CEllissoide.h"
#include "tests/Scale.h"

namespace {

using Catalogo = CTrovaNomeBaseGps;
using Position = StationCatalogue::Position;
using Query = StationCatalogue::Query;

Station At(const std::string& id, const Position& position, const std::string& frame = "ETRF2000") {
    Station s;
    s.id = id;
    s.position = position;
    s.frame = frame;
    return s;
}

std::string IdOf(const Station* station) { return station ? station->id : "-"; }

constexpr Position kHere{4316423, 1014588, 4569607};
Position Beside(double x, double y = 0, double z = 0) { return {kHere[0] + x, kHere[1] + y, kHere[2] + z}; }

TEST(StationCatalogue, EmptyOneHasNothing) {
    EXPECT_EQ(StationCatalogue().Find(kHere, {1e9, Catalogo::provTutte, {}}), nullptr);
    EXPECT_TRUE(StationCatalogue().Near(kHere, {1e9, Catalogo::provTutte, {}}).empty());
}

TEST(StationCatalogue, StationIsFoundUpToTheRadiusAndNotBeyond) {
    const StationCatalogue catalogue({At("A", kHere)});
    EXPECT_EQ(IdOf(catalogue.Find(kHere, {0, Catalogo::provTutte, {}})), "A");
    EXPECT_EQ(IdOf(catalogue.Find(Beside(3, 4), {5, Catalogo::provTutte, {}})), "A") << "5 m away, exactly";
    EXPECT_EQ(IdOf(catalogue.Find(Beside(3, 4.0001), {5, Catalogo::provTutte, {}})), "-");
    EXPECT_EQ(IdOf(catalogue.Find(Beside(0, 0, -5), {5, Catalogo::provTutte, {}})), "A");
    EXPECT_EQ(IdOf(catalogue.Find(kHere, {-1, Catalogo::provTutte, {}})), "-");
}

TEST(StationCatalogue, NearestIsTakenAndOfEquallyNearOnesTheFirst) {
    const StationCatalogue catalogue(
        {At("A", Beside(2)), At("B", Beside(-1)), At("C", Beside(1)), At("D", Beside(1))});
    EXPECT_EQ(IdOf(catalogue.Find(kHere, {5, Catalogo::provTutte, {}})), "B");
    EXPECT_EQ(IdOf(catalogue.Find(Beside(0.1), {5, Catalogo::provTutte, {}})), "C");
    EXPECT_EQ(IdOf(catalogue.Find(Beside(3), {5, Catalogo::provTutte, {}})), "A");
}

TEST(StationCatalogue, PositionThatIsNotFiniteHasNoStation) {
    const StationCatalogue catalogue({At("A", kHere)});
    for (const double v : {std::nan(""), HUGE_VAL, -HUGE_VAL, 1.7e200})
        for (std::size_t k = 0; k < 3; ++k) {
            Position at = kHere;
            at[k] = v;
            EXPECT_EQ(catalogue.Find(at, {1e7, Catalogo::provTutte, {}}), nullptr) << v;
        }
    EXPECT_EQ(catalogue.Find(kHere, {std::nan(""), Catalogo::provTutte, {}}), nullptr);
}

TEST(StationCatalogue, ProvinceAndFrameNarrowTheSearch) {
    std::vector<Station> stations{At("A", kHere), At("A", Beside(0.5), "IGb14"), At("B", Beside(2)),
                                  At("M", Beside(3))};
    stations[0].provincia = stations[1].provincia = Catalogo::provUD;
    stations[2].provincia = Catalogo::provGO;
    stations[3].provincia = Catalogo::provEstero;
    const StationCatalogue catalogue(std::move(stations));
    EXPECT_EQ(IdOf(catalogue.Find(kHere, {5, Catalogo::provGO, {}})), "B");
    EXPECT_EQ(IdOf(catalogue.Find(kHere, {5, Catalogo::provEstero, {}})), "M");
    EXPECT_EQ(IdOf(catalogue.Find(kHere, {5, Catalogo::provTS, {}})), "-");
    EXPECT_EQ(catalogue.Find(kHere, {5, Catalogo::provTutte, "igb14"}), &catalogue.Stations()[1]);
    EXPECT_EQ(catalogue.Find(kHere, {5, Catalogo::provTutte, "IGb1"}), nullptr);
    EXPECT_EQ(catalogue.Find(kHere, {5, Catalogo::provGO, "IGb14"}), nullptr);
}

TEST(StationCatalogue, FrameIsFoundWithoutWhatStandsInBrackets) {
    const StationCatalogue catalogue(
        {At("A", kHere, "IGS20 (inferred; no label)"), At("B", Beside(1), "IGS20")});
    const auto first = [&](std::string_view frame) {
        return IdOf(catalogue.Find(kHere, {5, Catalogo::provTutte, frame}));
    };
    EXPECT_EQ(first("IGS20"), "A");
    EXPECT_EQ(first("igs20 (INFERRED; no label)"), "A");
    for (const char* frame : {"IGS2", "IGS20 ", "IGS20 (", "IGS20 (inferred)", "IGS20 (inferred; no labels)"})
        EXPECT_EQ(first(frame), "-") << frame;
}

// One station for each, at places of their own: found under its own province, and under no other.
TEST(StationCatalogue, EveryProvinceFindsItsOwn) {
    std::vector<Station> stations;
    for (int p = Catalogo::provTutte + 1; p <= Catalogo::provEstero; ++p) {
        stations.push_back(At(std::to_string(p), Beside(p)));
        stations.back().provincia = static_cast<Catalogo::enumProvincia>(p);
    }
    const StationCatalogue catalogue(std::move(stations));
    for (int p = Catalogo::provTutte + 1; p <= Catalogo::provEstero; ++p) {
        EXPECT_EQ(IdOf(catalogue.Find(kHere, {1000, static_cast<Catalogo::enumProvincia>(p), {}})),
                  std::to_string(p));
        EXPECT_EQ(IdOf(catalogue.Find(Beside(p), {0, Catalogo::provTutte, {}})), std::to_string(p));
    }
}

TEST(StationCatalogue, NearOnesComeByDistance) {
    const StationCatalogue catalogue(
        {At("A", Beside(2)), At("B", Beside(-1)), At("C", Beside(1)), At("D", Beside(9))});
    std::string ids;
    for (const auto& hit : catalogue.Near(kHere, {5, Catalogo::provTutte, {}})) {
        ids += hit.station->id;
        EXPECT_DOUBLE_EQ(hit.distance, Distance(hit.station->position, kHere));
    }
    EXPECT_EQ(ids, "BCA");
}

TEST(StationCatalogue, RandomStationsAreFoundAsByALookAtEveryOne) {
    std::mt19937 random(11);
    const auto upTo = [&](int n) { return std::uniform_int_distribution<int>(0, n)(random); };
    long found = 0, missed = 0;
    for (long round = Scaled(300); round > 0; --round) {
        std::vector<Station> stations;
        // On a coarse raster, so that equal distances and equal positions come about.
        for (int n = upTo(60); n > 0; --n) {
            stations.push_back(At(std::to_string(n), Beside(upTo(8), upTo(8), upTo(3))));
            stations.back().provincia = static_cast<Catalogo::enumProvincia>(upTo(3));
        }
        const StationCatalogue catalogue(stations);
        for (int k = 0; k < 60; ++k) {
            const Position at = Beside(upTo(10) - 1, upTo(10) - 1, upTo(5) - 1);
            const Query query{
                static_cast<double>(upTo(4)), static_cast<Catalogo::enumProvincia>(upTo(3)), {}};
            const Station* expected = nullptr;
            double nearest = query.radius;
            std::size_t within = 0;
            for (const Station& s : catalogue.Stations()) {
                if (query.provincia != Catalogo::provTutte && s.provincia != query.provincia) continue;
                const double far = Distance(s.position, at);
                if (far <= query.radius) ++within;
                if (far < nearest || (far == nearest && !expected)) {
                    expected = &s;
                    nearest = far;
                }
            }
            ASSERT_EQ(catalogue.Find(at, query), expected);
            ASSERT_EQ(catalogue.Near(at, query).size(), within);
            ++(expected ? found : missed);
        }
    }
    EXPECT_GT(found, 100);
    EXPECT_GT(missed, 100);
}

}  // namespace
