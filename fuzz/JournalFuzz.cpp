// The frames of a journal, whatever they hold. Switch 0: the checksums are put right first.
#include <algorithm>

#include "fuzz/Fuzz.h"
#include "fuzz/OneFile.h"
#include "host/base/JournalScan.h"

namespace {

/// Frame by frame, as far as their lengths lead.
void PutRight(std::string& bytes) {
    if (bytes.size() < kJournalHeaderSize) return;
    ifpstream in(bytes.data(), bytes.size(), 0);
    in.Skip(9);
    JournalHeader header;
    header.id = static_cast<std::uint64_t>(in.ReadInt64());
    header.base = static_cast<std::uint64_t>(in.ReadInt64());
    header.firstSequence = static_cast<std::uint64_t>(in.ReadInt64());
    bytes.replace(0, kJournalHeaderSize, JournalHeaderBytes(header));
    std::size_t at = kJournalHeaderSize;
    while (bytes.size() - at >= kFrameHeadSize) {
        auto* const frame = reinterpret_cast<unsigned char*>(bytes.data()) + at;
        const auto head = LoadFrameHead(frame);
        if (!head || head->payloadLength > bytes.size() - at - kFrameHeadSize) {
            at = bytes.find(kFrameMagic, at + 1);
            if (at == std::string::npos) return;
            continue;
        }
        SealFrame(frame, head->payloadLength);
        at += kFrameHeadSize + head->payloadLength;
    }
}

JournalScan Scan(std::string_view bytes) {
    fuzz::OneFile files("/journal", bytes);
    return ScanJournal(files, fuzz::OneFile::kFile, static_cast<std::int64_t>(bytes.size()));
}

/// Whether the file has exactly this frame there.
void RequireThere(const std::string& bytes, std::uint64_t id, const JournalFrame& frame) {
    fuzz::OneFile files("/journal", bytes);
    std::string payload;
    fuzz::Require(ReadPayload(files, fuzz::OneFile::kFile, frame, payload) == 0, "a payload is in the file");
    const std::string again = FrameBytes(
        {0, 0, id, frame.sequence, frame.durable, frame.code, frame.more ? kMoreFollows : std::uint16_t{0}},
        payload);
    fuzz::Require(bytes.compare(static_cast<std::size_t>(frame.offset), again.size(), again) == 0,
                  "a frame that is found is there, byte for byte");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::Input input(data, size);
    std::string bytes(input.bytes);
    if (input.Switch(0)) PutRight(bytes);
    const JournalScan scan = Scan(bytes);
    fuzz::Require(scan.error == 0, "memory can be read");
    fuzz::Require((scan.end == JournalScan::End::clean) == scan.what.empty(),
                  "an end that is not clean is told");

    std::int64_t at = scan.header ? static_cast<std::int64_t>(kJournalHeaderSize) : 0;
    std::uint64_t sequence = scan.header ? scan.header->firstSequence : 0, durable = 0;
    for (const JournalFrame& frame : scan.frames) {
        fuzz::Require(frame.offset == at && frame.sequence == sequence++, "frames follow one another");
        RequireThere(bytes, scan.header->id, frame);
        at = frame.payloadOffset + frame.payloadLength;
        durable = std::max(durable, frame.durable);
    }
    fuzz::Require(scan.endOffset == at, "the good beginning ends behind its last frame");
    for (const JournalFrame& frame : scan.later) {
        fuzz::Require(frame.offset >= at, "what is found later stands behind");
        if (scan.header) RequireThere(bytes, scan.header->id, frame);
        at = frame.payloadOffset + frame.payloadLength;
        durable = std::max(durable, frame.durable);
    }
    fuzz::Require(scan.lastDurable == durable, "the greatest durable sequence is told");
    const bool whole = scan.header && scan.endOffset == static_cast<std::int64_t>(bytes.size());
    fuzz::Require((scan.end == JournalScan::End::clean) == whole, "clean is what is whole");
    fuzz::Require(scan.end != JournalScan::End::torn || !scan.header || durable < sequence,
                  "nothing that was stored is a torn tail");
    if (scan.header) {
        const JournalScan good =
            Scan(std::string_view(bytes).substr(0, static_cast<std::size_t>(scan.endOffset)));
        fuzz::Require(good.end == JournalScan::End::clean && good.frames == scan.frames,
                      "the good beginning alone is a whole journal");
    }
    return 0;
}
