#include "host/project/SafeReplace.h"

#include <cerrno>
#include <utility>
#include <vector>

#include "host/project/FileMessage.h"
#include "host/project/OwnedFile.h"

namespace gpsproject {

namespace {

std::string FolderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

constexpr std::size_t kWindow = 256 * 1024;

/// What file systems without second names say.
bool IsUnsupported(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
}

}  // namespace

SafeReplace::SafeReplace(FileOperations& files, std::string target,
                         const std::optional<FileOperations::Facts>& former)
    : files_(files),
      target_(std::move(target)),
      saving_(target_ + kSavingEnding),
      backup_(target_ + kBackupEnding),
      backupSaving_(backup_ + kSavingEnding),
      folder_(FolderOf(target_)),
      replaces_(former.has_value()) {
    files_.Unlink(saving_);
    files_.Unlink(backupSaving_);
    // Nobody else reads it before it has the rights of the former file.
    const int error = files_.Open(saving_, FileOperations::How::createNew, replaces_ ? 0600 : 0666, file_);
    if (error != 0) throw SystemError(target_, "cannot be saved: " + saving_ + " cannot be made", error);
    made_ = true;
    if (replaces_) files_.CopyRights(file_, *former);
}

SafeReplace::~SafeReplace() {
    if (made_) files_.Unlink(saving_);
    if (file_ >= 0) files_.Close(file_);
}

void SafeReplace::Sync() {
    if (const int error = files_.Sync(file_))
        throw SystemError(target_, "cannot be saved, the file is as it was", error);
}

int SafeReplace::Place() {
    if (replaces_)
        PlaceOver();
    else
        PlaceNew();
    return files_.SyncFolder(folder_);
}

void SafeReplace::PlaceNew() {
    // A second name, unlike a new one, never replaces a file that somebody made meanwhile.
    int error = files_.Link(saving_, target_);
    FileOperations::Facts there;
    if (IsUnsupported(error)) {
        error = files_.GetFacts(target_, there) == ENOENT ? files_.Rename(saving_, target_) : EEXIST;
        if (error == 0) made_ = false;
    }
    if (error == EEXIST)
        throw ProjectError(ProjectError::Kind::exists,
                           target_ + ": somebody has made this file meanwhile; choose another name");
    if (error != 0) throw SystemError(target_, "cannot be saved", error);
}

void SafeReplace::PlaceOver() {
    KeepBackup();
    if (const int error = files_.Rename(saving_, target_))
        throw SystemError(target_, "cannot be saved, the file is as it was", error);
    made_ = false;
}

/// The former file under its backup name, too.
void SafeReplace::KeepBackup() {
    int error = files_.Link(target_, backupSaving_);
    if (IsUnsupported(error)) error = CopyBackup();
    if (error == 0) error = files_.Rename(backupSaving_, backup_);
    // Also when the backup is the former file already: the system renames nothing then.
    files_.Unlink(backupSaving_);
    if (error != 0)
        throw SystemError(target_, "cannot be saved, the file is as it was; " + backup_ + " cannot be made",
                          error);
}

int SafeReplace::CopyBackup() {
    OwnedFile from(files_), to(files_);
    FileOperations::Facts facts;
    int error = files_.Open(target_, FileOperations::How::read, 0, from.number);
    if (error == 0) error = files_.GetFacts(from.number, facts);
    if (error == 0) error = files_.Open(backupSaving_, FileOperations::How::createNew, 0600, to.number);
    if (error != 0) return error;
    files_.CopyRights(to.number, facts);
    std::vector<char> window(kWindow);
    std::size_t got = 0;
    for (std::int64_t at = 0;; at += static_cast<std::int64_t>(got)) {
        error = files_.ReadAt(from.number, at, window.data(), window.size(), got);
        if (error != 0 || got == 0) break;
        error = files_.Write(to.number, window.data(), got);
        if (error != 0) break;
    }
    return error != 0 ? error : files_.Sync(to.number);
}

}  // namespace gpsproject
