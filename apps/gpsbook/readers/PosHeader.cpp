#include "apps/gpsbook/readers/PosHeader.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "platform/coord/CEllissoide.h"

namespace gpsbook {

namespace {

enum class LineKind : std::uint8_t { comment, program, reference, roverAntenna, baseAntenna, kind, titles };

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// A header line without '%' and blanks, and the part before its first ':'.
std::string_view Content(std::string_view line) { return Trimmed(line.substr(1)); }
std::string_view KeyOf(std::string_view line) {
    const std::string_view content = Content(line);
    const std::size_t colon = content.find(':');
    return colon == std::string_view::npos ? std::string_view{} : Trimmed(content.substr(0, colon));
}

LineKind KindOfLine(std::string_view line) {
    const std::string_view key = KeyOf(line);
    if (key == "program") return LineKind::program;
    if (key == "ref pos") return LineKind::reference;
    if (key == "antenna1") return LineKind::roverAntenna;
    if (key == "antenna2") return LineKind::baseAntenna;
    for (const std::string_view title : {"latitude(", "x-ecef(", "e-baseline("}) {
        if (Contains(line, title)) return LineKind::titles;
    }
    for (const std::string_view kind : {"lat/lon/height=", "x/y/z-ecef=", "e/n/u-baseline="}) {
        if (Contains(line, kind)) return LineKind::kind;
    }
    return LineKind::comment;
}

// Numbers in a row, up to `most`. Fixed columns leave no blank before a minus sign ("40.08-105.2"), so a sign
// begins a number, too. Returns how many there are, 0 when something else stands between.
template <std::size_t most>
std::size_t ReadNumbers(std::string_view text, std::array<double, most>& numbers) {
    constexpr std::string_view separators = " \t,;";
    std::size_t count = 0;
    for (;;) {
        const std::size_t begin = text.find_first_not_of(separators);
        if (begin == std::string_view::npos) return count;
        text.remove_prefix(begin);
        const std::size_t end = text.find_first_of(" \t,;+-", 1);
        const std::string_view number = text.substr(0, end);
        if (count == most || !ParseNumber(number, numbers[count])) return 0;
        ++count;
        text.remove_prefix(number.size());
    }
}

bool IsPlace(double lat, double lon) { return lat >= -90.0 && lat <= 90.0 && lon >= -180.0 && lon <= 180.0; }

// The up component of an antenna line: "name ( east north up )". On error: false.
bool ReadAntennaUp(std::string_view text, double& up) {
    const std::size_t open = text.rfind('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return false;
    std::array<double, 3> enu{};
    if (ReadNumbers(text.substr(open + 1, close - open - 1), enu) != 3) return false;
    up = enu[2];
    return true;
}

}  // namespace

bool PosHeader::Knows(std::string_view line) { return KindOfLine(line) != LineKind::comment; }

std::optional<Fault> PosHeader::Take(std::string_view line) {
    const std::size_t colon = line.find(':');
    const std::string_view value =
        colon == std::string_view::npos ? std::string_view{} : line.substr(colon + 1);
    switch (KindOfLine(line)) {
        case LineKind::reference:
            return TakeReference(value);
        case LineKind::roverAntenna:
            if (!ReadAntennaUp(value, roverAntenna)) return Fault{Reason::badNumber, "antenna1"};
            break;
        case LineKind::baseAntenna:
            if (!ReadAntennaUp(value, baseAntenna)) return Fault{Reason::badNumber, "antenna2"};
            break;
        case LineKind::kind:
            TakeKind(line);
            break;
        case LineKind::titles:
            TakeTitles(line);
            break;
        case LineKind::program:
        case LineKind::comment:
            break;
    }
    return std::nullopt;
}

// Latitude, longitude and height; the same with degrees, minutes and seconds; or X, Y, Z: only these are
// longer than 1000 km.
std::optional<Fault> PosHeader::TakeReference(std::string_view text) {
    constexpr double kShortestRadius = 1e6;  // metres
    std::array<double, 7> n{};
    const std::size_t count = ReadNumbers(text, n);
    double lat = n[0];
    double lon = n[1];
    double height = n[2];
    if (count == 7) {
        if (!DegreesOfDms(n[0], n[1], n[2], lat) || !DegreesOfDms(n[3], n[4], n[5], lon)) {
            return Fault{Reason::badNumber, "ref pos"};
        }
        height = n[6];
    } else if (count != 3) {
        return Fault{Reason::badNumber, "ref pos"};
    } else if (std::hypot(n[0], n[1], n[2]) > kShortestRadius) {
        if (!CEllissoide().GeocToGraf(n[0], n[1], n[2], lat, lon, height)) {
            return Fault{Reason::badNumber, "ref pos"};
        }
    }
    if (!IsPlace(lat, lon)) return Fault{Reason::badNumber, "ref pos"};
    hasBase = true;
    baseLat = lat;
    baseLon = lon;
    baseHeight = height;
    return std::nullopt;
}

// "(lat/lon/height=WGS84/ellipsoidal,Q=1:fix,...)"
void PosHeader::TakeKind(std::string_view line) {
    PosCoordinates named = PosCoordinates::geographic;
    if (Contains(line, "x/y/z-ecef=")) named = PosCoordinates::geocentric;
    if (Contains(line, "e/n/u-baseline=")) named = PosCoordinates::baseline;
    coordinates = named;
    isWgs84 = Contains(line, "=WGS84");
    isEllipsoidal = !(named == PosCoordinates::geographic && Contains(line, "/geodetic"));
}

// "%  GPST   latitude(deg) longitude(deg)  height(m)   Q  ns ... age(s)  ratio"
void PosHeader::TakeTitles(std::string_view line) {
    if (Contains(line, "latitude(")) {
        coordinates =
            Contains(line, "latitude(d'") ? PosCoordinates::geographicDms : PosCoordinates::geographic;
    } else if (Contains(line, "x-ecef(")) {
        coordinates = PosCoordinates::geocentric;
    } else {
        coordinates = PosCoordinates::baseline;
    }
    const std::string_view content = Content(line);
    const std::string_view scale = content.substr(0, content.find_first_of(" \t,;"));
    timeScale = PosTimeScale::unknown;
    if (scale == "GPST") timeScale = PosTimeScale::gpst;
    if (scale == "UTC") timeScale = PosTimeScale::utc;
    if (scale == "JST") timeScale = PosTimeScale::jst;
    hasAge = Contains(line, "age(");
    hasRatio = Contains(line, "ratio");
}

}  // namespace gpsbook
