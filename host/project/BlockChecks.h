// BlockChecks: checksums of a content, block by block and as a whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace gpsproject {

/// Counts the checksums while the content passes: those of the blocks, and from them that of the whole.
class BlockChecks {
public:
    BlockChecks();

    /// The next bytes, in pieces of any size.
    void Add(const void* bytes, std::size_t size);

    /// The same for a block whose checksum is known; only the last one may be shorter.
    void AddBlock(std::uint32_t crc, std::size_t size);

    std::int64_t GetLength() const { return length_; }

    /// CRC-32 of all that was added.
    std::uint32_t GetCrc() const;

    /// CRC-32 of each block, the last one as long as it has become.
    std::vector<std::uint32_t> TakeBlocks();

private:
    void EndBlock();

    unsigned long joinBlock_;  // how to append a whole block's checksum
    std::vector<std::uint32_t> blocks_;
    std::int64_t length_ = 0;
    std::uint32_t whole_ = 0;    // of the blocks that are complete
    std::uint32_t current_ = 0;  // of the one that is not
    std::size_t inCurrent_ = 0;
};

struct Bit {
    std::size_t byte;
    unsigned char mask;
};

/// The one bit that has to be turned for the bytes to have this checksum; nothing when it is not one.
std::optional<Bit> FindWrongBit(std::string_view bytes, std::uint32_t crc);

}  // namespace gpsproject
