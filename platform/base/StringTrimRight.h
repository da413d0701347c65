// StringTrimRight: a text without the white space at its end.
#pragma once

#include <string>

#include "platform/base/PlatformExport.h"

/// Removes blanks, tabs and line breaks (CR, LF, vertical tab, form feed) from the end of a text. No other
/// byte is ever taken for white space, in no locale: the last byte of a UTF-8 character stays.
GPS_PLATFORM_API void StringTrimRight(std::string& text);
