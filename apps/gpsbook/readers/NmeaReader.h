// Reads NMEA 0183 logs.
#pragma once

#include "apps/gpsbook/readers/Epoch.h"
#include "apps/gpsbook/readers/NmeaEpochs.h"
#include "apps/gpsbook/readers/NmeaSentence.h"

namespace gpsbook {

/// Positions from GGA, dates from RMC and ZDA, precision from GST, satellites and PDOP from GSA, of any
/// talker.
///
/// Every GGA is accepted once or rejected once; `line` is that of the GGA. Damaged RMC, ZDA, GST and GSA
/// sentences are reported as ignored. Sentences of other kinds are passed over, damaged or not; so are lines
/// without a valid address. An empty field of a sentence other than GGA is no damage: it says nothing.
///
/// Dates: of RMC (status A) or ZDA of the same epoch; else carried on from the last one, to the next day when
/// the time of day drops by more than 12 hours. Positions before the first date are held back and dated
/// backwards by the same rule. Two-digit years: 80 to 99 are 19xx, the others 20xx.
///
/// Satellites: those of augmentation systems, which GSA lists with GPS, are not counted. Without GSA the only
/// number is the total of GGA; it is stored as that of GPS.
class NmeaReader final : public LogReader {
public:
    /// Requires: `sink` outlives the reader.
    explicit NmeaReader(EpochSink& sink);

    void Feed(std::string_view bytes) override;
    void Finish() override;
    const LogHeader& Header() const override { return header_; }

private:
    void Take(const NmeaText& text);
    std::optional<Fault> TakeGga(const NmeaFields& fields, std::int64_t line);
    std::optional<Fault> TakeRmc(const NmeaFields& fields);
    std::optional<Fault> TakeZda(const NmeaFields& fields);
    std::optional<Fault> TakeGst(const NmeaFields& fields);
    std::optional<Fault> TakeGsa(const NmeaFields& fields);
    void Refuse(SentenceKind kind, const Fault& fault, const NmeaText& text);

    LogHeader header_;
    NmeaScanner scanner_;
    NmeaEpochs epochs_;
};

}  // namespace gpsbook
