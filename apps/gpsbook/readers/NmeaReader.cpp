#include "apps/gpsbook/readers/NmeaReader.h"

#include <initializer_list>
#include <utility>

#include "apps/gpsbook/readers/Grades.h"

namespace gpsbook {

namespace {

// hhmmss, with any number of decimals.
std::optional<Reason> ParseTime(std::string_view text, std::uint32_t& todMs) {
    if (text.size() < 6) return Reason::badNumber;
    return ParseTimeOfDay(text.substr(0, 2), text.substr(2, 2), text.substr(4), todMs);
}

// An angle written as degrees and minutes run together, ddmm.mmmm, and its hemisphere; degrees.
// On error (not a number, 60 minutes or more, an unknown hemisphere): false.
bool ParseAngle(std::string_view text, std::string_view hemisphere, char positive, char negative,
                double& angle) {
    const std::size_t point = text.substr(0, text.find('.')).size();
    const std::size_t split = point > 2 ? point - 2 : 0;
    int degrees = 0;
    double minutes = 0.0;
    if (split > 0 && !ParseCount(text.substr(0, split), degrees)) return false;
    const std::string_view minuteText = text.substr(split);
    if (minuteText.empty() || minuteText.front() == '-' || minuteText.front() == '+') return false;
    if (!ParseNumber(minuteText, minutes) || minutes >= 60.0) return false;
    if (hemisphere.size() != 1 || (hemisphere[0] != positive && hemisphere[0] != negative)) return false;
    angle = degrees + minutes / 60.0;
    if (hemisphere[0] == negative) angle = -angle;
    return true;
}

// A number that may be left empty, and then stays unset. On error: false.
bool ParseOptional(std::string_view text, double& value) { return text.empty() || ParseNumber(text, value); }

bool IsMetres(std::string_view unit) { return unit.empty() || unit == "M"; }

// The fields of GGA: address, time, latitude, N/S, longitude, E/W, quality, satellites, HDOP, altitude, M,
// geoid separation, M, age of corrections, station.
constexpr std::size_t kGgaFields = 12;
constexpr std::size_t kRmcFields = 10;
constexpr std::size_t kZdaFields = 5;
constexpr std::size_t kGstFields = 9;
constexpr std::size_t kGsaFields = 18;

std::optional<Fault> FindEmpty(const NmeaFields& f) {
    constexpr std::pair<std::size_t, std::string_view> needed[] = {
        {1, "time"}, {2, "latitude"}, {3, "N/S"}, {4, "longitude"}, {5, "E/W"}};
    for (const auto& [index, name] : needed) {
        if (f[index].empty()) return Fault{Reason::emptyField, name};
    }
    return std::nullopt;
}

// The figures of a GGA with a fix; `position` is complete but for what other sentences add.
std::optional<Fault> ReadPosition(const NmeaFields& f, Epoch& position) {
    double altitude = GPS_VAL_UNSET;
    double separation = GPS_VAL_UNSET;
    const std::optional<Reason> time = ParseTime(f[1], position.todMs);
    if (time == Reason::badNumber) return Fault{Reason::badNumber, "time"};
    if (!ParseAngle(f[2], f[3], 'N', 'S', position.lat)) return Fault{Reason::badNumber, "latitude"};
    if (!ParseAngle(f[4], f[5], 'E', 'W', position.lon)) return Fault{Reason::badNumber, "longitude"};
    if (!f[7].empty() && !ParseCount(f[7], position.satGps)) return Fault{Reason::badNumber, "satellites"};
    if (!ParseOptional(f[9], altitude) || !IsMetres(f[10])) return Fault{Reason::badNumber, "altitude"};
    if (!ParseOptional(f[11], separation) || !IsMetres(f[12])) {
        return Fault{Reason::badNumber, "geoid separation"};
    }
    if (time) return Fault{*time, "time"};
    if (position.lat < -90.0 || position.lat > 90.0) return Fault{Reason::latitudeRange, "latitude"};
    if (position.lon < -180.0 || position.lon > 180.0) return Fault{Reason::longitudeRange, "longitude"};
    if (!IsCoordValid(altitude)) return Fault{Reason::emptyField, "altitude"};
    if (!IsCoordValid(separation)) return Fault{Reason::noSeparation, "geoid separation"};
    position.height = altitude + separation;
    return std::nullopt;
}

enum class SatelliteSystem : std::uint8_t { gps, glonass, other, byNumber };

// The system of a GSA: its system id when it has one, else its talker; GN leaves it to the numbers.
SatelliteSystem SystemOf(const NmeaFields& f) {
    const std::string_view id = f[18];
    if (id.size() == 1) {
        if (id == "1") return SatelliteSystem::gps;
        return id == "2" ? SatelliteSystem::glonass : SatelliteSystem::other;
    }
    const std::string_view talker = f[0].substr(0, 2);
    if (talker == "GP") return SatelliteSystem::gps;
    if (talker == "GL") return SatelliteSystem::glonass;
    for (const std::string_view other : {"GA", "GB", "BD", "GQ", "QZ", "PQ", "GI"}) {
        if (talker == other) return SatelliteSystem::other;
    }
    return SatelliteSystem::byNumber;
}

void AddSatellite(SatelliteSystem system, int number, NmeaSatellites& satellites) {
    satellites.any = true;
    if (system == SatelliteSystem::byNumber) {
        if (number >= 1 && number <= 32) system = SatelliteSystem::gps;
        if (number >= 65 && number <= 96) system = SatelliteSystem::glonass;
    }
    const auto word = static_cast<std::size_t>(number) / 64;
    const std::uint64_t bit = std::uint64_t{1} << (static_cast<unsigned>(number) % 64);
    const bool augmentation = number >= 33 && number <= 64;  // listed with GPS, but no GPS satellites
    if (system == SatelliteSystem::gps && !augmentation) satellites.gps[word] |= bit;
    if (system == SatelliteSystem::glonass) satellites.glonass[word] |= bit;
}

}  // namespace

NmeaReader::NmeaReader(EpochSink& sink) : epochs_(sink) { header_.format = "NMEA 0183"; }

void NmeaReader::Feed(std::string_view bytes) {
    scanner_.Put(bytes);
    NmeaText text;
    while (scanner_.Next(text)) Take(text);
}

void NmeaReader::Finish() {
    NmeaText text;
    if (scanner_.Last(text)) Take(text);
    epochs_.Finish();
}

void NmeaReader::Take(const NmeaText& text) {
    const SentenceKind kind = KindOf(text.text);
    if (kind == SentenceKind::none) return;
    std::string_view body;
    if (const std::optional<Reason> broken = CheckSentence(text, body)) {
        Refuse(kind, {*broken, {}}, text);
        return;
    }
    const NmeaFields fields(body);
    std::optional<Fault> fault;
    switch (kind) {
        case SentenceKind::gga:
            fault = TakeGga(fields, text.line);
            break;
        case SentenceKind::rmc:
            fault = TakeRmc(fields);
            break;
        case SentenceKind::zda:
            fault = TakeZda(fields);
            break;
        case SentenceKind::gst:
            fault = TakeGst(fields);
            break;
        case SentenceKind::gsa:
            fault = TakeGsa(fields);
            break;
        case SentenceKind::none:
            break;
    }
    if (fault) Refuse(kind, *fault, text);
}

void NmeaReader::Refuse(SentenceKind kind, const Fault& fault, const NmeaText& text) {
    std::string shown = "$";
    shown += text.text.substr(0, 80);
    if (kind == SentenceKind::gga) {
        epochs_.Reject(fault.reason, text.line, ShownText(fault.field, shown));
    } else {
        epochs_.Ignore(fault.reason, text.line, ShownText(fault.field, shown));
    }
}

std::optional<Fault> NmeaReader::TakeGga(const NmeaFields& f, std::int64_t line) {
    if (f.Count() < kGgaFields) return Fault{Reason::cutLine, {}};
    std::uint32_t todMs = 0;
    if (!ParseTime(f[1], todMs)) epochs_.Enter(todMs);  // a GGA without a fix ends the epoch before it, too

    Epoch position;
    if (f[6].empty()) return Fault{Reason::emptyField, "quality"};
    const bool isQuality = ParseCount(f[6], position.quality);
    if (isQuality && position.quality == 0) return Fault{Reason::noFix, {}};
    if (const std::optional<Fault> empty = FindEmpty(f)) return empty;
    if (!isQuality) return Fault{Reason::badNumber, "quality"};
    if (const std::optional<Fault> fault = ReadPosition(f, position)) return fault;
    position.line = line;
    position.grade = GradeOf(Format::nmea, position.quality);
    epochs_.AddPosition(position);
    return std::nullopt;
}

// address, time, status, latitude, N/S, longitude, E/W, speed, course, date ddmmyy
std::optional<Fault> NmeaReader::TakeRmc(const NmeaFields& f) {
    if (f.Count() < kRmcFields) return Fault{Reason::cutLine, {}};
    if (f[1].empty()) return std::nullopt;
    std::uint32_t todMs = 0;
    if (const std::optional<Reason> bad = ParseTime(f[1], todMs)) return Fault{*bad, "time"};
    epochs_.Enter(todMs);
    if (f[2] != "A" || f[9].empty()) return std::nullopt;
    CivilDate date;
    if (f[9].size() != 6 || !ParseCount(f[9].substr(0, 2), date.day) ||
        !ParseCount(f[9].substr(2, 2), date.month) || !ParseCount(f[9].substr(4, 2), date.year)) {
        return Fault{Reason::badNumber, "date"};
    }
    date.year += date.year >= 80 ? 1900 : 2000;
    if (!IsDate(date)) return Fault{Reason::badTime, "date"};
    epochs_.AddDate(date, DateSource::rmc);
    return std::nullopt;
}

// address, time, day, month, year
std::optional<Fault> NmeaReader::TakeZda(const NmeaFields& f) {
    if (f.Count() < kZdaFields) return Fault{Reason::cutLine, {}};
    if (f[1].empty()) return std::nullopt;
    std::uint32_t todMs = 0;
    if (const std::optional<Reason> bad = ParseTime(f[1], todMs)) return Fault{*bad, "time"};
    epochs_.Enter(todMs);
    if (f[2].empty() || f[3].empty() || f[4].empty()) return std::nullopt;
    CivilDate date;
    if (!ParseCount(f[2], date.day) || !ParseCount(f[3], date.month) || !ParseCount(f[4], date.year)) {
        return Fault{Reason::badNumber, "date"};
    }
    if (!IsDate(date)) return Fault{Reason::badTime, "date"};
    epochs_.AddDate(date, DateSource::zda);
    return std::nullopt;
}

// address, time, rms of ranges, semi-major, semi-minor, orientation, sigma latitude, longitude, altitude
std::optional<Fault> NmeaReader::TakeGst(const NmeaFields& f) {
    if (f.Count() < kGstFields) return Fault{Reason::cutLine, {}};
    if (f[1].empty()) return std::nullopt;
    std::uint32_t todMs = 0;
    if (const std::optional<Reason> bad = ParseTime(f[1], todMs)) return Fault{*bad, "time"};
    epochs_.Enter(todMs);
    NmeaPrecision p;
    const bool numbers = ParseOptional(f[3], p.semiMajor) && ParseOptional(f[4], p.semiMinor) &&
                         ParseOptional(f[5], p.orientation) && ParseOptional(f[6], p.sigmaLat) &&
                         ParseOptional(f[7], p.sigmaLon) && ParseOptional(f[8], p.sigmaAlt);
    if (!numbers || p.sigmaLat < 0.0 || p.sigmaLon < 0.0 || p.sigmaAlt < 0.0) {
        return Fault{Reason::badNumber, "precision"};
    }
    epochs_.AddPrecision(p);
    return std::nullopt;
}

// address, mode, fix, twelve satellite numbers, PDOP, HDOP, VDOP, and from version 4.10 on the system id
std::optional<Fault> NmeaReader::TakeGsa(const NmeaFields& f) {
    if (f.Count() < kGsaFields) return Fault{Reason::cutLine, {}};
    NmeaSatellites satellites;
    const SatelliteSystem system = SystemOf(f);
    for (std::size_t i = 3; i < 15; ++i) {
        if (f[i].empty()) continue;
        int number = 0;
        if (!ParseCount(f[i], number) || number > NmeaSatellites::kLargestNumber) {
            return Fault{Reason::badNumber, "satellite number"};
        }
        AddSatellite(system, number, satellites);
    }
    if (!ParseOptional(f[15], satellites.pdop) || satellites.pdop < 0.0)
        return Fault{Reason::badNumber, "PDOP"};
    epochs_.AddSatellites(satellites);
    return std::nullopt;
}

}  // namespace gpsbook
