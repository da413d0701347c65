// Setters of points and groups: equal values are nobody's business, new ones are stored and reported once.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

#include "gps/model/CGrpGps.h"
#include "gps/model/CPunGps.h"
#include "platform/base/GpsValues.h"
#include "tests/gps/model/ChangeWatch.h"

namespace {

using test::ChangeWatch;

/// One setter with its getter. `flag` 0: stored without a report.
template <class Object, class T>
struct Setter {
    const char* name;
    void (Object::*set)(T);
    T (Object::*get)() const;
    std::uint32_t flag;
};

template <class Object, class T>
class Check {
public:
    Check(Object& object, const Setter<Object, T>& row) : object_(object), row_(row) {}

    /// Sets a value and expects it stored, with one report of the row's flag.
    void Reports(T value) {
        Set(value);
        if (value == value) {
            EXPECT_EQ(Get(), value) << row_.name;
        } else {
            EXPECT_NE(Get(), Get()) << row_.name;
        }
        if (row_.flag == 0) {
            EXPECT_EQ(calls_, ChangeWatch::Calls{}) << row_.name;
        } else {
            EXPECT_EQ(calls_, (ChangeWatch::Calls{{&object_, row_.flag}})) << row_.name << ' ' << +value;
        }
    }

    /// Sets a value that is there already and expects no report.
    void IsSilent(T value) {
        Set(value);
        EXPECT_EQ(calls_, ChangeWatch::Calls{}) << row_.name << ' ' << +value;
    }

    T Get() const { return (object_.*row_.get)(); }

private:
    void Set(T value) {
        ChangeWatch watch;
        (object_.*row_.set)(value);
        calls_ = watch.Take();
    }

