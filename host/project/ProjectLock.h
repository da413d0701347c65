// ProjectLock: at most one program writes a project.
#pragma once

#include <string>

#include "host/os/FileOperations.h"

namespace gpsproject {

/// Holds the lock of a project's file while it lives: a locked file beside it, which tells who holds it. When
/// its process ends, however it ends, the system lets go of the lock; a file that is left over locks nobody
/// out.
class ProjectLock {
public:
    /// `target`: the project's file, without links; it need not exist.
    /// Errors: ProjectError: locked, with process and machine of the holder; system.
    ProjectLock(FileOperations& files, const std::string& target);
    ~ProjectLock();
    ProjectLock(const ProjectLock&) = delete;
    ProjectLock& operator=(const ProjectLock&) = delete;

private:
    bool TryOnce(const std::string& target);
    std::string Holder();

    FileOperations& files_;
    std::string path_;
    int file_ = -1;
};

}  // namespace gpsproject
