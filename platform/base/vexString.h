// vex::String: the text type of the platform's interfaces.
#pragma once

#include <string>
#include <string_view>

#include "platform/base/PlatformExport.h"

namespace vex {

/// A text of bytes (UTF-8 by convention), as commit strings and server replies use it.
/// Comparison is by byte, case-sensitive; no locale is ever asked.
class GPS_PLATFORM_API String {
public:
    String() = default;
    String(const char* text);  // a null pointer is the empty text
    String(std::string_view text);
    String(const std::string& text);

    /// Zero-terminated; valid until the text changes.
    const char* c_str() const { return text_.c_str(); }
    int GetLength() const { return static_cast<int>(text_.size()); }
    bool IsEmpty() const { return text_.empty(); }
    std::string_view View() const { return text_; }

    /// Below 0, 0 or above 0 as this text comes before, equals or comes after the other, byte by byte.
    int Compare(std::string_view other) const;

    void Empty() { text_.clear(); }

    /// Makes room for `length` bytes in all; the text stays.
    void Reserve(int length);

    String& operator+=(std::string_view more);

    friend bool operator==(const String& a, const String& b) { return a.text_ == b.text_; }

private:
    std::string text_;
};

}  // namespace vex
