// Reads RTKLIB solution files (.pos).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/gpsbook/readers/Epoch.h"
#include "apps/gpsbook/readers/FieldText.h"
#include "apps/gpsbook/readers/PosHeader.h"

namespace gpsbook {

/// The columns of a row: separated by blanks, or by ',', ';' or tabs; two of these in a row leave a column
/// empty.
class PosColumns {
public:
    static constexpr std::size_t kMost = 24;

    explicit PosColumns(std::string_view line);

    std::size_t Count() const { return count_; }

    /// Column `i`; empty when the row has fewer.
    std::string_view operator[](std::size_t i) const { return i < count_ ? column_[i] : std::string_view{}; }

private:
    std::array<std::string_view, kMost> column_;
    std::size_t count_ = 0;
};

/// Solutions with latitude/longitude/height, with X/Y/Z, and with baselines east/north/up from a base.
///
/// Every line that is neither header ('%'), comment ('#') nor blank is a row, accepted once or rejected once.
/// A header line after rows begins a new file: nothing of the header before it is kept.
/// Rows before any header that names the coordinates are rejected as badNumber: degrees and short baselines
/// look alike, and a guess would put points on the wrong continent. The same holds for another datum than
/// WGS 84. Heights above the geoid are rejected as noSeparation. The columns after the ratio (velocities) are
/// not read.
///
/// Satellites: the file has only the total; it is stored as that of GPS. PDOP stays unset.
class PosReader final : public LogReader {
public:
    /// Longest line that is read; the rest of a longer one is dropped.
    static constexpr std::size_t kLongestLine = 2048;

    /// Requires: `sink` outlives the reader.
    explicit PosReader(EpochSink& sink);

    void Feed(std::string_view bytes) override;
    void Finish() override;
    const LogHeader& Header() const override { return log_; }

private:
    void TakeLine(std::string_view line);
    void TakeHeader(std::string_view line);
    std::optional<Fault> ReadRow(const PosColumns& columns, Epoch& epoch) const;

    EpochSink& sink_;
    LogHeader log_;
    PosHeader header_;
    bool rowsSeen_ = false;  // since the header began
    std::int64_t line_ = 0;
    std::string partial_;  // the line that began in an earlier piece, up to kLongestLine bytes
    bool hasPartial_ = false;
};

}  // namespace gpsbook
