// Project: the journal between two saves.
#include <algorithm>
#include <cerrno>
#include <new>
#include <random>
#include <utility>

#include "host/os/FileOperations.h"
#include "host/project/FileCopy.h"
#include "host/project/FileMessage.h"
#include "host/project/GpsReader.h"
#include "host/project/Project.h"

namespace gpsproject {

namespace {

// Journals of all books of all users are told apart by it.
std::uint64_t RandomId() {
    std::random_device device;
    const std::uint64_t high = device();
    const std::uint64_t id = high << 32 | device();
    return id != 0 ? id : 1;
}

}  // namespace

void Project::ReplayJournal(Mode mode) {
    try {
        journal_ = FindJournal(files_, target_, opened_->sections, mark_, journalFile_.number);
    } catch (const ProjectError& e) {
        if (mode != Mode::read) throw;
        report_.damages.push_back({"journal", "", -1, std::string(e.what()) + "; its edits are not shown"});
        return;
    }
    if (journal_.tie == JournalTie::follows) {
        replay_ =
            Replay(*this, files_, journalFile_.number, journal_.path, journal_.scan.frames, journal_.after);
        mark_ = {journal_.scan.header->id, std::max(replay_.upTo, journal_.after)};
    }
    // A salvage takes all that there is, in one way or another.
    if (journal_.scan.header && mode == Mode::salvage) mark_ = {journal_.scan.header->id, journal_.GetLast()};
    TellJournalDamage(mode);
    report_.groupsRead = book_->GetGrpArSize();
    report_.pointsRead = static_cast<int>(CountItems(*book_)) - report_.groupsRead;
}

void Project::TellJournalDamage(Mode mode) {
    const auto tell = [&](std::int64_t offset, const std::string& what) {
        if (mode == Mode::salvage)
            notes_.push_back(journal_.path + ", byte " + std::to_string(offset) + ": " + what);
        else
            report_.damages.push_back({"journal", "", offset, what});
    };
    if (journal_.tie == JournalTie::foreign && journal_.scan.header)
        tell(0,
             journal_.path +
                 " was begun on another save of the book, or on another book; its edits are not in what is "
                 "read");
    else if (journal_.IsDamaged())
        tell(journal_.scan.endOffset, journal_.scan.what);
    else if (!journal_.scan.later.empty())
        notes_.push_back(journal_.path + ": " + std::to_string(journal_.scan.later.size()) +
                         " entries behind a torn place are left out; they are not known to have been stored");
    if (replay_.refusedAt >= 0) tell(replay_.refusedAt, replay_.refused);
}

// What the journal brought back, or the file had already, goes into the file before anything is edited.
void Project::SaveReplayed() {
    if (journalFile_.number < 0) return;
    // Whole entries behind a torn place: the power may have gone in the middle of the last commit, or a disk
    // may have spoilt what was stored. They are kept for a person to look at.
    if (journal_.tie != JournalTie::saved && !journal_.scan.later.empty()) {
        const std::string kept = FreeName(files_, journal_.path + kKeptEnding);
        if (const int error = KeepUnder(files_, journal_.path, kept))
            throw SystemError(kept, "the journal cannot be kept under another name", error);
        notes_.push_back("the journal as it was is kept as " + kept);
    }
    if (replay_.edits > 0) {
        std::vector<std::string> told = notes_;
        Save();
        notes_.insert(notes_.begin(), told.begin(), told.end());
    } else if (const int error = files_.Unlink(journal_.path); error != 0 && error != ENOENT) {
        throw SystemError(journal_.path, "the journal of an earlier session cannot be removed", error);
    } else {
        SyncNamesBeside(journal_.path);
    }
}

JournalMark Project::MarkNow() const {
    if (writer_ && writer_->GetLastSequence() > 0) return {writer_->GetId(), writer_->GetLastSequence()};
    return mark_;
}

std::unique_ptr<JournalWriter> Project::NewJournal(const std::string& path, const std::string& target,
                                                   const std::vector<SectionEntry>& sections) {
    return std::make_unique<JournalWriter>(files_, target + kJournalEnding, path, RandomId(),
                                           DigestOf(sections));
}

void Project::GoOnWith(std::unique_ptr<JournalWriter> journal) {
    writer_ = std::move(journal);
    edits_.writer_ = writer_.get();
    book_->SetTmpJournal(writer_.get());
}

// A journal that stands where a book is to be saved, and is not that book's: it gets a name under which it is
// kept. The mark that is returned lets it be cleared away should the program end before that is done.
JournalMark Project::KeepStranger(const std::string& journal) {
    OwnedFile file(files_);
    FileOperations::Facts facts;
    const int error = files_.Open(journal, FileOperations::How::read, 0, file.number);
    if (error == ENOENT || error == ENAMETOOLONG) return {};
    if (error != 0 || files_.GetFacts(file.number, facts) != 0 || !facts.regular)
        throw ProjectError(
            ProjectError::Kind::exists,
            journal + ": something stands where the journal of the book belongs; move it away");
    const JournalScan scan = ScanJournal(files_, file.number, facts.size);
    const std::string kept = FreeName(files_, journal + kKeptEnding);
    if (const int refused = KeepUnder(files_, journal, kept))
        throw SystemError(kept, "the journal that stands there cannot be kept under another name", refused);
    if (!scan.header) return {};
    std::uint64_t last = scan.frames.empty() ? 0 : scan.frames.back().sequence;
    if (!scan.later.empty()) last = std::max(last, scan.later.back().sequence);
    return {scan.header->id, last};
}

// A journal that was removed must not come back with a power loss: the file that the next save makes does not
// know it any more. When the disk does not confirm it, or memory does not suffice, there is nothing better to
// do.
void Project::SyncNamesBeside(const std::string& path) {
    try {
        const auto slash = path.rfind('/');
        files_.SyncFolder(slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash));
    } catch (const std::bad_alloc&) {
    }
}

// Nothing fails here: the file has its place already.
void Project::TakeJournalIn(std::unique_ptr<JournalWriter> next, const std::string& journal, bool elsewhere) {
    // A journal that cannot be removed goes on; the file names it.
    const bool hadFile = writer_ && writer_->HasFile();
    const bool removed = !writer_ || writer_->Remove() == 0;
    // What was there before this program: replayed, salvaged, or kept under another name.
    const bool leftOver = elsewhere || journalFile_.number >= 0;
    if (leftOver) files_.Unlink(journal);
    if (leftOver || hadFile) SyncNamesBeside(journal);
    if (journalFile_.number >= 0) files_.Close(std::exchange(journalFile_.number, -1));
    if (removed || elsewhere) GoOnWith(std::move(next));
}

bool Project::DropEdits() {
    if (!writer_) return true;
    const bool hadFile = writer_->HasFile();
    if (writer_->Remove() != 0) return false;
    if (hadFile) SyncNamesBeside(target_);
    GoOnWith(NewJournal(path_, target_, opened_->sections));
    return true;
}

std::string Project::SaveAndSetJournalAside() {
    const std::string from = target_ + kJournalEnding;
    const std::string to = FreeName(files_, from + ".damaged-");
    // A second name first: the save takes the first one away.
    if (const int error = KeepUnder(files_, from, to))
        throw SystemError(from, "the journal cannot be kept under another name", error);
    Save();
    return to;
}

}  // namespace gpsproject
