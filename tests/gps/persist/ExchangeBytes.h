// What the tests of exchange files share: bytes written down from the layout, and files of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/Bytes.h"
#include "tests/gps/persist/GoldenRecords.h"

namespace test {

/// Marker, signature, version and count.
inline Bytes ExchangeHead(std::int32_t count, int version = 1400) {
    return Bytes().Hex("3a01010000 03000000 464350").I16(version).I32(count);
}

/// Rows of a record whose last one, the cloud's, says that the item is new to any server.
inline std::string AsCopy(std::vector<LayoutRow> rows, short version = 1400) {
    rows.back().bytes = Bytes().I64(0).U32(0).U32(0).I64(0);
    return Join(rows, version);
}

/// The record of a point that was filled as the golden one, as it stands in a file.
inline std::string PointCopy(CPunGps& filled, short version = 1400) {
    return AsCopy(PointRows(filled, Rms742::asRead), version);
}
inline std::string GroupCopy(CGrpGps& filled, short version = 1400) {
    return AsCopy(GroupRows(filled), version);
}

}  // namespace test
