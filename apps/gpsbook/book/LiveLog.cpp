#include "apps/gpsbook/book/LiveLog.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/book/LogInput.h"
#include "apps/gpsbook/commands/CommandError.h"

namespace gpsbook {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t kPiece = 1 << 16;
constexpr milliseconds kLook{25};     // at a file, for more
constexpr milliseconds kMoment{200};  // at most, until it is seen that the program is asked to end

[[noreturn]] void Fail(const std::string& name, int error) {
    throw CommandError(exitFailure, name + ": cannot be read: " + std::generic_category().message(error) +
                                        "; what was stored before is kept");
}

}  // namespace

LiveLog::LiveLog(const std::string& file, std::optional<Clock::duration> idle)
    : name_(file == "-" ? "standard input" : file), idle_(idle), buffer_(kPiece) {
    if (file == "-") {
        file_ = STDIN_FILENO;
        return;
    }
    LogInput::Check(file);
    file_ = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (file_ < 0) {
        const int error = errno;
        CheckInterrupt();  // a pipe waits here for who writes to it
        Fail(name_, error);
    }
    struct stat info {};
    grows_ = ::fstat(file_, &info) == 0 && S_ISREG(info.st_mode);
}

LiveLog::~LiveLog() {
    if (file_ > STDIN_FILENO) ::close(file_);
}

// True: there may be something to read.
bool LiveLog::WaitForMore(Clock::duration wait) const {
    wait = std::clamp<Clock::duration>(wait, milliseconds(1), grows_ ? kLook : kMoment);
    pollfd waited{file_, POLLIN, 0};
    const int shown = static_cast<int>(std::chrono::ceil<milliseconds>(wait).count());
    return ::poll(&waited, grows_ ? 0 : 1, shown) != 0;
}

void LiveLog::CheckLength() const {
    struct stat info {};
    if (::fstat(file_, &info) == 0 && info.st_size < read_)
        throw CommandError(exitFailure, name_ +
                                            ": has become shorter, another log has begun in it; what was "
                                            "stored before is kept: start again to follow the new one");
}

std::string_view LiveLog::Next(Clock::duration wait) {
    if (ended_ || (!grows_ && !WaitForMore(wait))) {
        ended_ = ended_ || (idle_ && Clock::now() - lastByte_ >= *idle_);
        return {};
    }
    const ssize_t got = ::read(file_, buffer_.data(), buffer_.size());
    if (got < 0) {
        const int error = errno;
        if (error == EINTR || error == EAGAIN) return {};
        if (error == EIO && !grows_) {  // a terminal or device whose other end has gone
            ended_ = true;
            return {};
        }
        Fail(name_, error);
    }
    if (got > 0) {
        lastByte_ = Clock::now();
        read_ += got;
        return {buffer_.data(), static_cast<std::size_t>(got)};
    }
    ended_ = !grows_ || (idle_ && Clock::now() - lastByte_ >= *idle_);
    if (!ended_) {
        CheckLength();
        if (!IsAskedToEnd()) WaitForMore(wait);
    }
    return {};
}

}  // namespace gpsbook
