#include "apps/gpsbook/readers/PosReader.h"

#include <cmath>

#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/readers/Grades.h"
#include "apps/gpsbook/readers/LeapSeconds.h"
#include "apps/gpsbook/readers/LocalFrame.h"
#include "platform/coord/CEllissoide.h"

namespace gpsbook {

namespace {

constexpr std::int64_t kJstMs = 9 * 3'600'000;  // JST - UTC, milliseconds

// How many columns the three coordinates take.
std::size_t CoordinateColumns(PosCoordinates kind) { return kind == PosCoordinates::geographicDms ? 7 : 3; }

// ---- time

// A time as printed: milliseconds from the GPS epoch in the scale of the file. A second 60 is kept apart,
// since only UTC has one.
struct PrintedTime {
    std::int64_t gpsMs = 0;
    bool isLeapSecond = false;  // gpsMs is then that of the second before
};

// "yyyy/mm/dd" "hh:mm:ss.sss"
std::optional<Fault> ReadCalendarTime(std::string_view day, std::string_view time, PrintedTime& printed) {
    const std::size_t slash1 = day.find('/');
    const std::size_t slash2 = day.find('/', slash1 + 1);
    const std::size_t colon1 = time.find(':');
    const std::size_t colon2 = colon1 == std::string_view::npos ? colon1 : time.find(':', colon1 + 1);
    if (slash2 == std::string_view::npos) return Fault{Reason::badNumber, "date"};
    if (colon2 == std::string_view::npos) return Fault{Reason::badNumber, "time"};
    CivilDate date;
    if (!ParseCount(day.substr(0, slash1), date.year) ||
        !ParseCount(day.substr(slash1 + 1, slash2 - slash1 - 1), date.month) ||
        !ParseCount(day.substr(slash2 + 1), date.day)) {
        return Fault{Reason::badNumber, "date"};
    }
    std::uint32_t todMs = 0;
    const std::string_view second = time.substr(colon2 + 1);
    if (const auto bad = ParseTimeOfDay(time.substr(0, colon1), time.substr(colon1 + 1, colon2 - colon1 - 1),
                                        second, todMs)) {
        return Fault{*bad, "time"};
    }
    if (!IsDate(date)) return Fault{Reason::badTime, "date"};
    printed.gpsMs = GpsMs(date, todMs);
    printed.isLeapSecond = second.substr(0, 2) == "60";
    if (printed.isLeapSecond) printed.gpsMs -= 1000;
    return std::nullopt;
}

// "week" "seconds of week"
std::optional<Fault> ReadWeekTime(std::string_view week, std::string_view seconds, PrintedTime& printed) {
    int w = 0;
    double s = 0.0;
    if (!ParseCount(week, w)) return Fault{Reason::badNumber, "week"};
    if (!ParseNumber(seconds, s)) return Fault{Reason::badNumber, "seconds of week"};
    if (w > 9999) return Fault{Reason::badTime, "week"};
    if (s < 0.0 || s > 604800.0) return Fault{Reason::badTime, "seconds of week"};
    printed.gpsMs = w * kWeekMs + std::llround(s * 1000.0);
    return std::nullopt;
}

std::optional<Fault> ToUtc(const PrintedTime& printed, PosTimeScale scale, Epoch& epoch) {
    UtcTime utc;
    if (scale == PosTimeScale::unknown) return Fault{Reason::badTime, "time scale is not GPST, UTC or JST"};
    if (scale == PosTimeScale::gpst) {
        const std::int64_t gpsMs = printed.gpsMs + (printed.isLeapSecond ? 1000 : 0);
        if (gpsMs < 0) return Fault{Reason::badTime, "date before 1980-01-06"};
        utc = GpstToUtc(gpsMs);
    } else {
        utc = FromGpsMs(printed.gpsMs - (scale == PosTimeScale::jst ? kJstMs : 0));
        if (printed.isLeapSecond) utc.todMs += 1000;
    }
    epoch.year = utc.date.year;
    epoch.month = utc.date.month;
    epoch.day = utc.date.day;
    epoch.todMs = utc.todMs;
    return std::nullopt;
}

// ---- coordinates

// Degrees, minutes and seconds in three columns from `first`. On error: false.
bool ReadDms(const PosColumns& c, std::size_t first, double& angle) {
    double d = 0.0;
    double m = 0.0;
    double s = 0.0;
    if (!ParseNumber(c[first], d) || !ParseNumber(c[first + 1], m) || !ParseNumber(c[first + 2], s))
        return false;
    return DegreesOfDms(d, m, s, angle);
}

std::optional<Fault> ReadGeographic(const PosColumns& c, PosCoordinates kind, Epoch& epoch) {
    std::size_t heightColumn = 4;
    if (kind == PosCoordinates::geographicDms) {
        if (!ReadDms(c, 2, epoch.lat)) return Fault{Reason::badNumber, "latitude"};
        if (!ReadDms(c, 5, epoch.lon)) return Fault{Reason::badNumber, "longitude"};
        heightColumn = 8;
    } else {
        if (!ParseNumber(c[2], epoch.lat)) return Fault{Reason::badNumber, "latitude"};
        if (!ParseNumber(c[3], epoch.lon)) return Fault{Reason::badNumber, "longitude"};
    }
    if (!ParseNumber(c[heightColumn], epoch.height)) return Fault{Reason::badNumber, "height"};
    return std::nullopt;
}

// X, Y, Z, or a baseline added to its base in the base's local frame: base + R ENU.
std::optional<Fault> ReadVector(const PosColumns& c, const PosHeader& header, Epoch& epoch) {
    constexpr double kShortestRadius = 1e6;  // metres; less is no place on the Earth
    Vector3 v{};
    for (std::size_t i = 0; i < 3; ++i) {
        if (!ParseNumber(c[2 + i], v[i])) return Fault{Reason::badNumber, "coordinate"};
    }
    const CEllissoide wgs84;
    if (header.coordinates == PosCoordinates::baseline) {
        if (!header.hasBase) return Fault{Reason::emptyField, "no reference position in the header"};
        double x = 0.0;
        double y = 0.0;
        double z = 0.0;
        wgs84.GrafToGeoc(header.baseLat, header.baseLon, header.baseHeight, x, y, z);
        const Vector3 d = LocalFrame(header.baseLat, header.baseLon).ToGeocentric(v);
        v = {x + d[0], y + d[1], z + d[2]};
    }
    const bool place = std::hypot(v[0], v[1], v[2]) > kShortestRadius;
    if (!place || !wgs84.GeocToGraf(v[0], v[1], v[2], epoch.lat, epoch.lon, epoch.height)) {
        return Fault{Reason::badNumber, "coordinates are no place on the Earth"};
    }
    return std::nullopt;
}

// ---- precision

// The six columns of precision: three standard deviations, then the signed roots of the covariances 12, 23,
// 31, in the order of the coordinates as titled: cov = sign(v) v^2.
bool ReadVariances(const PosColumns& c, std::size_t first, std::array<double, 6>& variance) {
    for (std::size_t i = 0; i < 6; ++i) {
        double v = 0.0;
        if (!ParseNumber(c[first + i], v) || (i < 3 && v < 0.0)) return false;
        variance[i] = v * std::abs(v);
    }
    return true;
}

std::optional<Fault> ReadPrecision(const PosColumns& c, std::size_t first, const PosHeader& header,
                                   Epoch& epoch) {
    std::array<double, 6> v{};
    if (!ReadVariances(c, first, v)) return Fault{Reason::badNumber, "precision"};
    const LocalFrame frame(epoch.lat, epoch.lon);
    Covariance local{};
    switch (header.coordinates) {
        case PosCoordinates::geographic:
        case PosCoordinates::geographicDms:
            local = {v[1], v[0], v[2], v[3], v[4], v[5]};  // n e u ne eu un
            epoch.cov = frame.CovToGeocentric(local);
            break;
        case PosCoordinates::baseline:
            local = {v[0], v[1], v[2], v[3], v[5], v[4]};  // e n u en nu ue
            epoch.cov = LocalFrame(header.baseLat, header.baseLon).CovToGeocentric(local);
            local = frame.CovToLocal(epoch.cov);
            break;
        case PosCoordinates::geocentric:
        case PosCoordinates::unknown:
            epoch.cov = {v[0], v[1], v[2], v[3], v[5], v[4]};  // x y z xy yz zx
            local = frame.CovToLocal(epoch.cov);
            break;
    }
    epoch.hasCov = true;
    epoch.hrms = HorizontalRms(local);
    epoch.vrms = VerticalRms(local);
    return std::nullopt;
}

}  // namespace

PosColumns::PosColumns(std::string_view line) {
    constexpr std::string_view blanks = " ";
    constexpr std::string_view separators = ",;\t";
    const auto skipBlanks = [&] {
        const std::size_t begin = line.find_first_not_of(blanks);
        line.remove_prefix(begin == std::string_view::npos ? line.size() : begin);
    };
    skipBlanks();
    while (!line.empty() && count_ < kMost) {
        const std::size_t end = line.find_first_of(" ,;\t");
        column_[count_++] = line.substr(0, end);
        if (end == std::string_view::npos) return;
        line.remove_prefix(end);
        skipBlanks();
        if (!line.empty() && separators.find(line.front()) != std::string_view::npos) {
            line.remove_prefix(1);
            skipBlanks();
        }
    }
}

PosReader::PosReader(EpochSink& sink) : sink_(sink) { log_.format = "RTKLIB pos"; }

void PosReader::Feed(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view part = bytes.substr(0, end);
        if (end == std::string_view::npos || hasPartial_) {
            partial_ += part.substr(0, kLongestLine - partial_.size());
            hasPartial_ = true;
        }
        if (end == std::string_view::npos) return;
        TakeLine(hasPartial_ ? std::string_view(partial_) : part.substr(0, kLongestLine));
        partial_.clear();
        hasPartial_ = false;
        bytes.remove_prefix(end + 1);
    }
}

