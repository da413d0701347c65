#include "host/base/SettingsFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

#include "host/base/FileEnds.h"
#include "platform/base/fileHelpers.h"

namespace {

constexpr std::int64_t kLargest = 16 << 20;
constexpr auto kLockPatience = std::chrono::seconds(10);

class Descriptor {
public:
    Descriptor(const std::string& path, int flags, mode_t mode)
        : fd_(open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    ~Descriptor() {
        if (fd_ >= 0) close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool IsOpen() const { return fd_ >= 0; }
    int Get() const { return fd_; }

private:
    int fd_;
};

// The file that a link leads to: a link stays one when its file is replaced.
std::string Resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : path;
}

std::string FolderOf(const std::string& path) {
    const std::size_t end = path.rfind('/');
    if (end == std::string::npos) return ".";
    return end == 0 ? "/" : path.substr(0, end);
}

// Whoever holds the lock is done in milliseconds, unless it is stopped or hangs.
bool Lock(int fd) {
    const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return false;
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

bool WriteAll(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t written = write(fd, text.data() + done, text.size() - done);
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) done += static_cast<std::size_t>(written);
    }
    return fsync(fd) == 0;
}

// The new text under another name, on the disk before it takes the place of the old one.
bool WriteBeside(const std::string& path, const std::string& beside, const std::string& text) {
    const Descriptor out(beside, O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (!out.IsOpen()) return false;
    struct stat old {};
    if (stat(path.c_str(), &old) == 0 && fchmod(out.Get(), old.st_mode & 07777) != 0) return false;
    return WriteAll(out.Get(), text);
}

// A second name for the old file: it stays when the first name gets the new text.
bool KeepOld(const std::string& path, const std::string& keptAs, std::string& name) {
    name = path + keptAs;
    for (int number = 2; link(path.c_str(), name.c_str()) != 0; ++number) {
        if (errno != EEXIST || number > 99) return false;
        std::array<char, 16> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        name = path + keptAs + '-' + std::string(digits.data(), end);
    }
    return true;
}

bool Replace(const std::string& path, const SettingsChange& change, std::string& kept) {
    const std::string beside = path + ".tmp";
    if (!WriteBeside(path, beside, change.text) || (change.keepOld && !KeepOld(path, change.keptAs, kept)) ||
        std::rename(beside.c_str(), path.c_str()) != 0) {
        unlink(beside.c_str());
        return false;
    }
    // That the new name survives a power failure is the folder's own fsync. Not every file system has one,
    // nor may everybody who writes to a folder open it; the text is replaced, whatever comes of this.
    const Descriptor folder(FolderOf(path), O_RDONLY | O_DIRECTORY, 0);
    if (folder.IsOpen()) fsync(folder.Get());
    return true;
}

}  // namespace

SettingsText ReadSettings(const std::string& path) {
    using State = SettingsText::State;
    SettingsText read;
    std::int64_t size = 0;
    int error = 0;
    FileSource file(path.c_str(), size, error);
    if (error != 0) {
        read.state = error == ENOENT || error == ENOTDIR ? State::Missing : State::Refused;
        return read;
    }
    if (size > kLargest) {
        read.state = State::Damaged;
        return read;
    }
    read.state = State::Readable;
    read.text.resize(static_cast<std::size_t>(size));
    std::size_t done = 0, got = 1;
    while (done < read.text.size() && got > 0) {
        if (file.Read(read.text.data() + done, read.text.size() - done, got) != 0) {
            read = {State::Refused, {}};
            return read;
        }
        done += got;
    }
    read.text.resize(done);
    if (read.text.find('\0') != std::string::npos) read = {State::Damaged, {}};
    return read;
}

bool ChangeSettings(const std::string& path, const std::function<SettingsChange(const SettingsText&)>& change,
                    std::string* kept) {
    if (path.empty()) return false;
    const std::string file = Resolved(PercorsoDiSistema(path.c_str()));
    std::error_code failed;
    std::filesystem::create_directories(FolderOf(file), failed);
    if (failed) return false;
    const Descriptor lock(file + ".lock", O_RDWR | O_CREAT, 0666);
    if (!lock.IsOpen() || !Lock(lock.Get())) return false;

    const SettingsText old = ReadSettings(file);
    if (old.state == SettingsText::State::Refused) return false;
    SettingsChange changed = change(old);
    if (changed.text == old.text) return true;
    if (changed.text.size() > static_cast<std::size_t>(kLargest)) return false;
    changed.keepOld |= old.state == SettingsText::State::Damaged;
    std::string name;
    if (!Replace(file, changed, name)) return false;
    if (kept && changed.keepOld) *kept = std::move(name);
    return true;
}
