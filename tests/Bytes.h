// Bytes: what a record should be, put together value by value, without the streams that are tested with it.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace test {

class Bytes {
public:
    Bytes& U8(unsigned value) { return Number(value, 1); }
    Bytes& I16(int value) { return Number(static_cast<std::uint16_t>(value), 2); }
    Bytes& U16(unsigned value) { return Number(value, 2); }
    Bytes& I32(std::int32_t value) { return Number(static_cast<std::uint32_t>(value), 4); }
    Bytes& U32(std::uint32_t value) { return Number(value, 4); }
    Bytes& I64(std::int64_t value) { return Number(static_cast<std::uint64_t>(value), 8); }
    Bytes& F32(float value) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return U32(bits);
    }
    Bytes& F64(double value) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return Number(bits, 8);
    }

    /// So many times the same double.
    Bytes& F64(double value, int times) {
        while (times-- > 0) F64(value);
        return *this;
    }

    /// Length and bytes.
    Bytes& Text(std::string_view text) { return I32(static_cast<std::int32_t>(text.size())).Raw(text); }
    Bytes& Raw(std::string_view bytes) {
        bytes_ += bytes;
        return *this;
    }
    Bytes& Raw(const Bytes& other) { return Raw(other.bytes_); }

    /// Two digits a byte; blanks between them mean nothing.
    Bytes& Hex(std::string_view digits) {
        unsigned value = 0;
        int have = 0;
        for (const char c : digits) {
            if (c == ' ') continue;
            value = value * 16 + static_cast<unsigned>(c <= '9' ? c - '0' : c - 'a' + 10);
            if (++have % 2 == 0) {
                U8(value & 0xFF);
                value = 0;
            }
        }
        return *this;
    }

    const std::string& Get() const { return bytes_; }
    std::size_t Size() const { return bytes_.size(); }
    operator const std::string&() const { return bytes_; }

private:
    Bytes& Number(std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i) bytes_ += static_cast<char>(value >> (8 * i) & 0xFF);
        return *this;
    }

    std::string bytes_;
};

/// Digits, two a byte, eight bytes a line with their offset: two of them are compared by eye.
inline std::string Dump(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % 8 == 0) text += (i == 0 ? "" : "\n") + std::to_string(i) + ":";
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += {' ', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return text;
}

}  // namespace test
