#include "host/project/FileCopy.h"

#include <cerrno>
#include <vector>

#include "host/project/OwnedFile.h"

namespace gpsproject {

// What file systems without second names say.
bool IsUnsupported(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
}

int CopyFile(FileOperations& files, const std::string& source, const std::string& target) {
    constexpr std::size_t kWindow = 256 * 1024;  // bytes at once
    OwnedFile from(files), to(files);
    FileOperations::Facts facts;
    int error = files.Open(source, FileOperations::How::read, 0, from.number);
    if (error == 0) error = files.GetFacts(from.number, facts);
    if (error == 0) error = files.Open(target, FileOperations::How::createNew, 0600, to.number);
    if (error != 0) return error;
    files.CopyRights(to.number, facts);
    std::vector<char> window(kWindow);
    std::size_t got = 0;
    for (std::int64_t at = 0;; at += static_cast<std::int64_t>(got)) {
        error = files.ReadAt(from.number, at, window.data(), window.size(), got);
        if (error != 0 || got == 0) break;
        error = files.Write(to.number, window.data(), got);
        if (error != 0) break;
    }
    return error != 0 ? error : files.Sync(to.number);
}

int KeepUnder(FileOperations& files, const std::string& from, const std::string& to) {
    const int error = files.Link(from, to);
    return IsUnsupported(error) ? CopyFile(files, from, to) : error;
}

std::string FreeName(FileOperations& files, const std::string& base) {
    std::string name;
    FileOperations::Facts facts;
    for (int i = 1; name.empty() || files.GetFacts(name, facts) == 0; ++i) name = base + std::to_string(i);
    return name;
}

}  // namespace gpsproject
