#include "platform/coord/CEllissoide.h"

#include <cmath>

namespace {

constexpr double kRad = 3.14159265358979323846 / 180.0;
constexpr double kWgs84A = 6378137.0;
constexpr double kWgs84InvF = 298.257223563;

double EccentricitySquared(double invFlattening) {
    const double f = invFlattening > 1 ? 1 / invFlattening : 0;
    return f * (2 - f);
}

bool AllFinite(double a, double b, double c) {
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c);
}

}  // namespace

CEllissoide::CEllissoide() : CEllissoide(kWgs84A, kWgs84InvF) {}

CEllissoide::CEllissoide(double a, double invFlattening) : a_(a), e2_(EccentricitySquared(invFlattening)) {}

bool CEllissoide::GrafToGeoc(double lat, double lon, double h, double& x, double& y, double& z) const {
    const bool ok = AllFinite(lat, lon, h) && std::fabs(lat) <= 90;
    const double phi = lat * kRad, lambda = lon * kRad;
    const double s = std::sin(phi), c = std::cos(phi);
    const double n = a_ / std::sqrt(1 - e2_ * s * s);  // radius of curvature in the prime vertical
    x = (n + h) * c * std::cos(lambda);
    y = (n + h) * c * std::sin(lambda);
    z = (n * (1 - e2_) + h) * s;
    return ok;
}

bool CEllissoide::GeocToGraf(double x, double y, double z, double& lat, double& lon, double& h) const {
    const bool ok = AllFinite(x, y, z);
    const double p = std::sqrt(x * x + y * y);
    const double b = a_ * std::sqrt(1 - e2_);
    const double ep2 = e2_ / (1 - e2_);  // second eccentricity squared

    // Sine and cosine of the latitude, refined through those of the reduced latitude: no trigonometry
    // in the loop, and the axis (p = 0) needs no case of its own. Two steps stay within the class
    // comment's accuracy, worst deep below the surface; the first start is exact on the surface itself.
    double sBeta = z * a_, cBeta = p * b;
    double sPhi = 0, cPhi = 0;
    for (int step = 0; step < 2; ++step) {
        const double r = std::sqrt(sBeta * sBeta + cBeta * cBeta);
        sBeta = r > 0 ? sBeta / r : 1;
        cBeta = r > 0 ? cBeta / r : 0;
        sPhi = z + ep2 * b * sBeta * sBeta * sBeta;
        cPhi = p - e2_ * a_ * cBeta * cBeta * cBeta;
        sBeta = sPhi * b;
        cBeta = cPhi * a_;
    }
    const double r = std::sqrt(sPhi * sPhi + cPhi * cPhi);
    const double s = r == 0 ? 1 : sPhi / r, c = r == 0 ? 0 : cPhi / r;  // r is 0 at the centre of a sphere
    lat = std::atan2(s, c) / kRad;
    lon = p == 0 ? 0 : std::atan2(y, x) / kRad;  // atan2 looks at the signs of zeros
    if (lon == -180) lon = 180;
    h = p * c + z * s - a_ * std::sqrt(1 - e2_ * s * s);
    return ok;
}
