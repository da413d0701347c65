// IniText: how any text stands on one line of a settings file.
//
// Most texts stand as they are. One that would not come back so is written between quotes, with "\\", "\"",
// "\t", "\n", "\r" and "\xHH" inside. A text that is read is taken so only when it is quoted whole and right;
// else it stands for itself, as a person wrote it (D:\new).
#pragma once

#include <string>
#include <string_view>

enum class IniPlace { Section, Key, Value };

/// The only form that is written, and looked for, of a text.
std::string IniTextIn(std::string_view text, IniPlace place);

/// The text that a written form stands for.
std::string IniTextOut(std::string_view written);
