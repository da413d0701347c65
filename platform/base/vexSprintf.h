// vex_sprintf: formatted text into a line that it may be built on.
#pragma once

#include "platform/base/PlatformExport.h"

/// Writes text and a zero byte into `line`, which has room for them and may stand among the arguments
/// ("%s;%d" with the line itself appends a number to it). Returns the number of characters; -1, writing
/// nothing, for a format that is not known or when there is not enough memory.
///
/// Formats: %s (null is the empty text), %c, %d, %i, %u, %x, %X and %%; integers of int by default, of 16,
/// long, 64 and again 64 bits with h, l, ll and I64 in front of the letter. No width, no flags; real values
/// are CCloudTable::ConcatDoubleValue's.
GPS_PLATFORM_API int vex_sprintf(char* line, const char* format, ...);
