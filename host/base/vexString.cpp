#include "platform/base/vexString.h"

namespace vex {

String::String(const char* text) : text_(text ? text : "") {}
String::String(std::string_view text) : text_(text) {}
String::String(const std::string& text) : text_(text) {}

int String::Compare(std::string_view other) const { return text_.compare(other); }

void String::Reserve(int length) {
    if (length > 0) text_.reserve(static_cast<std::size_t>(length));
}

String& String::operator+=(std::string_view more) {
    text_ += more;
    return *this;
}

}  // namespace vex
