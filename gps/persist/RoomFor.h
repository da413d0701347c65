// RoomFor: how many records a stream can still hold.
#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/base/ifpstream.h"

/// The part of a stored count to reserve room for. Nearly every group or point record is longer than 64
/// bytes: a count beyond what the stream can hold is damage, and must not reserve room for records that never
/// come.
inline int RoomFor(const ifpstream& in, int count) {
    constexpr std::int64_t kShortestRecord = 64;
    const std::int64_t most = std::max<std::int64_t>(in.GetRemaining(), 0) / kShortestRecord;
    return static_cast<int>(std::min<std::int64_t>(count, most));
}
