#include "host/project/BookEdits.h"

#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
#include "host/project/EditCodes.h"
#include "host/project/FileMessage.h"
#include "host/project/SettingsRecord.h"
#include "platform/base/ofpstream.h"
#include "platform/coord/CLibMap.h"

namespace gpsproject {

void BookEdits::Begin() {
    if (writer_) writer_->BeginEdit();
}

void BookEdits::End() {
    if (writer_) writer_->EndEdit();
}

// What was edited is noted, or it is said that it was not: nobody shall take it for stored.
template <class Save>
void BookEdits::NoteBy(Save save) {
    if (!writer_) return;
    const std::uint64_t before = writer_->GetLastSequence();
    save();
    if (writer_->GetLastSequence() == before)
        throw ProjectError(ProjectError::Kind::system,
                           book_.GetNomeFile() +
                               ": an edit could not be noted in its journal, which another program has taken "
                               "away or damaged; save the book");
}

template <class Write>
void BookEdits::Note(int code, Write write) {
    NoteBy([&] {
        ofpstream* entry = book_.GetFileOutTmp(book_.GetNomeFile().c_str(), code);
        if (!entry) return;
        try {
            write(*entry);
            book_.CloseFileOutTmp(entry);
        } catch (...) {
            book_.DropFileOutTmp(entry);
            throw;
        }
    });
}

void BookEdits::GroupInserted(int g) {
    // The field book's own entry appends: it says nothing of a place in front of others.
    if (g + 1 < book_.GetGrpArSize()) Note(kGroupInserted, [&](ofpstream& out) { out.WriteInt(g); });
    GroupChanged(g);
}

void BookEdits::GroupChanged(int g) {
    NoteBy([&] { book_.SaveTmpGrpGps(book_.GetGrpAt(g), nullptr); });
}

void BookEdits::PointInserted(int g, int p) {
    if (p + 1 < book_.GetPunArSize(g)) {
        Note(kPointInserted, [&](ofpstream& out) {
            out.WriteInt(g);
            out.WriteInt(p);
        });
    }
    PointChanged(g, p);
}

void BookEdits::PointChanged(int g, int p) {
    NoteBy([&] { book_.SaveTmpPunGps(book_.GetPunAt(g, p)); });
}

void BookEdits::GroupsSwapped(int i, int j) {
    Note(kGroupsSwapped, [&](ofpstream& out) {
        out.WriteInt(i);
        out.WriteInt(j);
    });
}

void BookEdits::PointsSwapped(int g, int i, int j) {
    Note(kPointsSwapped, [&](ofpstream& out) {
        out.WriteInt(g);
        out.WriteInt(i);
        out.WriteInt(j);
    });
}

void BookEdits::OptionsChanged() {
    Note(kOptionsChanged, [&](ofpstream& out) {
        book_.GetOpzLibGps().SalvaInFile(out, out.GetVersion());
        book_.GetOpzListDisGps().SalvaInFile(out, out.GetVersion(), nullptr);
        out.WriteUChar(book_.HasOpzPostProc() ? 1 : 0);
        if (book_.HasOpzPostProc()) book_.GetOpzPostProc()->SalvaInFile(out);
    });
}

void BookEdits::MapChanged() {
    Note(kMapChanged, [&](ofpstream& out) { book_.GetArchLibMap()->SalvaInFile(out, out.GetVersion()); });
}

void BookEdits::SettingsChanged(const std::map<std::string, std::string>& settings) {
    Note(kSettingsChanged, [&](ofpstream& out) { WriteSettings(out, settings); });
}

void BookEdits::VersionChanged(short version) {
    Note(kVersionChanged, [&](ofpstream& out) { out.WriteShort(version); });
}

void BookEdits::NoteCloud(int code, const std::function<void(ofpstream&)>& write) { Note(code, write); }

void BookEdits::DeletingGroup(int g) {
    NoteBy([&] { book_.SaveDelGrpGps(book_.GetGrpAt(g)); });
}

void BookEdits::DeletingPoint(int g, int p) {
    NoteBy([&] { book_.SaveDelPunGps(book_.GetPunAt(g, p)); });
}

void BookEdits::Commit() {
    if (!writer_) return;
    const int error = writer_->Commit();
    if (error != 0 && writer_->HasFailed())
        throw ProjectError(ProjectError::Kind::changedOutside,
                           book_.GetNomeFile() +
                               ": another program has taken its journal away or damaged it; what was edited "
                               "since then is not stored; save the book, under another name when it was "
                               "changed, too");
    if (error != 0)
        throw SystemError(book_.GetNomeFile(), "its journal cannot be written: what was edited is not stored",
                          error);
}

bool BookEdits::CommitIfDue() {
    if (!writer_) return true;
    if (writer_->IsDue()) Commit();
    return writer_->GetDurableSequence() == writer_->GetLastSequence();
}

std::int64_t BookEdits::GetStoredSize() const { return writer_ ? writer_->GetSize() : 0; }

std::optional<std::chrono::nanoseconds> BookEdits::TimeToDue() const {
    if (!writer_) return std::nullopt;
    return writer_->TimeToDue();
}

}  // namespace gpsproject
