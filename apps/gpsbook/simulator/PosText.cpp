#include "apps/gpsbook/simulator/PosText.h"

#include <fmt/format.h>

#include <cmath>
#include <iterator>

#include "platform/coord/CEllissoide.h"

namespace gpsbook {

namespace {

std::string GpsTime(std::int64_t gpsMs) {
    const UtcTime t = FromGpsMs(gpsMs);  // of the GPS scale: it has no leap seconds
    return fmt::format("{:04}/{:02}/{:02} {:02}:{:02}:{:02}.{:03}", t.date.year, t.date.month, t.date.day,
                       t.todMs / 3600000, t.todMs / 60000 % 60, t.todMs / 1000 % 60, t.todMs % 1000);
}

double SignedRoot(double c) { return std::copysign(std::sqrt(std::fabs(c)), c); }

/// Rounded to units of 1 / `perUnit`, so that nothing is shown as -0.0000.
double Rounded(double v, double perUnit) { return std::round(v * perUnit) / perUnit + 0.0; }

std::string Lengths(const Vector3& v) {
    return fmt::format("{:14.4f} {:14.4f} {:14.4f}", Rounded(v[0], 1e4), Rounded(v[1], 1e4),
                       Rounded(v[2], 1e4));
}

/// The precision columns of a diagonal and the other three, in metres.
std::string Precision(const Covariance& cov) {
    std::string text;
    for (const double c : cov) text += fmt::format(" {:8.4f}", Rounded(SignedRoot(c), 1e4));
    return text;
}

}  // namespace

void AppendPosHeader(std::string& out, const SimulationOptions& options) {
    const auto line = [&](const std::string& text) { out += "% " + text + "\n"; };
    line("program   : gpsbook simulate");
    line("antenna1  :                       ( 0.0000  0.0000  0.0000)");
    line("antenna2  :                       ( 0.0000  0.0000  0.0000)");
    const char* quality = "Q=1:fix,2:float,3:sbas,4:dgps,5:single,6:ppp,ns=# of satellites";
    const std::string geographic =
        fmt::format("{:.9f} {:.9f} {:.4f}", options.baseLat, options.baseLon, options.baseHeight);
    if (options.form == LogForm::posXyz) {
        Vector3 base{};
        CEllissoide().GrafToGeoc(options.baseLat, options.baseLon, options.baseHeight, base[0], base[1],
                                 base[2]);
        line(fmt::format("ref pos   : {:.4f} {:.4f} {:.4f}", base[0], base[1], base[2]));
        out += fmt::format("%\n% (x/y/z-ecef=WGS84,{})\n", quality);
        line(
            " GPST                      x-ecef(m)      y-ecef(m)      z-ecef(m)   Q  ns   sdx(m)   sdy(m)   "
            "sdz(m)"
            "  sdxy(m)  sdyz(m)  sdzx(m) age(s)  ratio");
    } else if (options.form == LogForm::posEnu) {
        line("ref pos   : " + geographic);
        out += fmt::format("%\n% (e/n/u-baseline=WGS84,{})\n", quality);
        line(
            " GPST                  e-baseline(m)  n-baseline(m)  u-baseline(m)   Q  ns   sde(m)   sdn(m)   "
            "sdu(m)"
            "  sden(m)  sdnu(m)  sdue(m) age(s)  ratio");
    } else {
        line("ref pos   : " + geographic);
        out += fmt::format("%\n% (lat/lon/height=WGS84/ellipsoidal,{})\n", quality);
        line(
            " GPST                  latitude(deg) longitude(deg)  height(m)   Q  ns   sdn(m)   sde(m)   "
            "sdu(m)"
            "  sdne(m)  sdeu(m)  sdun(m) age(s)  ratio");
    }
}

void AppendPosRow(std::string& out, const SimulatedEpoch& epoch, const SimulationOptions& options) {
    const double variance = epoch.sigma * epoch.sigma;
    // East and north are alike, so that one matrix serves whichever of the two comes first.
    const Covariance enu{variance, variance, epoch.sigmaUp * epoch.sigmaUp, 0.0, 0.0, 0.0};
    std::string place;
    std::string precision = Precision(enu);
    if (options.form == LogForm::posXyz) {
        place = Lengths(epoch.xyz);
        const Covariance c = LocalFrame(epoch.lat, epoch.lon).CovToGeocentric(enu);
        precision = Precision({c[0], c[1], c[2], c[3], c[5], c[4]});  // the columns go xy, yz, zx
    } else if (options.form == LogForm::posEnu) {
        place = Lengths(epoch.enu);
    } else {
        place = fmt::format("{:14.9f} {:14.9f} {:10.4f}", Rounded(epoch.lat, 1e9), Rounded(epoch.lon, 1e9),
                            Rounded(epoch.h, 1e4));
    }
    const int quality = epoch.solution == Solution::fixed ? 1 : epoch.solution == Solution::floating ? 2 : 5;
    fmt::format_to(std::back_inserter(out), "{} {} {:3} {:3}{} {:6.2f} {:6.1f}\n", GpsTime(epoch.gpsMs),
                   place, quality, epoch.gps + epoch.glonass, precision,
                   epoch.solution == Solution::single ? 0.0 : 1.0, epoch.ratio);
}

}  // namespace gpsbook
