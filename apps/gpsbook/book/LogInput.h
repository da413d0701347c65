// LogInput: the bytes of a log, from a file or from standard input.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace gpsbook {

/// Reads a log in pieces. "-" is standard input.
class LogInput {
public:
    /// Errors: CommandError, exitNotFound when the file does not exist, exitFailure when it cannot be read.
    explicit LogInput(const std::string& file);
    ~LogInput();
    LogInput(const LogInput&) = delete;
    LogInput& operator=(const LogInput&) = delete;

    /// Checks without reading that a file can be opened. Errors: as the constructor.
    static void Check(const std::string& file);

    /// The next piece, at least `atLeast` bytes of it unless the file ends; empty at the end. Valid until the
    /// next call. Errors: CommandError when reading fails.
    std::string_view Next(std::size_t atLeast = 1);

    /// Bytes of the file; 0 when that is not known.
    std::int64_t Size() const { return size_; }
    std::int64_t Read() const { return read_; }

private:
    std::string name_;
    std::int64_t size_ = 0;  // before file_, whose opening sets it
    std::FILE* file_;
    std::int64_t read_ = 0;
    std::vector<char> buffer_;
};

}  // namespace gpsbook
