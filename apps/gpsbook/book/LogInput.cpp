#include "apps/gpsbook/book/LogInput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "apps/gpsbook/book/Interrupt.h"
#include "apps/gpsbook/commands/CommandError.h"

namespace gpsbook {

namespace {

constexpr std::size_t kPiece = 1 << 20;

[[noreturn]] void Fail(const std::string& name, int error) {
    if (error == ENOENT || error == ENOTDIR)
        throw CommandError(exitNotFound, name + ": there is no such file; check the name");
    if (error == EISDIR)
        throw CommandError(exitFailure, name + ": is a folder; name the log files in it one by one");
    throw CommandError(exitFailure, name + ": cannot be read: " + std::generic_category().message(error) +
                                        "; check its access rights");
}

struct stat Inspect(const std::string& name) {
    struct stat info {};
    if (stat(name.c_str(), &info) != 0) Fail(name, errno);
    if (S_ISDIR(info.st_mode)) Fail(name, EISDIR);
    return info;
}

std::FILE* Open(const std::string& name, std::int64_t& size) {
    if (name == "-") return stdin;
    const struct stat info = Inspect(name);
    std::FILE* file = std::fopen(name.c_str(), "rb");
    if (!file) Fail(name, errno);
    if (S_ISREG(info.st_mode)) size = info.st_size;
    return file;
}

}  // namespace

LogInput::LogInput(const std::string& file)
    : name_(file == "-" ? "standard input" : file), file_(Open(file, size_)) {
    (void)std::setvbuf(file_, nullptr, _IONBF, 0);  // pieces are large enough; with a buffer it works as well
}

LogInput::~LogInput() {
    if (file_ != stdin) (void)std::fclose(file_);  // only read: nothing can be lost
}

// Without opening it: a pipe can be opened only once.
void LogInput::Check(const std::string& file) {
    if (file == "-") return;
    Inspect(file);
    if (access(file.c_str(), R_OK) != 0) Fail(file, errno);
}

std::string_view LogInput::Next(std::size_t atLeast) {
    buffer_.resize(kPiece);
    std::size_t length = 0;
    while (length < atLeast) {
        const std::size_t n = std::fread(buffer_.data() + length, 1, buffer_.size() - length, file_);
        length += n;
        if (n == 0) {
            const int error = errno;
            CheckInterrupt();  // a wait for more that a signal has ended is no failure to read
            if (std::ferror(file_)) Fail(name_, error);
            break;
        }
    }
    read_ += static_cast<std::int64_t>(length);
    return {buffer_.data(), length};
}

}  // namespace gpsbook
