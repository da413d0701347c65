#include "platform/coord/CProiezPla.h"

#include <charconv>
#include <cmath>

#include "host/coord/MotoreProj.h"
#include "platform/base/GpsValues.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

std::string Number(double v) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, v).ptr};
}

std::string Ellipsoid(double a, double rf) {
    return rf > 1 ? " +a=" + Number(a) + " +rf=" + Number(rf) : " +R=" + Number(a);
}

// Set, and a number that a computation can use: not NaN, not infinite.
bool Usable(double v) { return std::fabs(v) < GPS_VAL_SET_LIMIT; }

// The projection alone, as PROJ writes it; empty when there is none.
std::string ProjString(int type, const CProiezPla::Values& p, double a, double rf) {
    // PROJ reads a text that is no number as 0, which is a projection, but not the one that was meant.
    if (!Usable(a) || !Usable(rf)) return {};
    for (const double v : p)
        if (!Usable(v)) return {};
    std::string text;
    switch (type) {
        case TpProiezPla::mercatoreTrasversa:
            text = "+proj=tmerc +lat_0=" + Number(p[0]);
            break;
        case TpProiezPla::lambert1SP:
            text = "+proj=lcc +lat_0=" + Number(p[0]) + " +lat_1=" + Number(p[0]);
            break;
        case TpProiezPla::lambert2SP:
            return "+proj=lcc +lat_0=" + Number(p[0]) + " +lat_1=" + Number(p[0]) +
                   " +lat_2=" + Number(p[4]) + " +lon_0=" + Number(p[1]) + " +x_0=" + Number(p[2]) +
                   " +y_0=" + Number(p[3]) + Ellipsoid(a, rf);
        case TpProiezPla::stereografica:
            text = "+proj=stere +lat_0=" + Number(p[0]);
            break;
        case TpProiezPla::stereograficaObliqua:
            text = "+proj=sterea +lat_0=" + Number(p[0]);
            break;
        default:
            return {};
    }
    return text + " +lon_0=" + Number(p[1]) + " +x_0=" + Number(p[2]) + " +y_0=" + Number(p[3]) +
           " +k_0=" + Number(p[4]) + Ellipsoid(a, rf);
}

// 0: the text is no EPSG code.
int EpsgCode(const std::string& text) {
    constexpr std::string_view prefix = "EPSG:";
    if (text.size() <= prefix.size()) return 0;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        const char c = text[i];
        const char upper = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        if (upper != prefix[i]) return 0;
    }
    int code = 0;
    const char* end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data() + prefix.size(), end, code);
    return error == std::errc() && at == end && code > 0 ? code : 0;
}

bool Failed(double& a, double& b, double& c) {
    a = b = c = GPS_VAL_UNSET;
    return false;
}

bool Usable(double a, double b, double c) { return Usable(a) && Usable(b) && Usable(c); }

}  // namespace

CProiezPla::CProiezPla() : a_(6378137.0), rf_(298.257223563) {}
CProiezPla::CProiezPla(const CProiezPla&) = default;
CProiezPla& CProiezPla::operator=(const CProiezPla&) = default;
CProiezPla::~CProiezPla() = default;

bool CProiezPla::Set(int type, const Values& values) {
    bool changed = type_ != type || !text_.empty();
    for (std::size_t i = 0; i < values.size(); ++i) changed = changed || p_[i] != values[i];
    if (!changed) return false;
    type_ = type;
    p_ = values;
    text_.clear();
    made_ = false;
    return true;
}

bool CProiezPla::SetEllissoide(double a, double invFlattening) {
    if (!(a_ != a) && !(rf_ != invFlattening)) return false;
    a_ = a;
    rf_ = invFlattening;
    made_ = false;
    return true;
}

bool CProiezPla::SetLambert2SP(double lat0, double lon0, double lat1, double lat2, double fe, double fn) {
    CProiezPla atOrigin(*this);
    atOrigin.Set(TpProiezPla::lambert2SP, {lat1, lon0, 0, 0, lat2});
    double x = 0, y = 0, z = 0;
    if (!atOrigin.GrafToPlan(lat0, lon0, 0, x, y, z)) return false;
    Set(TpProiezPla::lambert2SP, {lat1, lon0, fe, fn - y, lat2});  // y: northing of the origin above lat1
    return true;
}

bool CProiezPla::SetDefinizione(const std::string& definition, std::string& why) {
    why = CheckSistema(definition);
    if (!why.empty()) return false;
    const int code = EpsgCode(definition);
    Set(TpProiezPla::definizione, {static_cast<double>(code), 0, 0, 0, 0});
    if (code == 0) text_ = definition;
    made_ = false;
    return true;
}

std::string CProiezPla::GetDefinizione() const {
    if (type_ != TpProiezPla::definizione) return {};
    if (!text_.empty()) return text_;
    const double code = p_[0];
    if (!(code >= 1 && code <= 1e9) || code != std::floor(code)) return {};
    return "EPSG:" + std::to_string(static_cast<long>(code));
}

std::string CProiezPla::GetSistema() const {
    if (type_ == TpProiezPla::definizione) return GetDefinizione();
    const std::string proj = ProjString(type_, p_, a_, rf_);
    return proj.empty() ? proj : proj + " +units=m +no_defs +type=crs";
}

std::string CProiezPla::GetWkt() const {
    const std::string system = GetSistema();
    return system.empty() ? system : WktOf(system);
}

const CProiezPla::Motore* CProiezPla::GetMotore() const {
    if (!made_) {
        const std::string text =
            type_ == TpProiezPla::definizione ? GetDefinizione() : ProjString(type_, p_, a_, rf_);
        motore_.reset();
        if (!text.empty())
            motore_ =
                type_ == TpProiezPla::definizione ? Motore::DaSistema(text) : Motore::DaProiezione(text);
        made_ = true;
    }
    return motore_.get();
}

bool CProiezPla::GrafToPlan(double lat, double lon, double h, double& x, double& y, double& z) const {
    const Motore* motore = GetMotore();
    if (!motore || !(std::fabs(lat) <= 90) || !Usable(lon) || !Usable(h)) return Failed(x, y, z);
    motore->Forward(lat, lon, h, x, y, z);
    return Usable(x, y, z) ? true : Failed(x, y, z);
}

bool CProiezPla::PlanToGraf(double x, double y, double z, double& lat, double& lon, double& h) const {
    const Motore* motore = GetMotore();
    if (!motore || !Usable(x, y, z)) return Failed(lat, lon, h);
    motore->Inverse(x, y, z, lat, lon, h);
    return Usable(lat, lon, h) ? true : Failed(lat, lon, h);
}

void CProiezPla::SalvaInFile(ofpstream& out) const {
    out.WriteInt(type_);
    for (const double p : p_) out.WriteDouble(p);
    out.WriteString(text_);
}

void CProiezPla::LeggeDaFile(ifpstream& in) {
    type_ = in.ReadInt();
    for (double& p : p_) p = in.ReadDouble();
    // Taken as it is: a definition that this installation does not know must survive a load and a save.
    in.ReadString(text_);
    made_ = false;
}
