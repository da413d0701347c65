#include "host/base/JournalFrame.h"

#include <zlib.h>

#include <cstring>

#include "platform/base/LittleEndian.h"

namespace {

constexpr std::size_t kHeaderCrcAt = 5;
constexpr std::size_t kHeaderCheckedAt = 9;

const unsigned char* Unsigned(std::string_view bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

}  // namespace

std::uint32_t JournalCrc(std::uint32_t before, const void* bytes, std::size_t size) {
    return static_cast<std::uint32_t>(crc32_z(before, static_cast<const unsigned char*>(bytes), size));
}

std::string JournalHeaderBytes(const JournalHeader& header) {
    unsigned char bytes[kJournalHeaderSize];
    std::memcpy(bytes, kJournalMarker.data(), kJournalMarker.size());
    StoreLittleEndian(bytes + 9, header.id);
    StoreLittleEndian(bytes + 17, header.base);
    StoreLittleEndian(bytes + 25, header.firstSequence);
    StoreLittleEndian(bytes + kHeaderCrcAt,
                      JournalCrc(0, bytes + kHeaderCheckedAt, kJournalHeaderSize - kHeaderCheckedAt));
    return std::string(reinterpret_cast<const char*>(bytes), sizeof bytes);
}

std::optional<JournalHeader> ReadJournalHeader(std::string_view bytes) {
    if (bytes.size() < kJournalHeaderSize || !bytes.starts_with(kJournalMarker)) return {};
    const unsigned char* const at = Unsigned(bytes);
    const std::uint32_t crc = JournalCrc(0, at + kHeaderCheckedAt, kJournalHeaderSize - kHeaderCheckedAt);
    if (LoadLittleEndian<std::uint32_t>(at + kHeaderCrcAt) != crc) return {};
    return JournalHeader{LoadLittleEndian<std::uint64_t>(at + 9), LoadLittleEndian<std::uint64_t>(at + 17),
                         LoadLittleEndian<std::uint64_t>(at + 25)};
}

void StoreFrameHead(unsigned char* at, const FrameHead& head) {
    std::memcpy(at, kFrameMagic.data(), kFrameMagic.size());
    StoreLittleEndian(at + 8, head.payloadLength);
    StoreLittleEndian(at + 12, head.journal);
    StoreLittleEndian(at + 20, head.sequence);
    StoreLittleEndian(at + 28, head.durable);
    StoreLittleEndian(at + 36, head.code);
    StoreLittleEndian(at + 38, head.flags);
}

void SealFrame(unsigned char* at, std::size_t payloadLength) {
    StoreLittleEndian(at + 4,
                      JournalCrc(0, at + kFrameChecked, kFrameHeadSize - kFrameChecked + payloadLength));
}

std::string FrameBytes(FrameHead head, std::string_view payload) {
    head.payloadLength = static_cast<std::uint32_t>(payload.size());
    std::string bytes(kFrameHeadSize, '\0');
    bytes += payload;
    auto* const at = reinterpret_cast<unsigned char*>(bytes.data());
    StoreFrameHead(at, head);
    SealFrame(at, payload.size());
    return bytes;
}

std::optional<FrameHead> LoadFrameHead(const unsigned char* at) {
    if (std::memcmp(at, kFrameMagic.data(), kFrameMagic.size()) != 0) return {};
    FrameHead head;
    head.crc = LoadLittleEndian<std::uint32_t>(at + 4);
    head.payloadLength = LoadLittleEndian<std::uint32_t>(at + 8);
    head.journal = LoadLittleEndian<std::uint64_t>(at + 12);
    head.sequence = LoadLittleEndian<std::uint64_t>(at + 20);
    head.durable = LoadLittleEndian<std::uint64_t>(at + 28);
    head.code = LoadLittleEndian<std::uint16_t>(at + 36);
    head.flags = LoadLittleEndian<std::uint16_t>(at + 38);
    return head;
}
