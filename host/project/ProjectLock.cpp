#include "host/project/ProjectLock.h"

#include <unistd.h>

#include <array>
#include <cerrno>

#include "host/project/FileMessage.h"

namespace gpsproject {

namespace {

// A holder that ends just now takes its file away between our opening and locking it. Not that often.
constexpr int kTries = 100;

std::string OwnName() {
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) != 0) host[0] = '\0';
    return "process " + std::to_string(getpid()) + " on " + (host[0] ? host.data() : "an unnamed machine");
}

}  // namespace

ProjectLock::ProjectLock(FileOperations& files, const std::string& target)
    : files_(files), path_(target + ".lock") {
    for (int i = 0; i < kTries; ++i) {
        if (TryOnce(target)) return;
    }
    throw SystemError(target, "cannot be locked: " + path_ + " disappears again and again", EAGAIN);
}

ProjectLock::~ProjectLock() {
    if (file_ < 0) return;
    files_.Unlink(path_);  // while it is locked: nobody else's
    files_.Close(file_);
}

bool ProjectLock::TryOnce(const std::string& target) {
    const std::string who = OwnName() + '\n';
    if (const int error = files_.Open(path_, FileOperations::How::share, 0666, file_))
        throw SystemError(target, "cannot be locked: " + path_ + " cannot be opened", error);
    const int error = files_.Lock(file_);
    FileOperations::Facts locked, there;
    if (error == 0 && files_.GetFacts(file_, locked) == 0 && files_.GetFacts(path_, there) == 0 &&
        locked.inode == there.inode) {
        // Only to be told to others: a full disk does not keep anybody from working.
        if (files_.Truncate(file_, 0) == 0) files_.Write(file_, who.data(), who.size());
        return true;
    }
    std::string holder;
    try {
        if (error == EWOULDBLOCK) holder = Holder();
    } catch (...) {
        files_.Close(file_);
        throw;
    }
    files_.Close(file_);
    file_ = -1;
    if (error == 0) return false;
    if (error == EWOULDBLOCK)
        throw ProjectError(ProjectError::Kind::locked, target + ": is being written by " + holder +
                                                           "; close it there, or open it for reading");
    throw SystemError(target, "cannot be locked by " + path_, error);
}

std::string ProjectLock::Holder() {
    std::array<char, 400> text{};
    std::size_t got = 0;
    if (files_.ReadAt(file_, 0, text.data(), text.size(), got) != 0) got = 0;
    const std::string line(text.data(), got);
    const auto end = line.find('\n');
    return end == std::string::npos || end == 0 ? "another process" : line.substr(0, end);
}

}  // namespace gpsproject
