// Vectors and covariances between the local east/north/up frame of a place and the geocentric frame.
#pragma once

#include <array>

namespace gpsbook {

/// A vector: east, north, up or X, Y, Z; metres.
using Vector3 = std::array<double, 3>;

/// A symmetric covariance matrix in square metres: 11, 22, 33, 12, 13, 23, with the axes
/// 1, 2, 3 = east, north, up or X, Y, Z.
using Covariance = std::array<double, 6>;

/// The local frame at a latitude and a longitude: east, north, up along the ellipsoid's normal.
/// The geocentric frame is right-handed, Z towards the north pole, X through the Greenwich meridian.
/// With B, L the latitude and longitude, the columns of R are the unit vectors east, north, up:
///   R = | -sin L   -sin B cos L   cos B cos L |
///       |  cos L   -sin B sin L   cos B sin L |
///       |    0          cos B         sin B   |
///   XYZ = R ENU,   ENU = R' XYZ,   C_xyz = R C_enu R',   C_enu = R' C_xyz R
/// (B. Hofmann-Wellenhof, H. Lichtenegger, J. Collins, GPS Theory and Practice, section on local-level
/// frames).
class LocalFrame {
public:
    /// Degrees; north and east positive.
    LocalFrame(double lat, double lon);

    /// XYZ = R ENU; metres.
    Vector3 ToGeocentric(const Vector3& enu) const;

    /// C_xyz = R C_enu R'; square metres.
    Covariance CovToGeocentric(const Covariance& enu) const;

    /// C_enu = R' C_xyz R; square metres.
    Covariance CovToLocal(const Covariance& xyz) const;

private:
    std::array<Vector3, 3> r_;  // rows of R
};

/// sqrt(var_east + var_north), metres. A variance that rounding left below zero counts as zero.
double HorizontalRms(const Covariance& enu);

/// sqrt(var_up), metres. A variance that rounding left below zero counts as zero.
double VerticalRms(const Covariance& enu);

}  // namespace gpsbook
