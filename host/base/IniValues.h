// IniValues: what the text of a settings file says.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

/// Values by section and key, all in their written form. Of several lines of one key the last one counts.
using IniValues = std::map<std::pair<std::string, std::string>, std::string>;

/// Every value in a text.
IniValues AllIniValues(const std::string& text);

/// One of them.
std::optional<std::string> FindIniValue(const std::string& text, const std::string& section,
                                        const std::string& key);

/// A text that says these values and nothing else.
std::string IniTextOf(const IniValues& values);
