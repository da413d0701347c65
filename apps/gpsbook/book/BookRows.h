// BookRows: the points of a field book as the rows of a table.
#pragma once

#include <cstdint>

#include "apps/gpsbook/writers/PointRow.h"

class CGrpGps;
class CLibGps;
class CPunGps;

namespace gpsbook {

class RowWriter;

PointRow RowOf(const CGrpGps& group, const CPunGps& point);

/// Writes the points of a group in the order of the book. Requires: the group exists.
/// Errors: WriteError; CommandError when the program is asked to end.
void WriteRows(const CLibGps& book, int group, RowWriter& writer);

}  // namespace gpsbook
