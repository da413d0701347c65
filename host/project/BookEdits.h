// BookEdits: notes every edit of a project's book in its journal.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "host/base/JournalWriter.h"

class CLibGps;

namespace gpsproject {

/// Who edits a book says so here, so that the edit comes back when the program ends before the next save.
/// What belongs together is one edit (class Edit, or Begin and End): after a crash it comes back whole or not
/// at all. Without a journal nothing is noted: a book of no project, a project without a file, one that was
/// opened for reading.
///
/// Positions are those of the book at the moment of the call; entries are replayed in the order of the calls.
/// Errors: std::bad_alloc; ProjectError (system) when the disk does not take the journal.
class BookEdits {
public:
    explicit BookEdits(CLibGps& book) : book_(book) {}
    ~BookEdits() = default;
    BookEdits(const BookEdits&) = delete;
    BookEdits& operator=(const BookEdits&) = delete;

    CLibGps& GetBook() const { return book_; }

    /// What follows is one edit, until End. One that is never ended never comes back.
    void Begin();
    void End();

    // After the change.
    // Insertions may be noted when all are made, in the order of positions.
    void GroupInserted(int g);  // its record, not its points
    void GroupChanged(int g);
    void PointInserted(int g, int p);
    void PointChanged(int g, int p);
    void GroupsSwapped(int i, int j);
    void PointsSwapped(int g, int i, int j);
    void OptionsChanged();  // of the field book, the display and the post-processing
    void MapChanged();      // the map library
    void SettingsChanged(const std::map<std::string, std::string>& settings);  // texts of the project
    void VersionChanged(short version);                                        // of the stream

    /// A step with a shared project (BookCloud), of one of its kinds.
    void NoteCloud(int code, const std::function<void(ofpstream&)>& write);

    // Before the change.
    void DeletingGroup(int g);  // with its points
    void DeletingPoint(int g, int p);

    /// All that was noted is on the disk when it returns: now, and not before, it may be called stored.
    void Commit();

    /// Commits when enough was noted, or the first of it long enough ago (JournalWriter::IsDue). True when
    /// everything noted so far is on the disk.
    bool CommitIfDue();

    /// Bytes of the journal that are on the disk: what a crash leaves to be replayed.
    std::int64_t GetStoredSize() const;

    /// Until it is due; none: nothing waits.
    std::optional<std::chrono::nanoseconds> TimeToDue() const;

private:
    friend class Edit;
    friend class Project;

    template <class Write>
    void Note(int code, Write write);
    template <class Save>
    void NoteBy(Save save);

    CLibGps& book_;
    JournalWriter* writer_ = nullptr;  // null: nothing is noted
};

/// One edit, of any number of entries. Edits may stand within one another; the outermost counts. A save ends
/// it: what is noted afterwards is no part of it.
class Edit {
public:
    explicit Edit(BookEdits& edits) : edits_(edits), journal_(edits.writer_ ? edits.writer_->GetId() : 0) {
        edits_.Begin();
    }
    /// An edit that did not get to Done never comes back.
    ~Edit() {
        if (IsOpen()) edits_.writer_->DropEdit();
    }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;

    /// The edit is complete. It is not on the disk yet: see Commit.
    void Done() {
        if (IsOpen()) edits_.End();
        done_ = true;
    }

private:
    // A save within the edit has taken it in, with all that was noted; another journal has come since.
    bool IsOpen() const { return !done_ && edits_.writer_ && edits_.writer_->GetId() == journal_; }

    BookEdits& edits_;
    std::uint64_t journal_;
    bool done_ = false;
};

}  // namespace gpsproject
