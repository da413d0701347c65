#include "host/project/SafeReplace.h"

#include <cerrno>
#include <utility>

#include "host/project/FileCopy.h"
#include "host/project/FileMessage.h"
#include "host/project/OwnedFile.h"

namespace gpsproject {

namespace {

std::string FolderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
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
    if (IsUnsupported(error)) error = CopyFile(files_, target_, backupSaving_);
    if (error == 0) error = files_.Rename(backupSaving_, backup_);
    // Also when the backup is the former file already: the system renames nothing then.
    files_.Unlink(backupSaving_);
    if (error != 0)
        throw SystemError(target_, "cannot be saved, the file is as it was; " + backup_ + " cannot be made",
                          error);
}

}  // namespace gpsproject
