#include "host/base/JournalScan.h"

#include <algorithm>
#include <cerrno>

#include "host/base/JournalWindow.h"

namespace {

// Behind damage every place that looks like a frame is summed up, which costs its length each. Where bytes
// that mean harm overlap in thousands, it ends here.
constexpr std::int64_t kSumsPerByte = 8;
constexpr std::int64_t kSumsAtLeast = 1024 * 1024;

constexpr std::int64_t kHead = static_cast<std::int64_t>(kFrameHeadSize);
constexpr std::size_t kLeastPayload = sizeof(short);  // the version

class Scanner {
public:
    Scanner(FileOperations& files, int file, std::int64_t size)
        : bytes_(files, file, size), sumsLeft_(kSumsPerByte * size + kSumsAtLeast) {}

    JournalScan Scan() {
        if (ReadHeader()) ReadFrames();
        if (scan_.endOffset < bytes_.GetSize()) {
            ReadRest();
            Judge();
        } else if (!scan_.header) {
            Ends(JournalScan::End::torn, "the file is empty");
        }
        scan_.error = bytes_.GetError();
        if (scan_.error != 0) {
            scan_.end = JournalScan::End::damaged;
            scan_.what = "the file cannot be read to its end";
        }
        return std::move(scan_);
    }

private:
    bool ReadHeader() {
        const unsigned char* const at = bytes_.At(0, kJournalHeaderSize);
        if (!at) {
            neverWritten_ = true;
            wrong_ = "the header is not complete";
            return false;
        }
        scan_.header = ReadJournalHeader({reinterpret_cast<const char*>(at), kJournalHeaderSize});
        if (!scan_.header) {
            neverWritten_ = std::all_of(at, at + kJournalHeaderSize, [](unsigned char b) { return b == 0; });
            wrong_ =
                neverWritten_ ? "the header was not written" : "this is no journal, or its header is damaged";
            return false;
        }
        id_ = scan_.header->id;
        next_ = scan_.header->firstSequence;
        scan_.endOffset = static_cast<std::int64_t>(kJournalHeaderSize);
        return true;
    }

    /// The head at a place where a frame can stand; else `why_` says why not.
    std::optional<FrameHead> HeadAt(std::int64_t offset) {
        const unsigned char* const at = bytes_.At(offset, kFrameHeadSize);
        const std::optional<FrameHead> head = at ? LoadFrameHead(at) : std::nullopt;
        if (!at)
            why_ = "a frame is not complete";
        else if (!head)
            why_ = "there is no frame";
        else if (head->payloadLength > bytes_.GetSize() - offset - kHead)
            why_ = "a frame is longer than the file";
        else if (head->payloadLength < kLeastPayload || head->durable >= head->sequence ||
                 (head->flags & ~kMoreFollows) != 0)
            why_ = "a frame has values that no frame has";
        else
            return head;
        return {};
    }

    bool IsIntact(std::int64_t offset, const FrameHead& head) {
        std::uint32_t crc = 0;
        const auto first = static_cast<std::int64_t>(kFrameChecked);
        if (bytes_.Crc(offset + first, kHead - first + head.payloadLength, crc) && crc == head.crc)
            return true;
        why_ = "the checksum of a frame differs";
        return false;
    }

    static JournalFrame FrameOf(std::int64_t offset, const FrameHead& head) {
        return {head.sequence, head.durable,   head.code,         (head.flags & kMoreFollows) != 0,
                offset,        offset + kHead, head.payloadLength};
    }

    void ReadFrames() {
        while (scan_.endOffset < bytes_.GetSize()) {
            const std::int64_t at = scan_.endOffset;
            const auto head = HeadAt(at);
            if (!head || !IsIntact(at, *head)) {
                wrong_ = why_;
                return;
            }
            if (head->journal != *id_ || head->sequence != next_) {
                misplaced_ = true;
                wrong_ = head->journal != *id_
                             ? "a frame belongs to another journal"
                             : "frame " + std::to_string(head->sequence) + " stands where frame " +
                                   std::to_string(next_) + " should be";
                return;
            }
            scan_.frames.push_back(FrameOf(at, *head));
            scan_.lastDurable = std::max(scan_.lastDurable, head->durable);
            scan_.endOffset = at + kHead + head->payloadLength;
            ++next_;
        }
    }

    /// What is intact behind the good beginning.
    void ReadRest() {
        std::int64_t at = scan_.endOffset;
        while ((at = bytes_.Find(kFrameMagic, at)) < bytes_.GetSize()) {
            const auto head = HeadAt(at);
            bool intact = false;
            if (head && (!id_ || head->journal == *id_)) {
                sumsLeft_ -= kHead + head->payloadLength;
                if (sumsLeft_ < 0) {
                    tooMany_ = true;
                    break;
                }
                intact = IsIntact(at, *head);
            }
            if (!intact) {
                ++at;
                continue;
            }
            id_ = head->journal;
            scan_.later.push_back(FrameOf(at, *head));
            scan_.lastDurable = std::max(scan_.lastDurable, head->durable);
            at += kHead + head->payloadLength;
        }
    }

    void Judge() {
        using End = JournalScan::End;
        if (tooMany_) return Ends(End::damaged, wrong_ + "; too much behind it looks like frames");
        if (!scan_.header) {
            // The first commit of all: the disk may have kept a later page of it and not the first.
            const bool first = neverWritten_ && scan_.lastDurable == 0;
            if (!scan_.later.empty() && !first)
                return Ends(End::damaged, wrong_ + "; but there are frames behind it");
            return Ends(neverWritten_ ? End::torn : End::damaged, wrong_);
        }
        if (misplaced_) return Ends(End::damaged, wrong_);
        if (scan_.lastDurable >= next_)
            return Ends(End::damaged, wrong_ + "; frames up to " + std::to_string(scan_.lastDurable) +
                                          " were stored, and frame " + std::to_string(next_) + " is missing");
        Ends(End::torn, wrong_ + "; nothing from here on is known to have been stored");
    }

    void Ends(JournalScan::End end, const std::string& what) {
        scan_.end = end;
        scan_.what = "byte " + std::to_string(scan_.endOffset) + ": " + what;
    }

    JournalWindow bytes_;
    JournalScan scan_;
    std::optional<std::uint64_t> id_;
    std::uint64_t next_ = 0;
    std::int64_t sumsLeft_;
    const char* why_ = "";  // about the place looked at last
    std::string wrong_;     // about the end of the good beginning
    bool neverWritten_ = false;
    bool misplaced_ = false;
    bool tooMany_ = false;
};

}  // namespace

JournalScan ScanJournal(FileOperations& files, int file, std::int64_t size) {
    return Scanner(files, file, size).Scan();
}

int ReadPayload(FileOperations& files, int file, const JournalFrame& frame, std::string& payload) {
    std::string bytes(frame.payloadLength, '\0');
    std::size_t got = 0;
    const int error = files.ReadAt(file, frame.payloadOffset, bytes.data(), bytes.size(), got);
    if (error != 0) return error;
    if (got < bytes.size()) return EIO;
    payload = std::move(bytes);
    return 0;
}
