// MemoryFile: a file that never touches a disk, for those that take a name and are called thousands of times.
#pragma once

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace test {

class MemoryFile {
public:
    MemoryFile() : fd_(::memfd_create("gps-test", MFD_CLOEXEC)) {
        if (fd_ < 0) throw std::runtime_error("no file in memory");
        name_ = "/proc/self/fd/" + std::to_string(fd_);
    }
    ~MemoryFile() { ::close(fd_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// To be opened under; it is always there.
    const std::string& Name() const { return name_; }

    void Write(std::string_view bytes) {
        if (::ftruncate(fd_, 0) != 0 ||
            ::pwrite(fd_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("no room for a file in memory");
    }

    std::string Bytes() const {
        struct stat facts {};
        if (::fstat(fd_, &facts) != 0) throw std::runtime_error("a file in memory is gone");
        std::string bytes(static_cast<std::size_t>(facts.st_size), '\0');
        if (::pread(fd_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("a file in memory is gone");
        return bytes;
    }

private:
    int fd_;
    std::string name_;
};

}  // namespace test
