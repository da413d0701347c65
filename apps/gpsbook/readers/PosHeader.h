// The header lines of an RTKLIB solution file: how its rows are to be read.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "apps/gpsbook/readers/Epoch.h"
#include "apps/gpsbook/readers/FieldText.h"

namespace gpsbook {

/// What the three coordinates of a row are.
enum class PosCoordinates : std::uint8_t {
    unknown,
    geographic,     // latitude, longitude in degrees, height
    geographicDms,  // the same with degrees, minutes and seconds in columns of their own
    geocentric,     // X, Y, Z
    baseline        // east, north, up from the base, in its local frame
};

/// The time scale of the rows.
enum class PosTimeScale : std::uint8_t { gpst, utc, jst, unknown };

/// The header lines read so far, as one description of the rows that follow.
///
/// The line of column titles names the time scale and the coordinates; the line in brackets names
/// coordinates, datum and kind of height. Either is enough for the coordinates. Without column titles the
/// time scale is GPST, which is what the program writes unless told otherwise.
struct PosHeader {
    PosCoordinates coordinates = PosCoordinates::unknown;
    PosTimeScale timeScale = PosTimeScale::gpst;
    bool isWgs84 = true;        // false: another datum
    bool isEllipsoidal = true;  // false: heights above the geoid
    bool hasAge = true;         // rows have an age column
    bool hasRatio = true;       // rows have a ratio column
    bool hasBase = false;
    double baseLat = GPS_VAL_UNSET;       // degrees, WGS 84
    double baseLon = GPS_VAL_UNSET;       // degrees, WGS 84
    double baseHeight = GPS_VAL_UNSET;    // metres, ellipsoidal
    double baseAntenna = GPS_VAL_UNSET;   // metres, up component of antenna 2
    double roverAntenna = GPS_VAL_UNSET;  // metres, up component of antenna 1

    /// True for a line that tells something; other lines with '%' are comments.
    static bool Knows(std::string_view line);

    /// Takes a header line, with its '%'. On error: the fault; what the line was to tell stays as it was.
    std::optional<Fault> Take(std::string_view line);

private:
    std::optional<Fault> TakeReference(std::string_view text);
    void TakeTitles(std::string_view line);
    void TakeKind(std::string_view line);
};

}  // namespace gpsbook
