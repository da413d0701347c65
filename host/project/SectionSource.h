// SectionSource: the content of one section, checked while it is read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/os/FileOperations.h"
#include "host/project/BlockChecks.h"
#include "host/project/ContainerFormat.h"
#include "platform/base/StreamEnds.h"

namespace gpsproject {

/// A section as it was found in a file.
struct FoundSection {
    SectionEntry entry;
    bool checked = false;               // its checksum is known
    std::vector<std::uint32_t> blocks;  // checksums of its blocks; empty: not known
};

/// Reads a section block by block and compares each with its checksum. A block with one wrong bit is put
/// right; others are handed out as they are. What was wrong is told at the end.
class SectionSource : public StreamSource {
public:
    struct BadBlock {
        std::int64_t offset;    // in the file: of the bit that was put right, else of the block
        std::int64_t size = 1;  // bytes that may be wrong
        bool repaired = false;
    };

    /// `section` outlives the source.
    SectionSource(FileOperations& files, int file, const FoundSection& section)
        : files_(files), file_(file), section_(section) {}

    int Read(void* bytes, std::size_t size, std::size_t& got) override;

    /// The first of them, in order, and how many there are in all.
    const std::vector<BadBlock>& GetBadBlocks() const { return bad_; }
    std::int64_t GetBadCount() const { return badCount_; }

    /// Error number of errno at which reading ended; 0: none.
    int GetError() const { return error_; }

    /// Whether the whole section was read and has the length and checksum that it had when it was written.
    /// Without a checksum: whether it was read.
    bool IsWhole() const {
        return error_ == 0 && checks_.GetLength() == section_.entry.length &&
               (!section_.checked || checks_.GetCrc() == section_.entry.crc);
    }

private:
    int Fetch(char* bytes, std::size_t size, std::size_t& got);
    void Check(char* bytes, std::size_t size);
    void CheckBlock(char* bytes, std::size_t size, std::size_t block);

    FileOperations& files_;
    int file_;
    const FoundSection& section_;
    std::int64_t position_ = 0;  // of what was fetched
    std::array<char, static_cast<std::size_t>(kBlock)> carry_;
    std::string_view left_;  // of the block in carry_
    BlockChecks checks_;
    std::vector<BadBlock> bad_;
    std::int64_t badCount_ = 0;
    int error_ = 0;
};

}  // namespace gpsproject
