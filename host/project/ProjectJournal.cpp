// Project: the journal between two saves.
#include <cerrno>
#include <random>

#include "host/os/FileOperations.h"
#include "host/project/FileMessage.h"
#include "host/project/GpsReader.h"
#include "host/project/Project.h"
#include "host/project/SafeReplace.h"

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
    journal_ = FindJournal(files_, target_, opened_->sections, mark_, journalFile_.number);
    if (journal_.tie == JournalTie::follows)
        replay_ =
            Replay(*this, files_, journalFile_.number, journal_.path, journal_.scan.frames, journal_.after);
    // A salvage takes all that there is, in one way or another.
    if (journal_.scan.header && (journal_.tie == JournalTie::follows || mode == Mode::salvage))
        mark_ = {journal_.scan.header->id, journal_.GetLast()};
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
    if (journal_.tie == JournalTie::foreign)
        tell(0,
             journal_.path +
                 " was begun on another save of the book, or on another book; its edits are not in what is "
                 "read");
    else if (journal_.IsDamaged())
        tell(journal_.scan.endOffset, journal_.scan.what);
    if (replay_.refusedAt >= 0) tell(replay_.refusedAt, replay_.refused);
}

// What the journal brought back, or the file had already, goes into the file before anything is edited.
void Project::SaveReplayed() {
    if (replay_.edits > 0) {
        Save();
    } else if (journalFile_.number >= 0) {
        if (const int error = files_.Unlink(journal_.path); error != 0 && error != ENOENT)
            throw SystemError(journal_.path, "the journal of an earlier session cannot be removed", error);
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

void Project::DropEdits() {
    if (!writer_) return;
    writer_->Remove();
    GoOnWith(NewJournal(path_, target_, opened_->sections));
}

std::string Project::SaveAndSetJournalAside() {
    const std::string from = target_ + kJournalEnding;
    std::string to;
    FileOperations::Facts facts;
    for (int i = 1; to.empty() || files_.GetFacts(to, facts) != ENOENT; ++i)
        to = from + ".damaged-" + std::to_string(i);
    // A second name first: the save takes the first one away.
    if (const int error = files_.Link(from, to))
        throw SystemError(from, "the journal cannot be kept under another name", error);
    Save();
    return to;
}

}  // namespace gpsproject
