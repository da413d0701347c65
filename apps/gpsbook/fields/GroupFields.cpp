// The table of all fields of a group.
#include "apps/gpsbook/fields/EntityFields.h"
#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CGrpGps.h"

namespace gpsbook {

namespace {

using V = FieldValue;
using Fields = std::vector<GroupField>;
using G = CGrpGps;

template <double (G::*Get)() const, void (G::*Set)(double)>
GroupField RealField(const FieldInfo& info) {
    return {info, [](G& g) { return V((g.*Get)()); }, [](G& g, const V& v) { (g.*Set)(Real(v)); }};
}

template <const std::string& (G::*Get)() const, void (G::*Set)(const std::string&)>
GroupField TextField(const char* name, const char* help) {
    return {{name, FieldKind::text, "", 0, 0, 0, Feeds::nothing, help},
            [](G& g) { return V((g.*Get)()); },
            [](G& g, const V& v) { (g.*Set)(Text(v)); }};
}

template <class T, T (G::*Get)() const, void (G::*Set)(T)>
GroupField WholeField(const FieldInfo& info) {
    return {info, [](G& g) { return V(static_cast<std::int64_t>((g.*Get)())); },
            [](G& g, const V& v) { (g.*Set)(Whole<T>(v)); }};
}

FieldInfo WholeInfo(const char* name, double low, double high, const char* help) {
    return {name, FieldKind::whole, "", low, high, 0, Feeds::nothing, help};
}

FieldInfo RealInfo(const char* name, const char* help) {
    return {name, FieldKind::real, "", -1e15, 1e15, 9, Feeds::nothing, help};
}

V CrsOf(G& g) {
    if (!g.GetConvCoord()->IsConvCoordReady()) return {};
    const std::string crs = g.GetConvCoord()->GetConvLocal()->GetProiezPla().GetDefinizione();
    return crs.empty() ? V{} : V(crs);
}

// A system makes the conversion ready and the processing code valid; without one both are not.
void SetCrs(G& g, const V& v) {
    CConvCoord& conversion = *g.GetConvCoord();
    const bool set = IsSet(v);
    std::string why;
    if (set)
        conversion.GetConvLocal()->SetDefinizione(Text(v), why);
    else
        conversion.GetConvLocal()->SetTpProiezPlaEx(TpProiezPla::nessuna, 0, 0, 0, 0, 0);
    conversion.SetImp(CConvCoord::impPronta, set ? 1 : 0);
    g.SetCodeElab(static_cast<short>(set ? g.GetCodeElab() | 1 : g.GetCodeElab() & ~1));
}

void AppendNames(Fields& f) {
    f.push_back({{"name", FieldKind::text, "", 0, 0, 0, Feeds::nothing,
                  "name of the group; the entity gets the same"},
                 [](G& g) { return V(g.GetNomeGrp()); },
                 [](G& g, const V& v) {
                     g.SetNomeGrp(Text(v));
                     g.SetNome(Text(v));
                 }});
    f.push_back({{"entity_name", FieldKind::text, "", 0, 0, 0, Feeds::nothing,
                  "name of the base as a drawing entity, when it is to be another"},
                 [](G& g) { return V(g.GetNome()); },
                 [](G& g, const V& v) { g.SetNome(Text(v)); }});
    f.push_back({{"code", FieldKind::text, "", 0, 0, 0, Feeds::nothing, "second text of the entity"},
                 [](G& g) { return V(g.GetSecScri()); },
                 [](G& g, const V& v) { g.SetSecScri(Text(v)); }});
    f.push_back(TextField<&G::GetOper, &G::SetOper>("operator", "operator"));
    f.push_back(TextField<&G::GetStrum, &G::SetStrum>("instrument", "instrument"));
    f.push_back(TextField<&G::GetData, &G::SetData>("date", "date of the survey, best as 2024-05-01"));
    f.push_back(TextField<&G::GetLocalita, &G::SetLocalita>("place", "place"));
}

void AppendBase(Fields& f) {
    constexpr FieldKind real = FieldKind::real;
    constexpr Feeds plane = Feeds::plane;
    f.push_back(RealField<&G::GetBaseLat, &G::SetBaseLat>(
        {"base_lat", real, "degrees", -90, 90, kDegreeDecimals, plane,
         "latitude of the base in the measured datum, north positive"}));
    f.push_back(
        RealField<&G::GetBaseLong, &G::SetBaseLong>({"base_lon", real, "degrees", -180, 180, kDegreeDecimals,
                                                     plane, "longitude of the base, east positive"}));
    f.push_back(RealField<&G::GetBaseElev, &G::SetBaseElev>(
        {"base_h", real, "metres", kLowestHeight, kHighestHeight, kMetreDecimals, plane,
         "height of the base's phase centre above the ellipsoid"}));
    f.push_back(RealField<&G::GetBaseAltAnt, &G::SetBaseAltAnt>({"base_antenna", real, "metres", 0,
                                                                 kHighestAntenna, kMetreDecimals, plane,
                                                                 "the base's phase centre above its mark"}));
    AppendPlaneFields(f);
    f.push_back({{"crs", FieldKind::crs, "", 0, 0, 0, Feeds::groupPlanes,
                  "plane system: EPSG:code, a PROJ string, WKT or a whole name"},
                 CrsOf,
                 SetCrs});
    f.push_back(WholeField<short, &G::GetCodeElab, &G::SetCodeElab>(
        {"processing_code", FieldKind::whole, "", -32768, 32767, 0, Feeds::groupPlanes,
         "processing code; bit 0: the conversion counts as valid"}));
}

void AppendOthers(Fields& f) {
    f.push_back(WholeField<unsigned char, &G::GetTipoRilievo, &G::SetTipoRilievo>(
        WholeInfo("survey_type", 0, 255, "survey type")));
    f.push_back(WholeField<unsigned char, &G::GetTipoRicevitore, &G::SetTipoRicevitore>(
        WholeInfo("receiver_type", 0, 255, "receiver type")));
    AppendEntityFields(f);
    f.push_back(RealField<&G::GetGrpFactorA, &G::SetGrpFactorA>(RealInfo("factor_a", "first factor, kept")));
    f.push_back(RealField<&G::GetGrpFactorB, &G::SetGrpFactorB>(RealInfo("factor_b", "second factor, kept")));
    f.push_back(RealField<&G::GetBaseSpare1, &G::SetBaseSpare1>(RealInfo("spare1", "spare value, kept")));
    f.push_back(RealField<&G::GetBaseSpare2, &G::SetBaseSpare2>(RealInfo("spare2", "spare value, kept")));
    f.push_back(RealField<&G::GetBaseSpare3, &G::SetBaseSpare3>(RealInfo("spare3", "spare value, kept")));
    f.push_back({{"flag", FieldKind::flag, "", 0, 0, 0, Feeds::nothing, "reserved flag, kept as it is"},
                 [](G& g) { return V(g.GetGrpFlagRis()); },
                 [](G& g, const V& v) { g.SetGrpFlagRis(std::get<bool>(v)); }});
    f.push_back(WholeField<std::uint32_t, &G::GetGrpRis32, &G::SetGrpRis32>(
        WholeInfo("reserved", 0, kLargest32, "reserved value, kept as it is")));
    f.push_back(WholeField<long long, &G::GetTargetDrawing, &G::SetTargetDrawing>(
        WholeInfo("target_drawing", -0x1p63, 0x1p63, "drawing of the group's entities, 0 for none")));
    f.push_back(WholeField<int, &G::GetCloudCreatorDevId, &G::SetCloudCreatorDevId>(
        WholeInfo("creator_device", -2147483648.0, 2147483647, "device that made the group in the cloud")));
}

}  // namespace

std::span<const GroupField> GroupFields() {
    static const Fields table = [] {
        Fields fields;
        AppendNames(fields);
        AppendBase(fields);
        AppendOthers(fields);
        return fields;
    }();
    return table;
}

}  // namespace gpsbook
