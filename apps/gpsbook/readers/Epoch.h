// What a log reader delivers: accepted epochs, and rejected lines with their reasons.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/GpsValues.h"

namespace gpsbook {

/// How good a solution is, comparable between formats whose own codes are not ordered alike.
enum class Grade : std::uint8_t { estimated = 1, single = 2, dgps = 3, floating = 4, fixed = 5 };

/// One position of a log, complete enough to become a point.
struct Epoch {
    std::int64_t line = 0;          // of the position sentence or row in its file, from 1
    int year = 0;                   // UTC date
    int month = 0;                  // 1 to 12
    int day = 0;                    // 1 to 31
    std::uint32_t todMs = 0;        // UTC time of day, milliseconds; a leap second counts from 86400000
    double lat = GPS_VAL_UNSET;     // degrees, WGS 84, north positive
    double lon = GPS_VAL_UNSET;     // degrees, WGS 84, east positive, -180 to 180
    double height = GPS_VAL_UNSET;  // metres above the ellipsoid, of what the file holds
    int quality = 0;                // the file's own code, as delivered
    Grade grade = Grade::estimated;
    int satGps = 0;               // GPS satellites used; all systems together where the file has only a total
    int satGlonass = 0;           // GLONASS satellites used
    double pdop = GPS_VAL_UNSET;  // dimensionless
    double hrms = GPS_VAL_UNSET;  // metres, horizontal: sqrt(var_east + var_north)
    double vrms = GPS_VAL_UNSET;  // metres, vertical
    bool hasCov = false;
    /// Geocentric covariance xx, yy, zz, xy, xz, yz in square metres; valid when hasCov.
    std::array<double, 6> cov{};
};

/// Why an epoch, or a sentence that would have belonged to one, was not used.
enum class Reason : std::uint8_t {
    badChecksum,
    missingChecksum,
    cutLine,     // ends too early, or runs into the next sentence
    emptyField,  // a field that a point needs is empty
    badNumber,   // not a number, or not finite
    noFix,       // quality 0
    noDate,
    badTime,         // a time or date that does not exist
    latitudeRange,   // beyond 90 degrees
    longitudeRange,  // beyond 180 degrees
    noSeparation,    // altitude without geoid separation: no ellipsoidal height
    count_
};

/// The reason as text for people: "bad checksum", "cut line", ...
std::string_view ReasonText(Reason r);

/// What a file says about itself and its base; complete when the first epoch is delivered.
struct LogHeader {
    std::string format;  // "NMEA 0183", "RTKLIB pos"
    bool hasBase = false;
    double baseLat = GPS_VAL_UNSET;       // degrees, WGS 84
    double baseLon = GPS_VAL_UNSET;       // degrees, WGS 84
    double baseHeight = GPS_VAL_UNSET;    // metres, ellipsoidal, as printed
    double baseAntenna = GPS_VAL_UNSET;   // metres, up component of the base's antenna offset
    double roverAntenna = GPS_VAL_UNSET;  // metres, up component of the rover's antenna offset
};

/// Receives what a reader finds, in the order of the file.
class EpochSink {
public:
    virtual ~EpochSink() = default;

    /// A usable epoch.
    virtual void Accept(const Epoch& epoch) = 0;

    /// An epoch that cannot become a point: it is counted under its reason.
    /// `detail` names the field or shows the text, for `--verbose`; valid during the call.
    virtual void Reject(Reason reason, std::int64_t line, std::string_view detail) = 0;

    /// A damaged line that is no position of its own (a date, precision or satellite sentence, a header
    /// line).
    virtual void Ignore(Reason reason, std::int64_t line, std::string_view detail) = 0;
};

/// A reader of one log, fed in pieces of any size.
class LogReader {
public:
    virtual ~LogReader() = default;

    /// Takes the next bytes of the file.
    virtual void Feed(std::string_view bytes) = 0;

    /// The end of the file: delivers what was still held back.
    virtual void Finish() = 0;

    /// What the file has said about itself so far.
    virtual const LogHeader& Header() const = 0;
};

}  // namespace gpsbook