void PosReader::Finish() {
    if (hasPartial_) TakeLine(partial_);
    partial_.clear();
    hasPartial_ = false;
}

void PosReader::TakeLine(std::string_view line) {
    ++line_;
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (line_ == 1 && line.starts_with(byteOrderMark)) line.remove_prefix(byteOrderMark.size());
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = Trimmed(line);
    if (line.empty() || line.front() == '#') return;
    if (line.front() == '%') {
        TakeHeader(line);
        return;
    }
    rowsSeen_ = true;
    Epoch epoch;
    epoch.line = line_;
    if (const std::optional<Fault> fault = ReadRow(PosColumns(line), epoch)) {
        sink_.Reject(fault->reason, line_, ShownText(fault->field, line));
    } else {
        sink_.Accept(epoch);
    }
}

void PosReader::TakeHeader(std::string_view line) {
    if (!PosHeader::Knows(line)) return;
    if (rowsSeen_) header_ = {};
    rowsSeen_ = false;
    if (const std::optional<Fault> fault = header_.Take(line)) {
        sink_.Ignore(fault->reason, line_, ShownText(fault->field, line));
    }
    log_.hasBase = header_.hasBase && header_.isEllipsoidal && header_.isWgs84;
    log_.baseLat = log_.hasBase ? header_.baseLat : GPS_VAL_UNSET;
    log_.baseLon = log_.hasBase ? header_.baseLon : GPS_VAL_UNSET;
    log_.baseHeight = log_.hasBase ? header_.baseHeight : GPS_VAL_UNSET;
    log_.baseAntenna = header_.baseAntenna;
    log_.roverAntenna = header_.roverAntenna;
}

