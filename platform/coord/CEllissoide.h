// CEllissoide: geographic and geocentric coordinates on one ellipsoid of revolution.
#pragma once

#include "platform/base/PlatformExport.h"

/// An ellipsoid of revolution with the two conversions between geographic and geocentric coordinates.
///
/// Frame: right-handed, origin at the centre, Z towards the north pole, X through the Greenwich meridian.
/// Units: degrees for angles (latitude north positive, longitude east positive), metres for lengths.
/// Formulas: the closed form forward; Bowring's formula with the reduced latitude, iterated, backward
/// (B. R. Bowring, Transformation from spatial to geographical coordinates, Survey Review 23, 1976).
/// Accuracy: there and back again within 1e-6 m for heights from -5,000 km to 20,000 km.
/// Cheap to make: nothing is allocated; callers make one on the stack for every call.
class GPS_PLATFORM_API CEllissoide {
public:
    /// Default: WGS 84 (semi-major axis 6378137 m, inverse flattening 298.257223563).
    CEllissoide();

    /// Requires: `a` > 0 (metres); `invFlattening` > 1, or 0 for a sphere.
    CEllissoide(double a, double invFlattening);
    ~CEllissoide() = default;

    /// Geographic (degrees, degrees, metres) to geocentric (metres).
    /// On error (a value that is not finite or a latitude beyond 90 degrees): false; the outputs hold what
    /// the formulas give, NaN included. Nothing traps.
    bool GrafToGeoc(double lat, double lon, double h, double& x, double& y, double& z) const;

    /// Geocentric (metres) to geographic (degrees, degrees, metres). Longitude in (-180, 180]; on the polar
    /// axis longitude is 0; at the centre latitude is 90.
    /// On error (a value that is not finite): false; the outputs hold what the formulas give.
    bool GeocToGraf(double x, double y, double z, double& lat, double& lon, double& h) const;

    /// Semi-major axis, metres.
    double GetSemiAsse() const { return a_; }

    /// First eccentricity squared, dimensionless: e2 = f (2 - f).
    double GetE2() const { return e2_; }

private:
    double a_;   // metres
    double e2_;  // dimensionless
};
