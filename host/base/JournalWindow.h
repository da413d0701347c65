// JournalWindow: a journal read in pieces, so that no length in it asks for memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "host/os/FileOperations.h"

class JournalWindow {
public:
    JournalWindow(FileOperations& files, int file, std::int64_t size);

    /// Bytes of the file, at most kFrameHeadSize; null when they are not all there. Valid until the next
    /// call.
    const unsigned char* At(std::int64_t offset, std::size_t size);

    /// CRC-32 of bytes that are all within the file; `crc` is unchanged when they cannot be read.
    bool Crc(std::int64_t offset, std::int64_t size, std::uint32_t& crc);

    /// Where the text, at most kFrameHeadSize bytes, stands next from `from` on; the size of the file:
    /// nowhere.
    std::int64_t Find(std::string_view text, std::int64_t from);

    std::int64_t GetSize() const { return size_; }

    /// Error number (errno) of the first read that failed; 0: none. EIO, too, when the file has become
    /// shorter.
    int GetError() const { return error_; }

private:
    std::size_t Load(std::int64_t offset);

    FileOperations& files_;
    const int file_;
    const std::int64_t size_;
    std::unique_ptr<unsigned char[]> bytes_;
    std::int64_t begin_ = 0;
    std::size_t filled_ = 0;
    int error_ = 0;
};
