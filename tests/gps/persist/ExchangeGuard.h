// ExchangeGuard: tells files that a load would take for millions of records. The load itself believes every
// count, as it must.
#pragma once

#include <string_view>

#include "gps/model/CGrpGps.h"
#include "gps/model/CPunGps.h"
#include "platform/base/ifpstream.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

namespace test {

enum class ExchangeKind { points, groups };

/// Whether as many records as a file promises are there, but for a few that begin at its end.
inline bool IsBounded(std::string_view file, ExchangeKind kind) {
    constexpr int kPastEndLimit = 1000;
    ifpstream in(file.data(), file.size(), 1400);
    in.SetPastEndLimit(kPastEndLimit);
    CLibMap map;
    CDrawingsMapper drawings;
    const auto readPoints = [&](int count) {
        for (int i = 0; i < count; ++i) {
            CPunGps point(nullptr, false, nullptr);
            point.LeggeDaFile(in);
        }
    };
    try {
        in.ReadMarker();
        in.ReadString();
        in.SetVersion(in.ReadShort());
        const int count = in.ReadInt();
        if (kind == ExchangeKind::points) readPoints(count);
        for (int i = 0; kind == ExchangeKind::groups && i < count; ++i) {
            CGrpGps group(nullptr, false, &map, 0);
            group.LeggeDaFile(in, drawings, false);
            readPoints(in.ReadInt());
        }
    } catch (const StreamExhausted&) {
        return false;
    }
    return true;
}

}  // namespace test
