// SafeReplace: a file that takes the place of another one when it is complete.
#pragma once

#include <optional>
#include <string>

#include "host/os/FileOperations.h"

namespace gpsproject {

/// Endings of the files that stand beside a project.
inline constexpr const char* kBackupEnding = ".bak";
inline constexpr const char* kSavingEnding = ".saving";

/// A new file beside the target. It is written and synced under another name; then the former file gets its
/// backup name as a second one (or is copied, on a file system where a file has one name), the new file takes
/// its name in one step, and the folder is synced. There is no moment without a complete file. Without Place
/// the new file is removed.
///
/// Requires: the caller holds the lock of the target. What an interrupted save left is removed first.
/// Errors: ProjectError (system, exists), and the files are as they were.
class SafeReplace {
public:
    /// `target`: path without links. `former`: facts of the file there, whose rights the new one gets; none
    /// when there is no file.
    SafeReplace(FileOperations& files, std::string target,
                const std::optional<FileOperations::Facts>& former);
    ~SafeReplace();
    SafeReplace(const SafeReplace&) = delete;
    SafeReplace& operator=(const SafeReplace&) = delete;

    int GetFile() const { return file_; }

    /// The content is on the disk.
    void Sync();

    /// Gives the new file its place. Returns 0, or the error number with which the disk could not confirm
    /// that the names will stay so: the new file stands in its place all the same, and the former one is its
    /// backup.
    int Place();

private:
    void PlaceNew();
    void PlaceOver();
    void KeepBackup();

    FileOperations& files_;
    std::string target_;
    std::string saving_;
    std::string backup_;
    std::string backupSaving_;  // the backup, before it replaces the one before
    std::string folder_;
    bool replaces_;
    int file_ = -1;
    bool made_ = false;  // the new file has its first name
};

}  // namespace gpsproject
