// FileEnds: files as ends of the project streams.
#pragma once

#include <cstdint>

#include "platform/base/StreamEnds.h"

/// Writes to a file that it creates or empties.
class FileSink : public StreamSink {
public:
    /// `error` is an error number of errno when the file cannot be opened, else 0.
    FileSink(const char* file, int& error);
    ~FileSink() override;

    int Write(const void* bytes, std::size_t size) override;
    int Close() override;

private:
    int fd_;
};

/// Reads a file from its beginning.
class FileSource : public StreamSource {
public:
    /// `size`: bytes of the file; `error` as above.
    FileSource(const char* file, std::int64_t& size, int& error);
    ~FileSource() override;

    int Read(void* bytes, std::size_t size, std::size_t& got) override;

private:
    int fd_;
};
