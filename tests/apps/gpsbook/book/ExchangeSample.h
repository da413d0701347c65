// ExchangeSample: files of points and groups for the tests of what reads them, written down from the layout.
#pragma once

#include <string>

#include "apps/gpsbook/book/ExchangeCheck.h"
#include "tests/apps/gpsbook/book/SmallBook.h"
#include "tests/gps/persist/ExchangeBytes.h"

namespace gpsbook::test {

/// A point with a value of its own in every field.
inline std::string SamplePoint(short version = 1400) {
    CPunGps point(nullptr, false, nullptr);
    ::test::FillGoldenPoint(point);
    return ::test::PointCopy(point, version);
}

/// A group with a value of its own in every field, but its points.
inline std::string SampleGroup(short version = 1400) {
    CLibMap map;
    CGrpGps group(nullptr, false, &map, 0);
    ::test::FillGoldenGroup(group);
    return ::test::GroupCopy(group, version);
}

/// Three points; or two groups, the first with one point, the other with two.
inline std::string SampleFile(ExchangeKind kind, short version = 1400) {
    const std::string point = SamplePoint(version);
    if (kind == ExchangeKind::points)
        return ::test::ExchangeHead(3, version).Raw(point).Raw(point).Raw(point).I32(0);
    const std::string group = SampleGroup(version);
    ::test::Bytes bytes = ::test::ExchangeHead(2, version).Raw(group).I32(1).Raw(point);
    return bytes.Raw(group).I32(2).Raw(point).Raw(point).I32(0);
}

}  // namespace gpsbook::test
