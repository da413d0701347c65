#include "host/coord/MotoreProj.h"

#include <cmath>
#include <map>

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

struct FreePj {
    void operator()(PJ* p) const { proj_destroy(p); }
};
using Pj = std::unique_ptr<PJ, FreePj>;

// Never destroyed: PROJ objects of static lifetime may outlive any order of destruction.
PJ_CONTEXT* Context() {
    static PJ_CONTEXT* const context = [] {
        PJ_CONTEXT* c = proj_context_create();
        proj_log_level(c, PJ_LOG_NONE);
        proj_context_set_enable_network(c, 0);  // a field has no network, and results must not depend on one
        return c;
    }();
    return context;
}

std::string AsCrs(const std::string& definition) {
    // WKT, which may hold a PROJ string among other things, has brackets; a PROJ string never has.
    const bool projString =
        definition.find("proj=") != std::string::npos && definition.find('[') == std::string::npos;
    const bool isCrs = definition.find("type=crs") != std::string::npos;
    return projString && !isCrs ? definition + " +type=crs" : definition;
}

// A projected system itself, or one wrapped in a datum shift or a compound system.
Pj Horizontal(Pj crs) {
    while (crs) {
        switch (proj_get_type(crs.get())) {
            case PJ_TYPE_COMPOUND_CRS:
                crs.reset(proj_crs_get_sub_crs(Context(), crs.get(), 0));
                break;
            case PJ_TYPE_BOUND_CRS:
                crs.reset(proj_get_source_crs(Context(), crs.get()));
                break;
            default:
                return crs;
        }
    }
    return crs;
}

bool HasHeight(const std::string& crs) {
    Pj p(proj_create(Context(), crs.c_str()));
    if (!p) return false;
    if (proj_get_type(p.get()) == PJ_TYPE_COMPOUND_CRS) return true;
    Pj system(proj_crs_get_coordinate_system(Context(), p.get()));
    return system && proj_cs_get_axis_count(Context(), system.get()) == 3;
}

PJ* MakeProiezione(const std::string& projString) { return proj_create(Context(), projString.c_str()); }

PJ* MakeSistema(const std::string& crs) {
    if (!CheckSistema(crs).empty()) return nullptr;  // a code in the five values was not checked before
    const char* source = HasHeight(crs) ? "EPSG:4979" : "EPSG:4326";
    Pj raw(proj_create_crs_to_crs(Context(), source, crs.c_str(), nullptr));
    if (!raw) return nullptr;
    return proj_normalize_for_visualization(Context(), raw.get());  // longitude first, easting first
}

}  // namespace

std::shared_ptr<const CProiezPla::Motore> CProiezPla::Motore::DaProiezione(const std::string& projString) {
    return Condiviso(projString, MakeProiezione, false);
}

std::shared_ptr<const CProiezPla::Motore> CProiezPla::Motore::DaSistema(const std::string& crs) {
    return Condiviso(AsCrs(crs), MakeSistema, true);
}

std::shared_ptr<const CProiezPla::Motore> CProiezPla::Motore::Condiviso(const std::string& key,
                                                                        PJ* (*make)(const std::string&),
                                                                        bool ofSystem) {
    static std::map<std::string, std::weak_ptr<const Motore>> known;
    if (auto shared = known[key].lock()) return shared;
    PJ* transformation = make(key);
    if (!transformation) {
        known.erase(key);
        return nullptr;
    }
    std::shared_ptr<const Motore> motore(new Motore(transformation, ofSystem));
    if (known.size() > 256) std::erase_if(known, [](const auto& entry) { return entry.second.expired(); });
    known[key] = motore;
    return motore;
}

CProiezPla::Motore::Motore(PJ* transformation, bool ofSystem)
    : pj_(transformation), unit_(ofSystem ? 1 : kRadiansPerDegree), ofSystem_(ofSystem) {}

CProiezPla::Motore::~Motore() { proj_destroy(pj_); }

void CProiezPla::Motore::Refine(double x, double y, double z, double& lat, double& lon, double& h) const {
    constexpr double reached = 1e-7, acceptable = 1e-3;  // metres
    double xIn = x, yIn = y, zIn = z;
    for (int step = 0;; ++step) {
        double xf, yf, zf;
        Forward(lat, lon, h, xf, yf, zf);
        const double dx = x - xf, dy = y - yf, dz = z - zf;
        const double miss = std::fabs(dx) + std::fabs(dy) + std::fabs(dz);
        if (miss <= reached) return;
        if (step == 6 || !std::isfinite(miss)) {
            // Where the areas of two datum steps meet, PROJ may take one there and the other back. A position
            // that does not lead to x, y, z is none.
            if (!(miss <= acceptable)) lat = lon = h = HUGE_VAL;
            return;
        }
        xIn += dx;
        yIn += dy;
        zIn += dz;
        InverseOfProj(xIn, yIn, zIn, lat, lon, h);
    }
}

std::string WktOf(const std::string& crs) {
    const Pj p(proj_create(Context(), AsCrs(crs).c_str()));
    const char* wkt = p ? proj_as_wkt(Context(), p.get(), PJ_WKT2_2019, nullptr) : nullptr;
    return wkt ? wkt : "";
}

std::string CheckSistema(const std::string& crs) {
    Pj p(proj_create(Context(), AsCrs(crs).c_str()));
    if (!p || !proj_is_crs(p.get()))
        return "'" + crs +
               "' is not a coordinate system that PROJ knows: give EPSG:code, a PROJ string or WKT";
    const Pj horizontal = Horizontal(std::move(p));
    const PJ_TYPE type = horizontal ? proj_get_type(horizontal.get()) : PJ_TYPE_UNKNOWN;
    if (type == PJ_TYPE_GEOCENTRIC_CRS)
        return "'" + crs + "' is a geocentric system: give a projected one, with easting and northing";
    if (type == PJ_TYPE_GEOGRAPHIC_2D_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS ||
        type == PJ_TYPE_GEODETIC_CRS)
        return "'" + crs + "' is a geographic system: give a projected one, with easting and northing";
    if (type != PJ_TYPE_PROJECTED_CRS)
        return "'" + crs + "' is not a projected coordinate system: give one with easting and northing";
    return {};
}
