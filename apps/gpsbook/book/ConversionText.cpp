#include "apps/gpsbook/book/ConversionText.h"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <vector>

#include "apps/gpsbook/writers/Columns.h"
#include "gps/model/CGrpGps.h"
#include "platform/coord/CLibMap.h"

namespace gpsbook {

namespace {

using Json = nlohmann::ordered_json;

Json Number(double v) { return HasValue(v) ? Json(v) : Json(nullptr); }

Json DatumJson(const CDatumConv* datum) {
    if (!datum) return nullptr;
    bool fromStd = false;
    double c[7];
    datum->GetCoeff(fromStd, c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
    Json coefficients = Json::array();
    for (const double v : c) coefficients.push_back(Number(v));
    return {{"name", datum->GetNome()},
            {"direction", fromStd ? "from WGS 84" : "to WGS 84"},
            {"coefficients", coefficients},
            {"identity", datum->IsIdentity()}};
}

// The datum that fixes are measured in; null for WGS 84 or where the library has none.
const CDatumConv* MeasuredDatum(const CConvCoord& conversion) {
    switch (conversion.GetTpDtBaseGps()) {
        case CConvCoord::dtProprio:
            return conversion.GetConvDtBaseGps();
        case CConvCoord::dtLibreria: {
            CLibMap* map = conversion.GetLibMap();
            return map && map->GetTpDtBaseGps() != 0 ? map->GetConvDtBaseGps() : nullptr;
        }
        default:
            return nullptr;
    }
}

const CDatumConv* ProjectDatum(const CConvCoord& conversion) {
    const CLibMap* map = conversion.GetLibMap();
    if (!conversion.GetImpFlag() || !map) return nullptr;
    return map->GetDatAt(conversion.GetImp(CConvCoord::impDatSel1), conversion.GetImp(CConvCoord::impDatSel2),
                         conversion.GetImp(CConvCoord::impDatIndice));
}

const char* ProjectionName(int type) {
    switch (type) {
        case TpProiezPla::nessuna:
            return "none";
        case TpProiezPla::mercatoreTrasversa:
            return "transverse Mercator";
        case TpProiezPla::lambert1SP:
            return "Lambert conformal conic, one parallel";
        case TpProiezPla::lambert2SP:
            return "Lambert conformal conic, two parallels";
        case TpProiezPla::stereografica:
            return "stereographic";
        case TpProiezPla::stereograficaObliqua:
            return "oblique stereographic";
        case TpProiezPla::definizione:
            return "by definition";
        default:
            return "unknown";
    }
}

Json ProjectionJson(const CProiezPla& projection) {
    const std::string definition = projection.GetDefinizione();
    Json values = Json::array();
    for (const double v : projection.GetValues()) values.push_back(Number(v));
    return {{"type", projection.GetType()},
            {"name", ProjectionName(projection.GetType())},
            {"definition", definition.empty() ? Json(nullptr) : Json(definition)},
            {"values", values}};
}

Json LocalJson(const CConvLocal& local) {
    if (!local.IsRotoTrasSet()) return nullptr;
    double o[4];
    local.GetOrigin(o[0], o[1], o[2], o[3]);
    return {{"origin", {Number(o[0]), Number(o[1])}},
            {"local_origin", {Number(o[2]), Number(o[3])}},
            {"scale", Number(local.GetScala())},
            {"rotation", Number(local.GetAngRot())}};
}

Json HeightJson(const CConvAltez& height) {
    double c[3];
    height.GetCoeff(c[0], c[1], c[2]);
    const int type = height.GetTpCalcPt();
    const char* name = type == CConvAltez::tpNessuno    ? "ellipsoidal"
                       : type == CConvAltez::tpCostante ? "constant"
                       : type == CConvAltez::tpPiano    ? "plane"
                                                        : "unknown";
    return {{"type", type},
            {"name", name},
            {"coefficients", {Number(c[0]), Number(c[1]), Number(c[2])}},
            {"projection", ProjectionJson(height.GetProiezPla())}};
}

std::string DatumText(const CDatumConv* datum, const char* otherwise) {
    if (!datum) return otherwise;
    bool fromStd = false;
    double c[7];
    datum->GetCoeff(fromStd, c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
    const std::string name = datum->GetNome().empty() ? "" : "\"" + datum->GetNome() + "\", ";
    if (datum->IsIdentity()) return name + "the same as WGS 84";
    return fmt::format("{}{} WGS 84: {} {} {} m, {} {} {} \", {} ppm", name, fromStd ? "from" : "to", c[0],
                       c[1], c[2], c[3], c[4], c[5], c[6]);
}

}  // namespace

std::string ConversionText(const CGrpGps& group) {
    const CConvCoord& conversion = *group.GetConvCoord();
    const CProiezPla& projection = conversion.GetConvLocal()->GetProiezPla();
    std::string out =
        fmt::format("  usable: {}\n", group.IsCdElabValid()           ? "yes"
                                      : conversion.IsConvCoordReady() ? "no, bit 0 of the "
                                                                        "processing code is not set"
                                                                      : "no, it is not set up");
    out += fmt::format("  measured datum: {}\n", DatumText(MeasuredDatum(conversion), "WGS 84"));
    if (conversion.GetImpFlag())
        out += fmt::format("  project's datum: {}\n",
                           DatumText(ProjectDatum(conversion), "one that the map library does not have"));
    out += fmt::format("  plane projection: {}", ProjectionName(projection.GetType()));
    if (const std::string definition = projection.GetDefinizione(); !definition.empty()) {
        out += ", " + definition;
    } else if (projection.GetType() != TpProiezPla::nessuna) {
        for (const double v : projection.GetValues()) out += fmt::format(" {}", v);
    }
    const CConvLocal& local = *conversion.GetConvLocal();
    if (local.IsRotoTrasSet()) {
        double o[4];
        local.GetOrigin(o[0], o[1], o[2], o[3]);
        out += fmt::format("\n  local system: {} {} to {} {}, scale {}, rotation {} degrees", o[0], o[1],
                           o[2], o[3], local.GetScala(), local.GetAngRot());
    }
    const Json height = HeightJson(*conversion.GetConvAltez());
    out += fmt::format("\n  heights: {}", height["name"].get<std::string>());
    if (conversion.GetConvAltez()->GetTpCalcPt() != CConvAltez::tpNessuno)
        for (const Json& c : height["coefficients"]) out += " " + c.dump();
    return out + "\n";
}

Json ConversionJson(const CGrpGps& group) {
    const CConvCoord& conversion = *group.GetConvCoord();
    return {{"ready", conversion.IsConvCoordReady()},
            {"usable", group.IsCdElabValid()},
            {"measured_datum_type", conversion.GetTpDtBaseGps()},
            {"measured_datum", DatumJson(MeasuredDatum(conversion))},
            {"project_datum", DatumJson(ProjectDatum(conversion))},
            {"ellipsoid", conversion.GetImp(CConvCoord::impEllissoide)},
            {"projection", ProjectionJson(conversion.GetConvLocal()->GetProiezPla())},
            {"local", LocalJson(*conversion.GetConvLocal())},
            {"heights", HeightJson(*conversion.GetConvAltez())}};
}

}  // namespace gpsbook
