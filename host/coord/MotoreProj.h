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

    /// Degrees and metres in, easting, northing, height out. False: PROJ gave no result.
    bool Forward(double lat, double lon, double h, double& x, double& y, double& z) const;
    bool Inverse(double x, double y, double z, double& lat, double& lon, double& h) const;

private:
    Motore(PJ* transformation, double angularUnit) : pj_(transformation), unit_(angularUnit) {}
    static std::shared_ptr<const Motore> Condiviso(const std::string& key, PJ* (*make)(const std::string&),
                                                   double angularUnit);

    PJ* pj_;
    double unit_;  // what PROJ wants for one degree
};

/// Says what is wrong with the text of a projected coordinate system; empty when it is one.
std::string CheckSistema(const std::string& crs);
