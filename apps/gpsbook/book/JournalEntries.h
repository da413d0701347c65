// JournalEntries: the entries of a journal in words.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "host/project/Project.h"

namespace gpsbook {

/// What an entry of that code tells: "point changed"; "unknown".
std::string_view EntryKind(int code);

/// The positions that an entry begins with; -1: it has none.
struct EntryPlace {
    int group = -1;
    int point = -1;
};

/// Reads no more than these. Errors: ProjectError (system), with `path` in its message.
EntryPlace PlaceOfEntry(FileOperations& files, int file, const std::string& path, const JournalFrame& frame);

/// A journal that stands beside a book, also beside one that cannot be read.
class BookJournal {
public:
    /// Errors: ProjectError when there is no book, or the journal cannot be read.
    explicit BookJournal(const std::string& book);
    ~BookJournal();
    BookJournal(const BookJournal&) = delete;
    BookJournal& operator=(const BookJournal&) = delete;

    const std::string& GetBook() const { return book_; }
    const gpsproject::FoundJournal& GetFound() const { return found_; }
    int GetFile() const { return file_; }

    /// Whether there is a file.
    bool IsThere() const { return file_ >= 0; }

    /// Bytes of the file.
    std::int64_t GetSize() const { return size_; }

    /// What is wrong with the book itself, so that nobody knows how the journal belongs to it; empty: it is
    /// whole.
    const std::string& GetBookDamage() const { return bookDamage_; }

    /// What comes back when the book is opened.
    const gpsproject::ReplayReport& GetReplay() const { return replay_; }

    /// Byte and reason why not all of it can come back; -1: it can.
    std::int64_t GetWrongAt() const { return wrongAt_; }
    const std::string& GetWrong() const { return wrong_; }

private:
    void ReadAlone();
    void FindWrong();

    std::string book_;
    std::unique_ptr<gpsproject::Project> project_;  // holds the file, when it could be opened
    gpsproject::OwnedFile own_;
    gpsproject::FoundJournal found_;
    gpsproject::ReplayReport replay_;
    int file_ = -1;
    std::int64_t size_ = 0;
    std::string bookDamage_;
    std::int64_t wrongAt_ = -1;
    std::string wrong_;
};

}  // namespace gpsbook
