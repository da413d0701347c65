// Assembles the epochs of an NMEA log from its sentences, and dates them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/gpsbook/readers/Calendar.h"
#include "apps/gpsbook/readers/Epoch.h"

namespace gpsbook {

/// The precision of a position as a GST sentence states it; what it leaves empty is unset.
struct NmeaPrecision {
    double semiMajor = GPS_VAL_UNSET;    // metres, of the error ellipse
    double semiMinor = GPS_VAL_UNSET;    // metres, of the error ellipse
    double orientation = GPS_VAL_UNSET;  // degrees from true north to the semi-major axis, clockwise
    double sigmaLat = GPS_VAL_UNSET;     // metres
    double sigmaLon = GPS_VAL_UNSET;     // metres
    double sigmaAlt = GPS_VAL_UNSET;     // metres
};

/// The satellites of one GSA sentence by system, bit i for the satellite number i.
struct NmeaSatellites {
    static constexpr int kLargestNumber = 255;

    std::array<std::uint64_t, 4> gps{};
    std::array<std::uint64_t, 4> glonass{};
    bool any = false;             // a satellite of any system
    double pdop = GPS_VAL_UNSET;  // dimensionless
};

/// Which sentence a date is from. A date of RMC is part of a valid position and goes before that of ZDA.
enum class DateSource : std::uint8_t { none, zda, rmc };

/// The epoch under way, and all that waits for its end or for a date.
///
/// Sentences with the same time of day make an epoch. Several positions of one epoch (two talkers, or a log
/// with both of two receivers) are all delivered, each as an epoch of its own; they share date, precision and
/// satellites. Everything reaches the sink in the order of the file. While no date is known all of it waits:
/// memory grows with the undated part of a log, by about 200 bytes a position, and not otherwise.
class NmeaEpochs {
public:
    explicit NmeaEpochs(EpochSink& sink) : sink_(sink) {}

    /// A sentence with this time of day follows: an epoch with another time ends here.
    void Enter(std::uint32_t todMs);

    /// A position of the epoch under way: all but date, satellites by system and precision.
    void AddPosition(const Epoch& position);

    /// The date of the epoch under way. Requires: IsDate(date).
    void AddDate(const CivilDate& date, DateSource source);

    /// The precision of the epoch under way; the first one counts.
    void AddPrecision(const NmeaPrecision& precision);

    /// Satellites of the epoch under way; those of several sentences are united.
    void AddSatellites(const NmeaSatellites& satellites);

    /// A position that is not used.
    void Reject(Reason reason, std::int64_t line, std::string detail);

    /// Another damaged sentence.
    void Ignore(Reason reason, std::int64_t line, std::string detail);

    /// The end of the log: positions that no date reached are rejected.
    void Finish();

private:
    enum class ItemKind : std::uint8_t { position, rejected, ignored };

    struct Item {
        ItemKind kind = ItemKind::position;
        Reason reason = Reason::noDate;
        Epoch epoch;         // of a report: the line only
        std::string detail;  // of a report
    };

    void Report(ItemKind kind, Reason reason, std::int64_t line, std::string detail);
    void Close();
    void Complete(Epoch& epoch) const;
    void Date();
    void DateBackwards();
    void Deliver();

    EpochSink& sink_;
    std::vector<Item> items_;  // in the order of the file
    std::size_t open_ = 0;     // items_ from here on are of the epoch under way

    // The epoch under way.
    std::optional<std::uint32_t> todMs_;
    int positions_ = 0;
    CivilDate date_;
    DateSource dateSource_ = DateSource::none;
    std::optional<NmeaPrecision> precision_;
    NmeaSatellites satellites_;

    // The last epoch that has a date; it dates those that follow without one.
    std::optional<CivilDate> knownDate_;
    std::uint32_t knownTodMs_ = 0;
};

}  // namespace gpsbook
