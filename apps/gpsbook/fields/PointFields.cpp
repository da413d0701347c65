// The table of all fields of a point.
#include "apps/gpsbook/fields/EntityFields.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CPunGps.h"

namespace gpsbook {

namespace {

using V = FieldValue;
using Fields = std::vector<PointField>;

// A real that a pair of members gets and sets.
template <double (CPunGps::*Get)() const, void (CPunGps::*Set)(double)>
PointField RealField(const FieldInfo& info) {
    return {info, [](CPunGps& p) { return V((p.*Get)()); },
            [](CPunGps& p, const V& v) { (p.*Set)(Real(v)); }};
}

template <float (CPunGps::*Get)() const, void (CPunGps::*Set)(float)>
PointField Covariance(const char* name, bool variance, const char* unit, const char* help) {
    return {{name, FieldKind::single, unit, variance ? 0 : -1e15, 1e15, 0, Feeds::nothing, help},
            [](CPunGps& p) { return V((p.*Get)()); },
            [](CPunGps& p, const V& v) { (p.*Set)(std::get<float>(v)); }};
}

template <class T, T (CPunGps::*Get)() const, void (CPunGps::*Set)(T)>
PointField WholeField(const char* name, double low, double high, const char* unit, const char* help) {
    return {{name, FieldKind::whole, unit, low, high, 0, Feeds::nothing, help},
            [](CPunGps& p) { return V(static_cast<std::int64_t>((p.*Get)())); },
            [](CPunGps& p, const V& v) { (p.*Set)(Whole<T>(v)); }};
}

V TimeOf(CPunGps& p) {
    PointRow row;
    row.year = p.GetYear();
    row.month = p.GetMonth();
    row.day = p.GetDay();
    row.todMs = p.GetTod();
    if (!HasTime(row)) return {};
    return UtcTime{{row.year, row.month, row.day}, row.todMs};
}

void SetTime(CPunGps& p, const V& v) {
    const UtcTime time = IsSet(v) ? std::get<UtcTime>(v) : UtcTime{};
    p.SetYear(static_cast<unsigned short>(time.date.year));
    p.SetMonth(static_cast<unsigned char>(time.date.month));
    p.SetDay(static_cast<unsigned char>(time.date.day));
    p.SetTod(time.todMs);
}

// One of the three values of the base that the point remembers.
template <int I>
PointField BaseField(const FieldInfo& info) {
    return {info,
            [](CPunGps& p) {
                double base[3];
                p.GetGrafBase(base[0], base[1], base[2]);
                return V(base[I]);
            },
            [](CPunGps& p, const V& v) {
                double base[3];
                p.GetGrafBase(base[0], base[1], base[2]);
                base[I] = Real(v);
                p.SetGrafBase(base[0], base[1], base[2]);
            }};
}

void AppendFix(Fields& f) {
    using P = CPunGps;
    constexpr FieldKind real = FieldKind::real;
    constexpr Feeds plane = Feeds::plane;
    f.push_back({{"name", FieldKind::text, "", 0, 0, 0, Feeds::nothing, "name"},
                 [](P& p) { return V(p.GetNome()); },
                 [](P& p, const V& v) { p.SetNome(Text(v)); }});
    f.push_back({{"code", FieldKind::text, "", 0, 0, 0, Feeds::nothing, "code"},
                 [](P& p) { return V(p.GetCode()); },
                 [](P& p, const V& v) { p.SetCode(Text(v)); }});
    f.push_back({{"time", FieldKind::time, "", 0, 0, 0, Feeds::nothing, "date and time of the fix, UTC"},
                 TimeOf,
                 SetTime});
    f.push_back(RealField<&P::GetLat, &P::SetLat>({"lat", real, "degrees", -90, 90, kDegreeDecimals, plane,
                                                   "latitude in the measured datum, north positive"}));
    f.push_back(RealField<&P::GetLong, &P::SetLong>(
        {"lon", real, "degrees", -180, 180, kDegreeDecimals, plane, "longitude, east positive"}));
    f.push_back(RealField<&P::GetElev, &P::SetElev>({"h", real, "metres", kLowestHeight, kHighestHeight,
                                                     kMetreDecimals, plane,
                                                     "height of the phase centre above the ellipsoid"}));
    f.push_back(
        RealField<&P::GetAltAnt, &P::SetAltAnt>({"antenna", real, "metres", 0, kHighestAntenna,
                                                 kMetreDecimals, plane, "phase centre above the mark"}));
    AppendPlaneFields(f);
    f.push_back(WholeField<int, &P::GetQua, &P::SetQua>("quality", -2147483648.0, 2147483647, "",
                                                        "code of the solution, as it was measured"));
    f.push_back(WholeField<unsigned char, &P::GetNuGpsUsed, &P::SetNuGpsUsed>("gps", 0, 255, "",
                                                                              "GPS satellites used"));
    f.push_back(WholeField<unsigned char, &P::GetNuGloUsed, &P::SetNuGloUsed>("glonass", 0, 255, "",
                                                                              "GLONASS satellites used"));
    f.push_back(RealField<&P::GetPdop, &P::SetPdop>(
        {"pdop", real, "", 0, 1e6, kDopDecimals, Feeds::nothing, "position dilution of precision"}));
    f.push_back(RealField<&P::GetHposRms, &P::SetHposRms>(
        {"hrms", real, "metres", 0, 1e6, kMetreDecimals, Feeds::nothing, "horizontal precision"}));
    f.push_back(RealField<&P::GetVposRms, &P::SetVposRms>(
        {"vrms", real, "metres", 0, 1e6, kMetreDecimals, Feeds::nothing, "vertical precision"}));
}

void AppendPrecision(Fields& f) {
    using P = CPunGps;
    const char* const squared = "square metres";
    f.push_back(RealField<&P::GetGdop, &P::SetGdop>({"gdop", FieldKind::real, "", 0, 1e6, kDopDecimals,
                                                     Feeds::nothing, "geometric dilution of precision"}));
    const char* const variance = "variance, geocentric";
    const char* const covariance = "covariance, geocentric";
    const char* const clock = "the same with the clock as a length";
    f.push_back(Covariance<&P::GetPosCov_xx, &P::SetPosCov_xx>("cov_xx", true, squared, variance));
    f.push_back(Covariance<&P::GetPosCov_yy, &P::SetPosCov_yy>("cov_yy", true, squared, variance));
    f.push_back(Covariance<&P::GetPosCov_zz, &P::SetPosCov_zz>("cov_zz", true, squared, variance));
    f.push_back(Covariance<&P::GetPosCov_tt, &P::SetPosCov_tt>("cov_tt", true, squared, clock));
    f.push_back(Covariance<&P::GetPosCov_xy, &P::SetPosCov_xy>("cov_xy", false, squared, covariance));
    f.push_back(Covariance<&P::GetPosCov_xz, &P::SetPosCov_xz>("cov_xz", false, squared, covariance));
    f.push_back(Covariance<&P::GetPosCov_xt, &P::SetPosCov_xt>("cov_xt", false, squared, clock));
    f.push_back(Covariance<&P::GetPosCov_yz, &P::SetPosCov_yz>("cov_yz", false, squared, covariance));
    f.push_back(Covariance<&P::GetPosCov_yt, &P::SetPosCov_yt>("cov_yt", false, squared, clock));
    f.push_back(Covariance<&P::GetPosCov_zt, &P::SetPosCov_zt>("cov_zt", false, squared, clock));
}

void AppendOthers(Fields& f) {
    using P = CPunGps;
    constexpr FieldKind real = FieldKind::real;
    f.push_back(BaseField<0>({"base_lat", real, "degrees", -90, 90, kDegreeDecimals, Feeds::nothing,
                              "latitude of the base that the point was measured from"}));
    f.push_back(BaseField<1>(
        {"base_lon", real, "degrees", -180, 180, kDegreeDecimals, Feeds::nothing, "longitude of that base"}));
    f.push_back(BaseField<2>({"base_h", real, "metres", kLowestHeight, kHighestHeight, kMetreDecimals,
                              Feeds::nothing, "height of that base's phase centre"}));
    f.push_back({{"primary_duplicate", FieldKind::flag, "", 0, 0, 0, Feeds::nothing,
                  "the first of points measured twice"},
                 [](P& p) { return V(p.IsPrimaryPtDup()); },
                 [](P& p, const V& v) { p.SetIsPrimaryPtDup(std::get<bool>(v)); }});
    f.push_back({{"secondary_duplicate", FieldKind::flag, "", 0, 0, 0, Feeds::nothing,
                  "another of points measured twice"},
                 [](P& p) { return V(p.IsSecondaryPtDup()); },
                 [](P& p, const V& v) { p.SetIsSecondaryPtDup(std::get<bool>(v)); }});
    AppendEntityFields(f);
    f.push_back(WholeField<std::uint32_t, &P::GetPunRis32, &P::SetPunRis32>("reserved", 0, kLargest32, "",
                                                                            "reserved value, kept as it is"));
    f.push_back(WholeField<unsigned short, &P::GetYear, &P::SetYear>("year", 0, 9999, "",
                                                                     "year of the time as it is stored"));
    f.push_back(WholeField<unsigned char, &P::GetMonth, &P::SetMonth>("month", 0, 12, "", "month of it"));
    f.push_back(WholeField<unsigned char, &P::GetDay, &P::SetDay>("day", 0, 31, "", "day of it"));
    f.push_back(WholeField<std::uint32_t, &P::GetTod, &P::SetTod>(
        "tod", 0, 86'400'999, "milliseconds", "time of day of it; a leap second counts from 86400000"));
}

}  // namespace

std::span<const PointField> PointFields() {
    static const Fields table = [] {
        Fields fields;
        AppendFix(fields);
        AppendPrecision(fields);
        AppendOthers(fields);
        return fields;
    }();
    return table;
}

}  // namespace gpsbook