std::optional<Fault> PosReader::ReadRow(const PosColumns& c, Epoch& epoch) const {
    if (header_.coordinates == PosCoordinates::unknown) {
        return Fault{Reason::badNumber, "no header line names the coordinates"};
    }
    if (!header_.isWgs84) return Fault{Reason::badNumber, "the header names another datum than WGS 84"};
    const std::size_t quality = 2 + CoordinateColumns(header_.coordinates);
    const std::size_t needed = quality + 8 + (header_.hasAge ? 1 : 0) + (header_.hasRatio ? 1 : 0);
    if (c.Count() < needed) return Fault{Reason::cutLine, {}};
    if (c[quality].empty()) return Fault{Reason::emptyField, "Q"};
    const bool isQuality = ParseCount(c[quality], epoch.quality);
    if (isQuality && epoch.quality == 0) return Fault{Reason::noFix, {}};
    for (std::size_t i = 0; i < quality + 8; ++i) {
        if (c[i].empty()) return Fault{Reason::emptyField, i < 2 ? "time" : "coordinates or precision"};
    }
    if (!isQuality) return Fault{Reason::badNumber, "Q"};
    if (!ParseCount(c[quality + 1], epoch.satGps)) return Fault{Reason::badNumber, "ns"};
    epoch.grade = GradeOf(Format::pos, epoch.quality);

    PrintedTime printed;
    const bool calendar = c[0].find('/') != std::string_view::npos;
    const std::optional<Fault> time =
        calendar ? ReadCalendarTime(c[0], c[1], printed) : ReadWeekTime(c[0], c[1], printed);
    if (time) return time;
    const bool geographic = header_.coordinates == PosCoordinates::geographic ||
                            header_.coordinates == PosCoordinates::geographicDms;
    const std::optional<Fault> place =
        geographic ? ReadGeographic(c, header_.coordinates, epoch) : ReadVector(c, header_, epoch);
    if (place) return place;
    if (epoch.lat < -90.0 || epoch.lat > 90.0) return Fault{Reason::latitudeRange, "latitude"};
    if (epoch.lon < -180.0 || epoch.lon > 180.0) return Fault{Reason::longitudeRange, "longitude"};
    if (const std::optional<Fault> fault = ReadPrecision(c, quality + 2, header_, epoch)) return fault;
    if (!header_.isEllipsoidal) return Fault{Reason::noSeparation, "height above the geoid"};
    return ToUtc(printed, header_.timeScale, epoch);
}

}  // namespace gpsbook
