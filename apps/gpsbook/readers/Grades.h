// Grades of the quality codes of each format.
#pragma once

#include "apps/gpsbook/readers/Epoch.h"
#include "apps/gpsbook/readers/Format.h"

namespace gpsbook {

/// The grade of a quality code in a format.
///   NMEA: 4 fixed; 5 floating; 2, 3, 9 dgps; 1 single; others estimated.
///   RTKLIB: 1 fixed; 2, 6 (precise point positioning) floating; 3, 4 dgps; 5 single; others estimated.
Grade GradeOf(Format format, int quality);

/// "fixed", "float", "dgps", "single", "estimated".
std::string_view GradeText(Grade grade);

}  // namespace gpsbook
