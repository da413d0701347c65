#include "host/base/FileEnds.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/base/fileHelpers.h"

StreamSink::~StreamSink() = default;
int StreamSink::Close() { return 0; }
StreamSource::~StreamSource() = default;

FileSink::FileSink(const char* file, int& error)
    : fd_(open(PercorsoDiSistema(file).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {
    error = fd_ < 0 ? errno : 0;
}

FileSink::~FileSink() { Close(); }

int FileSink::Write(const void* bytes, std::size_t size) {
    const char* at = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t written = write(fd_, at, size);
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        at += written;
        size -= static_cast<std::size_t>(written);
    }
    return 0;
}

int FileSink::Close() {
    if (fd_ < 0) return 0;
    const int error = close(fd_) < 0 ? errno : 0;
    fd_ = -1;
    return error;
}

FileSource::FileSource(const char* file, std::int64_t& size, int& error)
    // Without O_NONBLOCK the opening of a pipe would wait for a writer; it means nothing for a file.
    : fd_(open(PercorsoDiSistema(file).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    size = 0;
    error = 0;
    struct stat facts {};
    if (fd_ < 0 || fstat(fd_, &facts) < 0) {
        error = errno;
    } else if (!S_ISREG(facts.st_mode)) {
        error = EINVAL;  // how much a pipe will give is not known, and a folder gives nothing
    } else {
        size = facts.st_size;
    }
}

FileSource::~FileSource() {
    if (fd_ >= 0) close(fd_);
}

int FileSource::Read(void* bytes, std::size_t size, std::size_t& got) {
    ssize_t read;
    do {
        read = ::read(fd_, bytes, size);
    } while (read < 0 && errno == EINTR);
    got = read < 0 ? 0 : static_cast<std::size_t>(read);
    return read < 0 ? errno : 0;
}
