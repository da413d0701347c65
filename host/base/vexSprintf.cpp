#include "platform/base/vexSprintf.h"

#include <charconv>
#include <cstdarg>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace {

enum class Width { half, plain, longer, bits64 };

Width TakeWidth(const char*& at) {
    if (std::strncmp(at, "I64", 3) == 0) return at += 3, Width::bits64;
    if (std::strncmp(at, "ll", 2) == 0) return at += 2, Width::bits64;
    if (*at == 'l') return ++at, Width::longer;
    if (*at == 'h') return ++at, Width::half;
    return Width::plain;
}

template <class Number>
void Append(std::string& text, Number value, int base, bool capitals = false) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value, base).ptr;
    for (char* c = digits; c != end; ++c)
        text += capitals && *c >= 'a' && *c <= 'f' ? static_cast<char>(*c - 'a' + 'A') : *c;
}

long long NextSigned(Width width, va_list& arguments) {
    switch (width) {
        case Width::half:
            return static_cast<short>(va_arg(arguments, int));
        case Width::longer:
            return va_arg(arguments, long);
        case Width::bits64:
            return va_arg(arguments, long long);
        default:
            return va_arg(arguments, int);
    }
}

unsigned long long NextUnsigned(Width width, va_list& arguments) {
    switch (width) {
        case Width::half:
            return static_cast<unsigned short>(va_arg(arguments, unsigned));
        case Width::longer:
            return va_arg(arguments, unsigned long);
        case Width::bits64:
            return va_arg(arguments, unsigned long long);
        default:
            return va_arg(arguments, unsigned);
    }
}

/// One conversion, behind its '%'. False: it is not known.
bool AppendOne(std::string& text, const char*& at, va_list& arguments) {
    const Width width = TakeWidth(at);
    const char letter = *at++;
    switch (letter) {
        case 'd':
        case 'i':
            Append(text, NextSigned(width, arguments), 10);
            return true;
        case 'u':
            Append(text, NextUnsigned(width, arguments), 10);
            return true;
        case 'x':
        case 'X':
            Append(text, NextUnsigned(width, arguments), 16, letter == 'X');
            return true;
        case 's':
            if (width != Width::plain) return false;
            if (const char* s = va_arg(arguments, const char*)) text += s;
            return true;
        case 'c':
            if (width != Width::plain) return false;
            text += static_cast<char>(va_arg(arguments, int));
            return true;
        case '%':
            text += '%';
            return width == Width::plain;
        default:
            return false;
    }
}

bool Format(std::string& text, const char* format, va_list& arguments) {
    while (*format != '\0') {
        const char* next = std::strchr(format, '%');
        if (!next) {
            text += format;
            return true;
        }
        text.append(format, next);
        format = next + 1;
        if (!AppendOne(text, format, arguments)) return false;
    }
    return true;
}

}  // namespace

int vex_sprintf(char* line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    int written = -1;
    try {
        std::string text;  // the arguments may be the line: it is written when they have been read
        if (Format(text, format, arguments)) {
            std::memcpy(line, text.c_str(), text.size() + 1);
            written = static_cast<int>(text.size());
        }
    } catch (const std::bad_alloc&) {  // nothing was written
    }
    va_end(arguments);
    return written;
}
