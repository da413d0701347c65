#include "host/project/SectionSource.h"

#include <algorithm>
#include <cstring>

namespace gpsproject {

namespace {

constexpr std::size_t kBlockSize = static_cast<std::size_t>(kBlock);

constexpr std::size_t kToldMost = 100;    // bad blocks that are told one by one
constexpr std::int64_t kRepairMost = 16;  // looking for a bit takes its time: not in a file that is ruined

}  // namespace

int SectionSource::Read(void* bytes, std::size_t size, std::size_t& got) {
    char* const to = static_cast<char*>(bytes);
    got = 0;
    if (left_.empty()) {
        const auto remain = static_cast<std::size_t>(section_.entry.length - position_);
        // Blocks that fit are read where they are wanted, the others on the way.
        const std::size_t fit = size >= remain ? remain : size / kBlockSize * kBlockSize;
        if (fit > 0 || remain == 0) return remain == 0 ? 0 : Fetch(to, fit, got);
        std::size_t fetched = 0;
        if (const int error = Fetch(carry_.data(), std::min(remain, kBlockSize), fetched)) return error;
        left_ = {carry_.data(), fetched};
    }
    got = std::min(size, left_.size());
    std::memcpy(to, left_.data(), got);
    left_.remove_prefix(got);
    return 0;
}

int SectionSource::Fetch(char* bytes, std::size_t size, std::size_t& got) {
    error_ = files_.ReadAt(file_, section_.entry.offset + position_, bytes, size, got);
    if (error_ != 0) got = 0;
    Check(bytes, got);
    position_ += static_cast<std::int64_t>(got);
    return error_;
}

void SectionSource::Check(char* bytes, std::size_t size) {
    for (std::size_t at = 0; at < size; at += kBlockSize)
        CheckBlock(bytes + at, std::min(kBlockSize, size - at),
                   static_cast<std::size_t>(checks_.GetLength() / kBlock));
}

void SectionSource::CheckBlock(char* bytes, std::size_t size, std::size_t block) {
    std::uint32_t crc = Crc({bytes, size});
    if (block < section_.blocks.size() && section_.blocks[block] != crc) {
        const auto begin = section_.entry.offset + static_cast<std::int64_t>(block) * kBlock;
        BadBlock bad{begin, static_cast<std::int64_t>(size), false};
        if (++badCount_ <= kRepairMost) {
            if (const auto bit = FindWrongBit({bytes, size}, section_.blocks[block])) {
                bytes[bit->byte] = static_cast<char>(bytes[bit->byte] ^ bit->mask);
                bad = {begin + static_cast<std::int64_t>(bit->byte), 1, true};
                crc = section_.blocks[block];
            }
        }
        if (bad_.size() < kToldMost) bad_.push_back(bad);
    }
    checks_.AddBlock(crc, size);
}

}  // namespace gpsproject
