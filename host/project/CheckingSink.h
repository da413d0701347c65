// CheckingSink: writes a content to a file and counts its checksums.
#pragma once

#include <cerrno>
#include <new>

#include "host/os/FileOperations.h"
#include "host/project/BlockChecks.h"
#include "platform/base/StreamEnds.h"

namespace gpsproject {

class CheckingSink : public StreamSink {
public:
    CheckingSink(FileOperations& files, int file) : files_(files), file_(file) {}

    // Nothing is thrown: a stream passes its last bytes on in its destructor.
    int Write(const void* bytes, std::size_t size) override {
        try {
            checks_.Add(bytes, size);
        } catch (const std::bad_alloc&) {
            return ENOMEM;
        }
        return files_.Write(file_, bytes, size);
    }

    BlockChecks& GetChecks() { return checks_; }

private:
    FileOperations& files_;
    int file_;
    BlockChecks checks_;
};

}  // namespace gpsproject
