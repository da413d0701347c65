// Journal entries against write and fdatasync, and the points of a large group at its end against those at
// its beginning.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "bench/Store.h"
#include "bench/Unsynced.h"
#include "bench/Work.h"
#include "bench/Workload.h"
#include "host/base/JournalWriter.h"

namespace bench {

namespace {

constexpr const char* kProject = "book";
constexpr std::size_t kFrame = kFrameHeadSize + sizeof(short) + 2 * sizeof(int) + kPointBytes;

void Require(bool holds) {
    if (!holds) std::abort();
}

// --- entries whose content is there already -----------------------------------------------------------

const std::string& Content() {
    static const std::string content(kFrame - kFrameHeadSize - sizeof(short), 'c');
    return content;
}

/// A journal, made anew before each pass, with its file there already.
class Journal {
public:
    Journal(FileOperations& files, const std::string& name) : files_(files), path_(ScratchFile(name)) {}
    ~Journal() {
        if (writer_) writer_->Remove();
    }

    void Renew() {
        if (writer_) Require(writer_->Remove() == 0);
        writer_ = std::make_unique<JournalWriter>(files_, path_, kProject, 1, 2);
        Note();
        Require(writer_->Commit() == 0);
    }
    void Note() {
        ofpstream* const entry = writer_->Open(kProject, 3002);
        entry->WriteBytes(Content().data(), Content().size());
        writer_->Close(entry);
    }
    JournalWriter& Get() { return *writer_; }

private:
    FileOperations& files_;
    const std::string path_;
    std::unique_ptr<JournalWriter> writer_;
};

/// Entries, committed in groups as they are when many come in a row; nobody waits for the disk.
Work Entries() {
    return {"journal.entries", [](std::size_t n) -> Run {
                static Unsynced files;
                auto journal = std::make_shared<Journal>(files, "journal");
                return Run{[=] {
                               for (std::size_t i = 0; i < n; ++i) {
                                   journal->Note();
                                   if ((i + 1) % JournalWriter::kMostEntries == 0)
                                       Require(journal->Get().Commit() == 0);
                               }
                           },
                           [=] { journal->Renew(); }};
            }};
}

/// A file that is written from its beginning, made anew before each pass.
class RawFile {
public:
    explicit RawFile(const std::string& name) : path_(ScratchFile(name)) {}
    ~RawFile() { Close(); }

    void Renew() {
        Close();
        file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        Require(file_ >= 0 && fdatasync(file_) == 0);
    }
    void Write(const std::string& bytes) {
        Require(write(file_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    }
    void Sync() { Require(fdatasync(file_) == 0); }

private:
    void Close() {
        if (file_ < 0) return;
        close(file_);
        unlink(path_.c_str());
    }

    const std::string path_;
    int file_ = -1;
};

/// One call of write for each entry, of as many bytes as its frame has.
Work Writes() {
    return {"journal.writes", [](std::size_t n) -> Run {
                auto raw = std::make_shared<RawFile>("raw");
                return Run{[=] {
                               const std::string bytes(kFrame, 'c');
                               for (std::size_t i = 0; i < n; ++i) raw->Write(bytes);
                           },
                           [=] { raw->Renew(); }};
            }};
}

// --- with the disk ------------------------------------------------------------------------------------

/// Groups of entries with a sync behind each group, over one call of write for each entry and the same syncs.
/// A shared disk is slow for seconds and fast again: the two take turns group by group, each as often the
/// first, and the medians are compared.
double SyncedOverRaw(std::size_t n, std::size_t group) {
    Journal journal(FileOperations::System(), "journal");
    RawFile raw("raw");
    journal.Renew();
    raw.Renew();
    const std::string bytes(kFrame, 'c');
    std::vector<double> journalled, written;
    const auto timed = [](std::vector<double>& times, const auto& call) {
        const double begin = WallNs();
        call();
        times.push_back(WallNs() - begin);
    };
    const auto journalOne = [&] {
        for (std::size_t i = 0; i < group; ++i) journal.Note();
        Require(journal.Get().Commit() == 0);
    };
    const auto writeOne = [&] {
        for (std::size_t i = 0; i < group; ++i) raw.Write(bytes);
        raw.Sync();
    };
    for (std::size_t i = 0; i < n / group; ++i) {
        if (i % 2 == 0) timed(journalled, journalOne);
        timed(written, writeOne);
        if (i % 2 == 1) timed(journalled, journalOne);
    }
    return Median(journalled) / Median(written);
}

// --- points of a large group --------------------------------------------------------------------------

/// A tenth of the points of a group is journalled, from a point on.
Work Points(const std::string& name, bool atEnd) {
    return {name, [=](std::size_t n) -> Run {
                struct State {
                    State(std::size_t points, const std::string& file) : book(points), journal(files, file) {}
                    ~State() { book.Get().SetTmpJournal(nullptr); }
                    Book book;
                    Unsynced files;
                    Journal journal;
                };
                auto state = std::make_shared<State>(n * 10, name);
                state->book.Get().SetNomeFile(kProject);
                const std::size_t from = atEnd ? 9 * n : 0;
                return Run{[=] {
                               CLibGps& book = state->book.Get();
                               for (std::size_t i = from; i < from + n; ++i) {
                                   book.SaveTmpPunGps(book.GetPunAt(0, static_cast<int>(i)));
                                   if ((i + 1) % 64 == 0) Require(state->journal.Get().Commit() == 0);
                               }
                           },
                           [=] {
                               state->journal.Renew();
                               state->book.Get().SetTmpJournal(&state->journal.Get());
                           }};
            }};
}

}  // namespace

std::vector<Ratio> JournalRatios() {
    const auto atMost = [](double bound) { return [bound](std::size_t) { return bound; }; };
    return {
        {"journal.entry", Entries(), Writes(), {1'000, 10'000, 100'000}, atMost(2.0)},
        {"journal.points.end",  // n: a tenth of the group
         Points("journal.points.at_end", true),
         Points("journal.points.at_beginning", false),
         {10'000},
         atMost(1.20)},
    };
}

std::vector<Figure> JournalFigures() {
    return {
        {"journal.sync_each",
         "x raw",
         [](std::size_t n) { return SyncedOverRaw(n, 1); },
         {1'000},
         1.10,
         false},
        {"journal.sync_hundred",
         "x raw",
         [](std::size_t n) { return SyncedOverRaw(n, 100); },
         {20'000},
         1.25,
         false},
    };
}

}  // namespace bench
