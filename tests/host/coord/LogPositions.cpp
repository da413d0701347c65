#include "tests/host/coord/LogPositions.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "tests/host/coord/CsvTable.h"
#include "tests/host/coord/ProjPeer.h"

namespace gpstest {

namespace {

std::string WholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Fields(const std::string& sentence) {
    std::vector<std::string> all;
    std::istringstream in(sentence);
    std::string field;
    while (std::getline(in, field, ',')) all.push_back(field);
    return all;
}

// Every number in a line; those run together by a sign count as two.
std::vector<double> Numbers(const std::string& line) {
    std::vector<double> all;
    const char* at = line.data();
    const char* const end = at + line.size();
    while (at < end) {
        double v = 0;
        const auto [next, error] = std::from_chars(at, end, v);
        if (error == std::errc()) {
            all.push_back(v);
            at = next;
        } else {
            ++at;
        }
    }
    return all;
}

Triple FromGeocentric(double x, double y, double z) {
    static const ProjPeer cart = ProjPeer::Operation("+proj=cart +ellps=WGS84");
    Triple t;
    if (!cart.Inverse(x, y, z, t)) throw std::runtime_error("a geocentric position without a latitude");
    return t;
}

Triple FromBaseline(const Triple& base, double e, double n, double u) {
    const std::string pipeline =
        "+proj=pipeline +step +proj=cart +ellps=WGS84 +step +proj=topocentric "
        "+ellps=WGS84 +lat_0=" +
        Num(base.a) + " +lon_0=" + Num(base.b) + " +h_0=" + Num(base.c);
    Triple t;
    if (!ProjPeer::Operation(pipeline).Inverse(e, n, u, t))
        throw std::runtime_error("a baseline without end");
    return t;
}

}  // namespace

std::vector<Triple> PositionsOfNmea(const std::string& path) {
    std::vector<Triple> all;
    std::istringstream in(WholeFile(path));
    std::string line;
    while (std::getline(in, line)) {
        const std::size_t at = line.find("GGA,");
        if (at == std::string::npos) continue;
        const std::vector<std::string> f = Fields(line.substr(at));
        // GGA, time, latitude, N or S, longitude, E or W, quality, satellites, HDOP, altitude, M, separation
        if (f.size() < 12 || f[2].find('.') != 4 || f[4].find('.') != 5) continue;
        const double lat = ToNumber(f[2].substr(0, 2)) + ToNumber(f[2].substr(2)) / 60;
        const double lon = ToNumber(f[4].substr(0, 3)) + ToNumber(f[4].substr(3)) / 60;
        const double altitude = f[9].empty() ? 0 : ToNumber(f[9]),
                     geoid = f[11].empty() ? 0 : ToNumber(f[11]);
        all.push_back({f[3] == "S" ? -lat : lat, f[5] == "W" ? -lon : lon, altitude + geoid});
    }
    return all;
}

std::vector<Triple> PositionsOfPos(const std::string& path) {
    std::vector<Triple> all;
    std::istringstream in(WholeFile(path));
    std::string line;
    bool geocentric = false, baseline = false;
    Triple base;
    while (std::getline(in, line)) {
        if (line[0] == '%') {
            geocentric = geocentric || line.find("x-ecef(m)") != std::string::npos;
            baseline = baseline || line.find("e-baseline(m)") != std::string::npos;
            if (line.find("ref pos") != std::string::npos) {
                const std::vector<double> v = Numbers(line.substr(line.find(':') + 1));
                base = {v.at(0), v.at(1), v.at(2)};
            }
            continue;
        }
        // After the time, which is a date with slashes or a week and a second.
        const bool date = line.find('/') == 4;
        const std::vector<double> v = Numbers(line.substr(date ? 23 : line.find('.') + 4));
        if (v.size() < 3) continue;
        if (geocentric)
            all.push_back(FromGeocentric(v[0], v[1], v[2]));
        else if (baseline)
            all.push_back(FromBaseline(base, v[0], v[1], v[2]));
        else
            all.push_back({v[0], v[1], v[2]});
    }
    return all;
}

}  // namespace gpstest
