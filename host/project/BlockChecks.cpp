#include "host/project/BlockChecks.h"

#include <zlib.h>

#include <algorithm>
#include <array>

#include "host/project/ContainerFormat.h"

namespace gpsproject {

BlockChecks::BlockChecks() : joinBlock_(crc32_combine_gen(kBlock)) {}

void BlockChecks::Add(const void* bytes, std::size_t size) {
    const auto* at = static_cast<const unsigned char*>(bytes);
    length_ += static_cast<std::int64_t>(size);
    while (size > 0) {
        const std::size_t step = std::min(size, static_cast<std::size_t>(kBlock) - inCurrent_);
        current_ = static_cast<std::uint32_t>(crc32_z(current_, at, step));
        inCurrent_ += step;
        at += step;
        size -= step;
        if (inCurrent_ == static_cast<std::size_t>(kBlock)) EndBlock();
    }
}

void BlockChecks::AddBlock(std::uint32_t crc, std::size_t size) {
    length_ += static_cast<std::int64_t>(size);
    current_ = crc;
    inCurrent_ = size;
    if (size == static_cast<std::size_t>(kBlock)) EndBlock();
}

void BlockChecks::EndBlock() {
    whole_ = static_cast<std::uint32_t>(crc32_combine_op(whole_, current_, joinBlock_));
    blocks_.push_back(current_);
    current_ = 0;
    inCurrent_ = 0;
}

std::uint32_t BlockChecks::GetCrc() const {
    return static_cast<std::uint32_t>(crc32_combine(whole_, current_, static_cast<z_off_t>(inCurrent_)));
}

std::vector<std::uint32_t> BlockChecks::TakeBlocks() {
    if (inCurrent_ > 0) blocks_.push_back(current_);
    return std::move(blocks_);
}

// A wrong bit changes the checksum by a pattern that depends on nothing but how far the bit stands from the
// end: the pattern of one byte before is that pattern moved on by a byte.
std::optional<Bit> FindWrongBit(std::string_view bytes, std::uint32_t crc) {
    const std::uint32_t wanted = Crc(bytes) ^ crc;
    const z_crc_t* const table = get_crc_table();
    std::array<std::uint32_t, 8> patterns{};
    for (std::size_t bit = 0; bit < patterns.size(); ++bit) patterns[bit] = table[1u << bit];
    for (std::size_t i = bytes.size(); i-- > 0;) {
        for (std::size_t bit = 0; bit < patterns.size(); ++bit) {
            if (patterns[bit] == wanted) return Bit{i, static_cast<unsigned char>(1u << bit)};
            patterns[bit] = (patterns[bit] >> 8) ^ table[patterns[bit] & 0xFF];
        }
    }
    return {};
}

}  // namespace gpsproject
