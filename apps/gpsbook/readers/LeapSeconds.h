// GPS time and UTC: the leap seconds since GPS time began.
#pragma once

#include <cstdint>

#include "apps/gpsbook/readers/Calendar.h"

namespace gpsbook {

/// The UTC of an instant of GPS time given in milliseconds from the GPS epoch:
///   UTC = GPST - n, n = leap seconds since 1980-01-06.
/// An instant inside a leap second belongs to the day that it ends, from 86400000 ms on.
/// Instants after the last known leap second use its offset.
/// Requires: `gpsMs` >= 0.
UtcTime GpstToUtc(std::int64_t gpsMs);

}  // namespace gpsbook
