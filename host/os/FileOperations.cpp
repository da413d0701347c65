#include "host/os/FileOperations.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>

namespace {

constexpr std::int64_t kNsPerSecond = 1'000'000'000;

int ErrorOf(int result) { return result < 0 ? errno : 0; }

template <class Call>
auto Repeated(Call call) -> decltype(call()) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

std::int64_t Nanoseconds(const timespec& time) { return time.tv_sec * kNsPerSecond + time.tv_nsec; }

FileOperations::Facts FactsOf(const struct stat& s) {
    FileOperations::Facts facts;
    facts.regular = S_ISREG(s.st_mode);
    facts.folder = S_ISDIR(s.st_mode);
    facts.size = s.st_size;
    facts.device = s.st_dev;
    facts.inode = s.st_ino;
    facts.modifiedNs = Nanoseconds(s.st_mtim);
    facts.statusChangedNs = Nanoseconds(s.st_ctim);
    facts.mode = s.st_mode & 0777;
    facts.owner = s.st_uid;
    facts.group = s.st_gid;
    return facts;
}

std::string RealPath(const std::string& path, int& error) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), free);
    error = real ? 0 : errno;
    return real ? real.get() : std::string();
}

class PosixFiles : public FileOperations {
public:
    int Open(const std::string& path, How how, std::uint32_t mode, int& file) override {
        int flags = O_CLOEXEC;
        switch (how) {
            case How::read:
                flags |= O_RDONLY | O_NONBLOCK;
                break;
            case How::createNew:
                flags |= O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW;
                break;
            case How::share:
                flags |= O_RDWR | O_CREAT | O_NOFOLLOW;
                break;
        }
        const int opened = Repeated([&] { return open(path.c_str(), flags, mode); });
        if (opened < 0) return errno;
        file = opened;
        return 0;
    }

    // Not repeated: after an interruption the number may belong to another file already.
    int Close(int file) override {
        const int error = ErrorOf(close(file));
        return error == EINTR ? 0 : error;
    }

    int ReadAt(int file, std::int64_t offset, void* bytes, std::size_t size, std::size_t& got) override {
        char* const at = static_cast<char*>(bytes);
        std::size_t done = 0;
        while (done < size) {
            const ssize_t step = Repeated(
                [&] { return pread(file, at + done, size - done, offset + static_cast<off_t>(done)); });
            if (step < 0) return errno;
            if (step == 0) break;
            done += static_cast<std::size_t>(step);
        }
        got = done;
        return 0;
    }

    int Write(int file, const void* bytes, std::size_t size) override {
        const char* at = static_cast<const char*>(bytes);
        while (size > 0) {
            const ssize_t step = Repeated([&] { return write(file, at, size); });
            if (step < 0) return errno;
            if (step == 0) return EIO;  // a file that takes nothing and says nothing
            at += step;
            size -= static_cast<std::size_t>(step);
        }
        return 0;
    }

    int Truncate(int file, std::int64_t size) override {
        return ErrorOf(Repeated([&] { return ftruncate(file, size); }));
    }
    int Sync(int file) override {
        return ErrorOf(Repeated([&] { return fsync(file); }));
    }
    int SyncData(int file) override {
        return ErrorOf(Repeated([&] { return fdatasync(file); }));
    }

    int SyncFolder(const std::string& folder) override {
        const int opened = Repeated([&] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
        if (opened < 0) return errno;
        const int error = Sync(opened);
        Close(opened);
        // Some file systems have no such thing: their names are as safe as they get.
        return error == EINVAL || error == ENOTSUP ? 0 : error;
    }

    int Rename(const std::string& from, const std::string& to) override {
        return ErrorOf(rename(from.c_str(), to.c_str()));
    }
    int Link(const std::string& from, const std::string& to) override {
        return ErrorOf(link(from.c_str(), to.c_str()));
    }
    int Unlink(const std::string& path) override { return ErrorOf(unlink(path.c_str())); }

    int GetFacts(const std::string& path, Facts& facts) override {
        struct stat s {};
        if (stat(path.c_str(), &s) < 0) return errno;
        facts = FactsOf(s);
        return 0;
    }
    int GetFacts(int file, Facts& facts) override {
        struct stat s {};
        if (fstat(file, &s) < 0) return errno;
        facts = FactsOf(s);
        return 0;
    }

    int CheckWritable(const std::string& path) override { return ErrorOf(access(path.c_str(), W_OK)); }

    int CopyRights(int file, const Facts& from) override {
        std::uint32_t mode = from.mode;
        if (fchown(file, from.owner, from.group) < 0 && fchown(file, static_cast<uid_t>(-1), from.group) < 0)
            mode = (mode & 0707) | (mode & (mode << 3) & 0070);
        return ErrorOf(Repeated([&] { return fchmod(file, mode); }));
    }

    int Resolve(const std::string& path, std::string& resolved) override {
        int error = 0;
        std::string real = RealPath(path, error);
        struct stat s {};
        if (error == ENOENT && lstat(path.c_str(), &s) < 0 && errno == ENOENT) {
            const auto slash = path.rfind('/');
            const std::string name = path.substr(slash + 1);
            if (name.empty()) return ENOENT;
            real = RealPath(slash == std::string::npos ? "." : path.substr(0, slash + 1), error);
            if (error == 0) real += (real.ends_with('/') ? "" : "/") + name;
        }
        if (error == 0) resolved = real;
        return error;
    }

    int Lock(int file) override {
        return ErrorOf(Repeated([&] { return flock(file, LOCK_EX | LOCK_NB); }));
    }
};

}  // namespace

FileOperations::~FileOperations() = default;

FileOperations& FileOperations::System() {
    static PosixFiles files;
    return files;
}
