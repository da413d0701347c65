// CommitLine: the line that a record is built in.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

/// Room for the numbers of any record, and for texts as long as the one who begins a line says: nothing is
/// cut, and nothing written past the end.
class CommitLine {
public:
    /// What a line without texts gets; the numbers of the longest record fill less than 1,700 bytes.
    static constexpr std::size_t ROOM = 2048;

    /// An empty line, with room for texts of so many bytes besides its numbers.
    char* Begin(std::size_t textBytes) {
        if (buffer_.size() < ROOM + textBytes) buffer_.resize(ROOM + textBytes);
        buffer_[0] = '\0';
        return buffer_.data();
    }

    std::string_view UpTo(const char* end) const {
        return {buffer_.data(), static_cast<std::size_t>(end - buffer_.data())};
    }

private:
    std::vector<char> buffer_ = std::vector<char>(ROOM);
};

// Each appends at the end of a line and ends it anew with a zero byte; it returns the new end. Searching for
// the end, or building the line from itself, would cost more with every field.

/// The end of a line; nothing is searched when it is that already.
inline char* EndOf(char* line) { return *line == '\0' ? line : line + std::strlen(line); }

inline char* AppendBytes(char* end, std::string_view bytes) {
    std::memcpy(end, bytes.data(), bytes.size());
    end += bytes.size();
    *end = '\0';
    return end;
}

/// ";" and a text.
inline char* AppendText(char* end, std::string_view text) {
    *end++ = ';';
    return AppendBytes(end, text);
}

/// ";" and a whole number, with its sign.
template <class Integer>
char* AppendInt(char* end, Integer value) {
    *end++ = ';';
    end = std::to_chars(end, end + 24, value).ptr;
    *end = '\0';
    return end;
}
