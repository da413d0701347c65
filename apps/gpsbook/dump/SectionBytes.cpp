#include "apps/gpsbook/dump/SectionBytes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <system_error>

namespace gpsbook {

namespace {

constexpr std::size_t kWindow = 256 * 1024;

}  // namespace

void SectionBytes::Need(std::int64_t bytes) {
    if (bytes > Remaining())
        throw SectionDamage{Position(), fmt::format("{} bytes are needed, {} are left", bytes, Remaining())};
}

void SectionBytes::Take(char* to, std::size_t bytes) {
    while (bytes > 0) {
        if (next_ == window_.size()) {
            window_.resize(std::min(kWindow, static_cast<std::size_t>(total_ - taken_)));
            std::size_t got = 0;
            const int error = source_.Read(window_.data(), window_.size(), got);
            window_.resize(error == 0 ? got : 0);
            next_ = 0;
            if (error != 0)
                throw SectionDamage{Position(), "reading failed: " + std::generic_category().message(error)};
            if (window_.empty()) throw SectionDamage{Position(), "the file ends here"};
        }
        const std::size_t piece = std::min(bytes, window_.size() - next_);
        std::memcpy(to, window_.data() + next_, piece);
        next_ += piece;
        taken_ += static_cast<std::int64_t>(piece);
        to += piece;
        bytes -= piece;
    }
}

std::int64_t SectionBytes::SetEnd(std::int64_t bytes) {
    Need(bytes);
    const std::int64_t token = size_;
    size_ = taken_ + bytes;
    return token;
}

void SectionBytes::Skip(std::int64_t bytes) {
    Need(bytes);
    char passed[4096];
    while (bytes > 0) {
        const std::int64_t piece = std::min<std::int64_t>(bytes, sizeof passed);
        Take(passed, static_cast<std::size_t>(piece));
        bytes -= piece;
    }
}

std::uint64_t SectionBytes::Unsigned(int bytes) {
    Need(bytes);
    unsigned char raw[8] = {};
    Take(reinterpret_cast<char*>(raw), static_cast<std::size_t>(bytes));
    std::uint64_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = value << 8 | raw[i];
    return value;
}

std::int64_t SectionBytes::Signed(int bytes) {
    const std::uint64_t value = Unsigned(bytes);
    const int unused = 64 - 8 * bytes;
    return static_cast<std::int64_t>(value << unused) >> unused;
}

std::string SectionBytes::Text(std::int64_t bytes) {
    Need(bytes);
    std::string text;
    // In pieces: a length that the file does not keep ends before so much memory is taken.
    while (bytes > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::int64_t>(bytes, kWindow));
        const std::size_t before = text.size();
        text.resize(before + piece);
        Take(text.data() + before, piece);
        bytes -= static_cast<std::int64_t>(piece);
    }
    return text;
}

}  // namespace gpsbook
