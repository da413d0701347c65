// Texts as XML, JSON and drawings can hold them.
#pragma once

#include <string>
#include <string_view>

namespace gpsbook {

/// The text with '?' for every byte that is not part of a UTF-8 character and for every control character
/// except tab and line feed.
std::string CleanText(std::string_view text);

/// The name of a drawing layer for a group, in the drawing's own encoding, Windows-1252: other characters,
/// and those that a drawing does not allow in names, become '_'. A group without a name is drawn on layer
/// "0". Requires: clean text.
std::string DrawingLayer(std::string_view group);

/// The style that draws a label with this text and height. Braces, which a drawing takes for formatting,
/// become parentheses. Requires: clean text.
std::string LabelStyle(std::string_view text, std::string_view height);

}  // namespace gpsbook