    Object& object_;
    const Setter<Object, T>& row_;
    ChangeWatch::Calls calls_;
};

template <class Object, class T>
void CheckSetter(Object& object, const Setter<Object, T>& row, T initial) {
    Check<Object, T> check(object, row);
    EXPECT_EQ(check.Get(), initial) << row.name;
    check.IsSilent(initial);
    for (const T value : {static_cast<T>(1), std::numeric_limits<T>::max(), std::numeric_limits<T>::lowest(),
                          static_cast<T>(2)}) {
        check.Reports(value);
        check.IsSilent(value);
    }
    EXPECT_EQ(object.GetCloudFlag(), row.flag) << row.name << ": the mask holds this bit and no other";
    if constexpr (std::is_floating_point_v<T>) {
        check.Reports(0);
        check.IsSilent(static_cast<T>(-0.0));
        EXPECT_FALSE(std::signbit(check.Get())) << row.name << ": a negative zero over zero is not stored";
        check.Reports(std::numeric_limits<T>::quiet_NaN());
        check.Reports(std::numeric_limits<T>::quiet_NaN());  // not a number is always a change
        check.Reports(5);
    }
}

TEST(PointSetters, OfRealValuesCompareAndReport) {
    const Setter<CPunGps, double> rows[] = {
        {"Lat", &CPunGps::SetLat, &CPunGps::GetLat, 0x100},
        {"Long", &CPunGps::SetLong, &CPunGps::GetLong, 0x200},
        {"Elev", &CPunGps::SetElev, &CPunGps::GetElev, 0x400},
        {"AltAnt", &CPunGps::SetAltAnt, &CPunGps::GetAltAnt, 0x800},
        {"Pdop", &CPunGps::SetPdop, &CPunGps::GetPdop, 0x1000},
        {"Gdop", &CPunGps::SetGdop, &CPunGps::GetGdop, 0x2000},
        {"HposRms", &CPunGps::SetHposRms, &CPunGps::GetHposRms, 0x4000},
        {"VposRms", &CPunGps::SetVposRms, &CPunGps::GetVposRms, 0x8000},
    };
    for (const auto& row : rows) {
        CPunGps point(nullptr, false, nullptr);
        CheckSetter(point, row, GPS_VAL_UNSET);
    }
}

TEST(PointSetters, OfCovariancesReportAllButTheClockTerms) {
    const Setter<CPunGps, float> rows[] = {
        {"PosCov_xx", &CPunGps::SetPosCov_xx, &CPunGps::GetPosCov_xx, 0x10000},
        {"PosCov_yy", &CPunGps::SetPosCov_yy, &CPunGps::GetPosCov_yy, 0x10000},
        {"PosCov_zz", &CPunGps::SetPosCov_zz, &CPunGps::GetPosCov_zz, 0x10000},
        {"PosCov_xy", &CPunGps::SetPosCov_xy, &CPunGps::GetPosCov_xy, 0x10000},
        {"PosCov_xz", &CPunGps::SetPosCov_xz, &CPunGps::GetPosCov_xz, 0x10000},
        {"PosCov_yz", &CPunGps::SetPosCov_yz, &CPunGps::GetPosCov_yz, 0x10000},
        {"PosCov_tt", &CPunGps::SetPosCov_tt, &CPunGps::GetPosCov_tt, 0},
        {"PosCov_xt", &CPunGps::SetPosCov_xt, &CPunGps::GetPosCov_xt, 0},
        {"PosCov_yt", &CPunGps::SetPosCov_yt, &CPunGps::GetPosCov_yt, 0},
        {"PosCov_zt", &CPunGps::SetPosCov_zt, &CPunGps::GetPosCov_zt, 0},
    };
    for (const auto& row : rows) {
        CPunGps point(nullptr, false, nullptr);
        CheckSetter(point, row, 0.0f);
    }
}

TEST(PointSetters, OfWholeNumbersCompareAndReport) {
    CPunGps year(nullptr, false, nullptr), tod(year), qua(year);
    CheckSetter(year, Setter<CPunGps, unsigned short>{"Year", &CPunGps::SetYear, &CPunGps::GetYear, 0x10},
                static_cast<unsigned short>(0));
    CheckSetter(tod, Setter<CPunGps, std::uint32_t>{"Tod", &CPunGps::SetTod, &CPunGps::GetTod, 0x10}, 0u);
    CheckSetter(qua, Setter<CPunGps, int>{"Qua", &CPunGps::SetQua, &CPunGps::GetQua, 0x20}, 0);
    const Setter<CPunGps, unsigned char> rows[] = {
        {"Month", &CPunGps::SetMonth, &CPunGps::GetMonth, 0x10},
        {"Day", &CPunGps::SetDay, &CPunGps::GetDay, 0x10},
        {"NuGpsUsed", &CPunGps::SetNuGpsUsed, &CPunGps::GetNuGpsUsed, 0x40},
        {"NuGloUsed", &CPunGps::SetNuGloUsed, &CPunGps::GetNuGloUsed, 0x80},
    };
    for (const auto& row : rows) {
        CPunGps point(nullptr, false, nullptr);
        CheckSetter(point, row, static_cast<unsigned char>(0));
    }
}

TEST(GroupSetters, CompareAndReport) {
    const Setter<CGrpGps, double> reals[] = {
        {"BaseLat", &CGrpGps::SetBaseLat, &CGrpGps::GetBaseLat, 0x80},
        {"BaseLong", &CGrpGps::SetBaseLong, &CGrpGps::GetBaseLong, 0x100},
        {"BaseElev", &CGrpGps::SetBaseElev, &CGrpGps::GetBaseElev, 0x200},
        {"BaseAltAnt", &CGrpGps::SetBaseAltAnt, &CGrpGps::GetBaseAltAnt, 0x400},
    };
    for (const auto& row : reals) {
        CGrpGps group(nullptr, false, nullptr, 0);
        CheckSetter(group, row, GPS_VAL_UNSET);
    }
    const Setter<CGrpGps, unsigned char> types[] = {
        {"TipoRilievo", &CGrpGps::SetTipoRilievo, &CGrpGps::GetTipoRilievo, 0x20},
        {"TipoRicevitore", &CGrpGps::SetTipoRicevitore, &CGrpGps::GetTipoRicevitore, 0x40},
    };
    for (const auto& row : types) {
        CGrpGps group(nullptr, false, nullptr, 0);
        CheckSetter(group, row, static_cast<unsigned char>(0));
    }
    CGrpGps group(nullptr, false, nullptr, 0);
    CheckSetter(group,
                Setter<CGrpGps, short>{"CodeElab", &CGrpGps::SetCodeElab, &CGrpGps::GetCodeElab, 0x800},
                static_cast<short>(0));
}

// --- what points and groups have in common -----------------------------------------------------------------

template <class T>
T Make();
template <>
CPunGps Make<CPunGps>() {
    return CPunGps(nullptr, false, nullptr);
}
template <>
CGrpGps Make<CGrpGps>() {
    return CGrpGps(nullptr, false, nullptr, 0);
}

template <class T>
class EntitySetters : public testing::Test {
protected:
    ChangeWatch::Calls One(std::uint32_t flag) const { return {{&entity, flag}}; }

