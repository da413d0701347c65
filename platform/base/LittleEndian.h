// LittleEndian: numbers as bytes, least significant first whatever the machine.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

/// T is an unsigned number.
template <class T>
inline void StoreLittleEndian(unsigned char* at, T value) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(at, &value, sizeof value);
    } else {
        for (std::size_t i = 0; i < sizeof value; ++i)
            at[i] = static_cast<unsigned char>(value >> (8 * i) & 0xFF);
    }
}

template <class T>
inline T LoadLittleEndian(const unsigned char* at) {
    T value{};
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&value, at, sizeof value);
    } else {
        for (std::size_t i = 0; i < sizeof value; ++i)
            value = static_cast<T>(value | static_cast<T>(T{at[i]} << (8 * i)));
    }
    return value;
}
