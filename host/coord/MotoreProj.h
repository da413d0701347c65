// What projections of one definition share: a transformation object of PROJ.
#pragma once

#include <proj.h>

#include <memory>
#include <string>

#include "platform/coord/CProiezPla.h"

/// Wraps one PROJ object; the only place of the system that calls PROJ for a conversion.
class CProiezPla::Motore {
public:
    /// The object of a projection on an ellipsoid, given as a PROJ string; null when PROJ refuses it.
    static std::shared_ptr<const Motore> DaProiezione(const std::string& projString);

    /// The object from WGS 84 to a coordinate system, datum step included; null when PROJ refuses it.
    static std::shared_ptr<const Motore> DaSistema(const std::string& crs);

    ~Motore();
    Motore(const Motore&) = delete;
    Motore& operator=(const Motore&) = delete;

    /// Degrees and metres in, easting, northing, height out; infinite where PROJ gives no result.
    void Forward(double lat, double lon, double h, double& x, double& y, double& z) const {
        // Made in place: a call of proj_coord costs more than the rest of this function.
        const PJ_COORD out = proj_trans(pj_, PJ_FWD, PJ_COORD{{lon * unit_, lat * unit_, h, 0}});
        x = out.xyz.x;
        y = out.xyz.y;
        z = out.xyz.z;
    }

    /// The inverse; infinite where PROJ gives no result.
    void Inverse(double x, double y, double z, double& lat, double& lon, double& h) const {
        InverseOfProj(x, y, z, lat, lon, h);
        if (ofSystem_) Refine(x, y, z, lat, lon, h);
    }

private:
    Motore(PJ* transformation, bool ofSystem);
    static std::shared_ptr<const Motore> Condiviso(const std::string& key, PJ* (*make)(const std::string&),
                                                   bool ofSystem);

    void InverseOfProj(double x, double y, double z, double& lat, double& lon, double& h) const {
        const PJ_COORD out = proj_trans(pj_, PJ_INV, proj_coord(x, y, z, 0));
        lat = out.lpz.phi / unit_;
        lon = out.lpz.lam / unit_;
        h = out.lpz.z;
    }

    /// PROJ turns the seven parameters of a datum step round by changing their signs, which is not their
    /// inverse: a position would come back some tenths of a millimetre beside itself. What is missing in the
    /// plane (metres) is made up for until the forward direction returns to x, y, z; the result is infinite
    /// when it does not.
    void Refine(double x, double y, double z, double& lat, double& lon, double& h) const;

    PJ* pj_;
    double unit_;    // what PROJ wants for one degree
    bool ofSystem_;  // from WGS 84 to a coordinate system: there may be a datum step
};

/// The WKT (2019) of a coordinate system; empty when it has none.
std::string WktOf(const std::string& crs);

/// Says what is wrong with the text of a projected coordinate system; empty when it is one.
std::string CheckSistema(const std::string& crs);
