// LiveLog: a log that grows while it is read.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace gpsbook {

/// Reads on at the end of a log, as its bytes come. "-" is standard input.
///
/// A file is never at its end: it is looked at again and again. Standard input, a pipe and a device end when
/// nobody writes to them any more. After `idle` without a byte all of them end.
class LiveLog {
public:
    using Clock = std::chrono::steady_clock;

    /// Errors: CommandError, exitNotFound when the file does not exist, exitFailure when it cannot be read.
    LiveLog(const std::string& file, std::optional<Clock::duration> idle);
    ~LiveLog();
    LiveLog(const LiveLog&) = delete;
    LiveLog& operator=(const LiveLog&) = delete;

    /// The bytes that have come, valid until the next call; none when `wait`, or a moment, has passed without
    /// any, or the program was asked to end. Errors: CommandError when reading fails, or the file has become
    /// shorter: then it is another log.
    std::string_view Next(Clock::duration wait);

    /// Bytes that were not read now are read by who starts again: so it is with a file.
    bool CanStartAgain() const { return grows_; }

    /// Nothing comes any more.
    bool HasEnded() const { return ended_; }

private:
    bool WaitForMore(Clock::duration wait) const;
    void CheckLength() const;

    const std::string name_;
    const std::optional<Clock::duration> idle_;
    int file_ = -1;
    bool grows_ = false;  // a file in which more may come behind its end
    bool ended_ = false;
    std::int64_t read_ = 0;
    Clock::time_point lastByte_ = Clock::now();
    std::vector<char> buffer_;
};

}  // namespace gpsbook
