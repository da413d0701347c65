// The formats of logs: told apart by content, and the reader of each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "apps/gpsbook/readers/Epoch.h"

namespace gpsbook {

enum class Format : std::uint8_t { unknown, nmea, pos };

/// Bytes from the start of a file that DetectFormat looks at; the rest of a longer `head` is not used.
inline constexpr std::size_t kDetectBytes = 65536;

/// The format of a file by its first bytes; binary frames and comments may come first.
/// NMEA: a sentence with a right checksum. RTKLIB: a header line that names the coordinates, or a row.
/// A file of which neither is found, but the address of a sentence that NmeaReader uses, is NMEA: damaged,
/// and the reader says what is wrong with it.
Format DetectFormat(std::string_view head);

/// The reader of a format; none for Format::unknown. Requires: `sink` outlives the reader.
std::unique_ptr<LogReader> MakeReader(Format format, EpochSink& sink);

}  // namespace gpsbook
