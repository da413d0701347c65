// IniLines: changes one line of the text of a settings file and leaves all others as they are.
#pragma once

#include <string>
#include <string_view>

/// Sets the last line of that key in that section, which is the one that counts. A key without a line gets
/// one behind the last line of the section; a section that is not there is appended. All three in their
/// written form.
std::string SetIniLine(std::string_view text, std::string_view section, std::string_view key,
                       std::string_view value);

/// Takes away every line of that key in that section.
std::string RemoveIniLines(std::string_view text, std::string_view section, std::string_view key);
