// OwnedFile: an open file that is closed in the end.
#pragma once

#include "host/os/FileOperations.h"

namespace gpsproject {

struct OwnedFile {
    explicit OwnedFile(FileOperations& operations) : files(operations) {}
    ~OwnedFile() {
        if (number >= 0) files.Close(number);
    }
    OwnedFile(const OwnedFile&) = delete;
    OwnedFile& operator=(const OwnedFile&) = delete;

    FileOperations& files;
    int number = -1;
};

}  // namespace gpsproject
