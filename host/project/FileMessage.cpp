#include "host/project/FileMessage.h"

#include <cerrno>
#include <system_error>

namespace gpsproject {

namespace {

const char* WhatToDo(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            return "make room on the disk, or save to another one";
        case EFBIG:
            return "save to a disk that holds larger files";
        case EACCES:
        case EPERM:
            return "get the right to do it, or use another folder";
        case EROFS:
            return "it can only be read; use another disk";
        case EIO:
            return "the disk may be failing; save to another one";
        case ENOENT:
        case ENOTDIR:
            return "create the folder, or choose another";
        case EISDIR:
        case EINVAL:
            return "give the name of an ordinary file";
        case ELOOP:
            return "the link leads nowhere; remove it, or choose another name";
        case ENAMETOOLONG:
            return "choose a shorter name";
        case ENOMEM:
            return "close other programs, and try again";
        case ENOLCK:
        case ENOSYS:
        case EOPNOTSUPP:
            return "its file system cannot do that; use another disk";
        case EMFILE:
        case ENFILE:
            return "too many files are open; close some, and try again";
        default:
            return "try again, or use another disk";
    }
}

}  // namespace

ProjectError SystemError(const std::string& file, const std::string& what, int error) {
    return {ProjectError::Kind::system,
            file + ": " + what + ": " + std::generic_category().message(error) + "; " + WhatToDo(error)};
}

}  // namespace gpsproject