    T entity = Make<T>();
    ChangeWatch watch;
    const ChangeWatch::Calls none{};
};

using Entities = testing::Types<CPunGps, CGrpGps>;
TYPED_TEST_SUITE(EntitySetters, Entities);

TYPED_TEST(EntitySetters, NameComparesAndReports) {
    this->entity.SetNome("");
    EXPECT_EQ(this->watch.Take(), this->none);
    this->entity.SetNome("P1");
    EXPECT_EQ(this->watch.Take(), this->One(0x1));
    this->entity.SetNome(std::string("P1"));
    this->entity.SetNome(this->entity.GetNome());
    EXPECT_EQ(this->watch.Take(), this->none);
    this->entity.SetNome("p1");
    EXPECT_EQ(this->watch.Take(), this->One(0x1));
    EXPECT_EQ(this->entity.GetNome(), "p1");
}

TYPED_TEST(EntitySetters, SecondaryTextComparesAndReports) {
    this->entity.SetSecScri("");
    EXPECT_EQ(this->watch.Take(), this->none);
    this->entity.SetSecScri("tree");
    EXPECT_EQ(this->watch.Take(), this->One(0x2));
    this->entity.SetSecScri(std::string("tree"));
    this->entity.SetSecScri(this->entity.GetSecScri());
    EXPECT_EQ(this->watch.Take(), this->none);
    EXPECT_EQ(this->entity.GetSecScri(), "tree");
}

TYPED_TEST(EntitySetters, OneChangedCoordinateIsAChange) {
    this->entity.DoSetCoord(GPS_VAL_UNSET, GPS_VAL_UNSET, GPS_VAL_UNSET);
    EXPECT_EQ(this->watch.Take(), this->none);
    this->entity.DoSetCoord(1, 2, 3);
    EXPECT_EQ(this->watch.Take(), this->One(0x4));
    this->entity.DoSetCoord(1, 2, 3);
    EXPECT_EQ(this->watch.Take(), this->none);

    struct Row {
        const char* name;
        double x, y, z;
    };
    const Row rows[] = {{"z", 1, 2, 4}, {"y", 1, 5, 4}, {"x", 6, 5, 4}};
    for (const Row& row : rows) {
        this->entity.DoSetCoord(row.x, row.y, row.z);
        EXPECT_EQ(this->watch.Take(), this->One(0x4)) << row.name;
        EXPECT_EQ(this->entity.GetCoordX(), row.x) << row.name;
        EXPECT_EQ(this->entity.GetCoordY(), row.y) << row.name;
        EXPECT_EQ(this->entity.GetCoordZ(), row.z) << row.name;
    }
}

TYPED_TEST(EntitySetters, CoordinateThatIsNotANumberIsAlwaysAChange) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double rows[][3] = {{nan, 2, 3}, {1, nan, 3}, {1, 2, nan}};
    for (const auto& row : rows) {
        this->entity.DoSetCoord(row[0], row[1], row[2]);
        EXPECT_EQ(this->watch.Take(), this->One(0x4));
        this->entity.DoSetCoord(row[0], row[1], row[2]);
        EXPECT_EQ(this->watch.Take(), this->One(0x4));
    }
}

TYPED_TEST(EntitySetters, NegativeZeroCoordinatesOverZeroAreNotStored) {
    this->entity.DoSetCoord(0, 0, 0);
    this->watch.Take();
    this->entity.DoSetCoord(-0.0, -0.0, -0.0);
    EXPECT_EQ(this->watch.Take(), this->none);
    EXPECT_FALSE(std::signbit(this->entity.GetCoordX()));
    EXPECT_FALSE(std::signbit(this->entity.GetCoordY()));
    EXPECT_FALSE(std::signbit(this->entity.GetCoordZ()));
}

TYPED_TEST(EntitySetters, SetCoordReportsThroughTheVirtualOperation) {
    CEgn& base = this->entity;
    base.SetCoord(1, 2, 3);
    EXPECT_EQ(this->watch.Take(), this->One(0x4));
    base.SetCoord(1, 2, 3);
    EXPECT_EQ(this->watch.Take(), this->none);
}

TYPED_TEST(EntitySetters, CodeIsReducedTo32BitsBeforeItIsCompared) {
    this->entity.SetCodeEgn(0);
    EXPECT_EQ(this->watch.Take(), this->none);
    this->entity.SetCodeEgn(0xFFFFFFFFFFFFFFFF);
    EXPECT_EQ(this->watch.Take(), this->One(0x8));
    EXPECT_EQ(this->entity.GetCodeEgn(), 0xFFFFFFFFu);
    this->entity.SetCodeEgn(0xFFFFFFFFFFFFFFFF);
    this->entity.SetCodeEgn(0xFFFFFFFF);
    this->entity.SetCodeEgn(0x1234'FFFFFFFF);
    EXPECT_EQ(this->watch.Take(), this->none) << "the same 32 bits";
    this->entity.SetCodeEgn(0x1'0000'0000);
    EXPECT_EQ(this->watch.Take(), this->One(0x8));
    EXPECT_EQ(this->entity.GetCodeEgn(), 0u);
}

TYPED_TEST(EntitySetters, WithReportingOffValuesAreStoredAndNoBitIsKept) {
    this->entity.SetCloudNotify(false);
    this->entity.SetNome("P1");
    this->entity.DoSetCoord(1, 2, 3);
    EXPECT_EQ(this->watch.Take().size(), 2u) << "the calls are made all the same";
    EXPECT_EQ(this->entity.GetNome(), "P1");
    EXPECT_EQ(this->entity.GetCloudFlag(), 0u);
}

}  // namespace
