#include "host/project/JournalFile.h"

#include <algorithm>
#include <cerrno>

#include "host/project/FileMessage.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace gpsproject {

void WriteMark(ofpstream& out, const JournalMark& mark) {
    out.WriteInt64(static_cast<std::int64_t>(mark.id));
    out.WriteInt64(static_cast<std::int64_t>(mark.sequence));
}

JournalMark ReadMark(ifpstream& in) {
    JournalMark mark;
    mark.id = static_cast<std::uint64_t>(in.ReadInt64());
    mark.sequence = static_cast<std::uint64_t>(in.ReadInt64());
    return in.IsOk() ? mark : JournalMark();
}

std::uint64_t DigestOf(const std::vector<SectionEntry>& sections) {
    std::uint64_t digest = 0xCBF29CE484222325u;
    for (const char c : TableBytes(sections)) {
        digest ^= static_cast<unsigned char>(c);
        digest *= 0x100000001B3u;
    }
    return digest;
}

std::uint64_t FoundJournal::GetLast() const {
    std::uint64_t last = 0;
    if (!scan.frames.empty()) last = scan.frames.back().sequence;
    if (!scan.later.empty()) last = std::max(last, scan.later.back().sequence);
    return last;
}

FoundJournal FindJournal(FileOperations& files, const std::string& target,
                         const std::vector<SectionEntry>& sections, const JournalMark& mark, int& file) {
    FoundJournal found;
    found.path = target + kJournalEnding;
    FileOperations::Facts facts;
    int error = files.Open(found.path, FileOperations::How::read, 0, file);
    // A name that is too long for a journal never had one.
    if (error == ENOENT || error == ENAMETOOLONG) return found;
    if (error == 0) error = files.GetFacts(file, facts);
    if (error != 0) throw SystemError(found.path, "the journal cannot be read", error);
    if (!facts.regular)
        throw ProjectError(ProjectError::Kind::damaged,
                           found.path + ": is no ordinary file, and stands where the journal of " + target +
                               " belongs; move it away");
    found.scan = ScanJournal(files, file, facts.size);
    if (found.scan.error != 0) throw SystemError(found.path, "the journal cannot be read", found.scan.error);

    // Begun and not written to: the program ended before its first edit was stored.
    const bool nothing = found.scan.frames.empty() && found.scan.end != JournalScan::End::damaged;
    if (nothing) return found;
    const auto& header = found.scan.header;
    if (header && mark.id != 0 && header->id == mark.id) {
        found.after = mark.sequence;
        // What cannot be read counts as saved only when it stands before something that is.
        const bool unread = found.scan.end == JournalScan::End::damaged &&
                            (found.scan.later.empty() || found.scan.later.back().sequence < mark.sequence);
        found.tie = found.GetLast() <= mark.sequence && !unread ? JournalTie::saved : JournalTie::follows;
    } else {
        found.tie = header && header->base == DigestOf(sections) ? JournalTie::follows : JournalTie::foreign;
    }
    return found;
}

}  // namespace gpsproject
