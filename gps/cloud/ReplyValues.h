// ReplyValues: what the text of a reply's field is worth.
#pragma once

#include <string_view>

#include "platform/base/vexString.h"

// Numbers are read as by the C functions of that purpose, but for any locale: blanks in front and a sign are
// taken, what follows the number is passed over, a text without a number is 0. A value beyond the type's
// range is the nearest that it has; a real one beyond it is infinite.

int ToInt(std::string_view text);
long long ToInt64(std::string_view text);
double ToDouble(std::string_view text);

/// An unset value for "NULLVAL", else the number. Unit: that of the field.
double ReplyReal(const vex::String& text);

inline int ReplyInt(const vex::String& text) { return ToInt(text.View()); }
inline long long ReplyInt64(const vex::String& text) { return ToInt64(text.View()); }

/// Intended: true for the text "1" and no other, as survey and receiver type have it.
inline bool ReplyIsOne(const vex::String& text) { return text.Compare("1") == 0; }

/// True for a number of 1 or more, as the flags of a conversion have it.
inline bool ReplyFlag(const vex::String& text) { return ReplyInt(text) >= 1; }
