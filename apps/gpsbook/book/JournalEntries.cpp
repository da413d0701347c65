#include "apps/gpsbook/book/JournalEntries.h"

#include <algorithm>
#include <cerrno>

#include "apps/gpsbook/book/OpenBook.h"
#include "gps/persist/JournalCodes.h"
#include "host/os/FileOperations.h"
#include "host/project/EditCodes.h"
#include "host/project/FileMessage.h"
#include "platform/base/LittleEndian.h"

namespace gpsbook {

using namespace gpsproject;

namespace {

/// An entry, and how many positions stand behind its version.
struct Kind {
    int code;
    std::string_view name;
    int groups;  // positions of groups
    int points;  // and of points of the first one
};

constexpr Kind kKinds[] = {
    {kTmpGrpGps, "group changed", 1, 0},         {kTmpPunGps, "point changed", 1, 1},
    {kDelGrpGps, "group deleted", 1, 0},         {kDelPunGps, "point deleted", 1, 1},
    {kEditGivenUp, "edit given up", 0, 0},       {kGroupInserted, "group inserted", 1, 0},
    {kPointInserted, "point inserted", 1, 1},    {kGroupsSwapped, "groups swapped", 2, 0},
    {kPointsSwapped, "points swapped", 1, 2},    {kOptionsChanged, "options changed", 0, 0},
    {kMapChanged, "map library changed", 0, 0},  {kSettingsChanged, "settings changed", 0, 0},
    {kVersionChanged, "version changed", 0, 0},  {kCommitBegun, "commit begun", 0, 0},
    {kCommitAnswered, "commit answered", 0, 0},  {kPageTaken, "changes taken", 0, 0},
    {kConflictDropped, "conflict settled", 0, 0}};

const Kind* FindKind(int code) {
    const Kind* const found =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& k) { return k.code == code; });
    return found == std::end(kKinds) ? nullptr : found;
}

}  // namespace

std::string_view EntryKind(int code) {
    const Kind* const kind = FindKind(code);
    return kind ? kind->name : "unknown";
}

EntryPlace PlaceOfEntry(FileOperations& files, int file, const std::string& path, const JournalFrame& frame) {
    EntryPlace place;
    const Kind* const kind = FindKind(frame.code);
    const std::size_t wanted = !kind || kind->groups == 0 ? 0 : sizeof(std::int32_t) * (kind->points ? 2 : 1);
    if (wanted == 0 || frame.payloadLength < sizeof(short) + wanted) return place;
    unsigned char bytes[2 * sizeof(std::int32_t)];
    std::size_t got = 0;
    const auto at = frame.payloadOffset + static_cast<std::int64_t>(sizeof(short));
    int error = files.ReadAt(file, at, bytes, wanted, got);
    if (error == 0 && got < wanted) error = EIO;
    if (error != 0) throw SystemError(path, "cannot be read", error);
    place.group = static_cast<std::int32_t>(LoadLittleEndian<std::uint32_t>(bytes));
    if (kind->points)
        place.point =
            static_cast<std::int32_t>(LoadLittleEndian<std::uint32_t>(bytes + sizeof(std::int32_t)));
    return place;
}

BookJournal::BookJournal(const std::string& book) : book_(BookFile(book)), own_(FileOperations::System()) {
    try {
        project_ = Project::Open(book_, Project::Mode::read);
        if (project_->GetReport().IsDamaged() && !IsOnlyJournalDamaged(*project_))
            bookDamage_ = "it is damaged; gpsbook check tells more";
    } catch (const ProjectError& e) {
        if (e.GetKind() != ProjectError::Kind::damaged && e.GetKind() != ProjectError::Kind::tooNew) throw;
        bookDamage_ = e.what();
    }
    if (!bookDamage_.empty()) {
        ReadAlone();
    } else {
        found_ = project_->GetJournal();
        file_ = project_->GetJournalFile();
        replay_ = project_->GetReplay();
    }
    FileOperations::Facts facts;
    if (IsThere() && FileOperations::System().GetFacts(file_, facts) == 0) size_ = facts.size;
    FindWrong();
}

BookJournal::~BookJournal() = default;

// The journal as it is by itself.
void BookJournal::ReadAlone() {
    FileOperations& files = FileOperations::System();
    std::string target;
    if (const int error = files.Resolve(book_, target)) throw SystemError(book_, "cannot be found", error);
    found_.path = target + kJournalEnding;
    FileOperations::Facts facts;
    int error = files.Open(found_.path, FileOperations::How::read, 0, own_.number);
    if (error == ENOENT) return;
    if (error == 0) error = files.GetFacts(own_.number, facts);
    if (error != 0) throw SystemError(found_.path, "the journal cannot be read", error);
    file_ = own_.number;
    if (facts.regular) found_.scan = ScanJournal(files, file_, facts.size);
}

void BookJournal::FindWrong() {
    if (found_.tie == JournalTie::foreign) {
        wrongAt_ = 0;
        wrong_ = "begun on another save of the book, or on another book";
        if (found_.IsDamaged()) wrong_ += "; and " + found_.scan.what;
    } else if (found_.IsDamaged() && IsThere()) {
        wrongAt_ = found_.scan.endOffset;
        wrong_ = found_.scan.what;
    } else if (replay_.refusedAt >= 0) {
        wrongAt_ = replay_.refusedAt;
        wrong_ = replay_.refused;
    }
}

}  // namespace gpsbook
