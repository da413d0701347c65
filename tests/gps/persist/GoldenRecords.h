// GoldenRecords: a point and a group with a value of their own in every field, and the records they should
// give, written down row by row from the layout.
#pragma once

#include <string>
#include <vector>

#include "gps/model/CLibGps.h"
#include "tests/Bytes.h"

namespace test {

/// A piece of a record that streams of versions from `from` and below `below` have; 0: no bound.
struct LayoutRow {
    short from;
    short below;
    std::string bytes;
};

/// The rows that a version has, one after another.
std::string Join(const std::vector<LayoutRow>& rows, short version);

/// Every version at which a record changes, with the ones before and behind it, and some beyond the newest:
/// these are written and read as the newest is.
const std::vector<short>& VersionsAroundThresholds();

void FillGoldenPoint(CPunGps& point);
void FillGoldenGroup(CGrpGps& group);

/// Other values everywhere: to see which of them a record replaces.
void FillOtherPoint(CPunGps& point);
void FillOtherGroup(CGrpGps& group);

/// What the filled point should be stored as. `rms`: whether the figures of version 742 stand as they are
/// read there, in single precision, or as they are written, in double precision.
enum class Rms742 { asWritten, asRead };
std::vector<LayoutRow> PointRows(CPunGps& filled, Rms742 rms);
std::vector<LayoutRow> GroupRows(CGrpGps& filled);

/// Bytes of the conversion's record, whose layout is the host's own.
std::string ConversionBytes(CConvCoord& conversion);

/// All values as text, one "name=value" a line: two objects are compared by eye.
std::string ValuesOf(CPunGps& point);
std::string ValuesOf(CGrpGps& group);

/// Shortest text that reads back to the same number.
std::string Text(double value);
std::string Text(float value);

std::string Saved(CPunGps& point, short version, bool cloudFlag = false);
std::string Saved(CGrpGps& group, short version, bool cloudFlag = false);

}  // namespace test
