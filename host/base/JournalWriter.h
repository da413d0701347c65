// JournalWriter: keeps the edits of a project on the disk until the next save.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/base/JournalFrame.h"
#include "host/os/FileOperations.h"
#include "platform/base/PlatformExport.h"
#include "platform/base/TmpJournal.h"
#include "platform/base/ofpstream.h"

/// Writes a journal: entries are collected, and are stored when Commit has answered 0, not before.
///
/// Nothing is made on the disk before there is something to store. A file that once refused anything is not
/// written again: what was stored is copied with everything that was not into a new file, which takes the
/// place of the old one. An entry is in the journal once, in the order of Close.
///
/// bad_alloc passes through Open and Close; nothing that was closed is lost by it. For one thread.
class GPS_PLATFORM_API JournalWriter : public TmpJournal {
public:
    using Clock = std::chrono::steady_clock;
    using Now = std::function<Clock::time_point()>;

    /// Whoever enters many points one after another commits when so much is waiting, or so long: the price
    /// of the disk is shared, and a loss of power costs at most that.
    static constexpr Clock::duration kWindow = std::chrono::milliseconds(50);
    static constexpr std::size_t kMostEntries = 64;

    /// Bytes of an unfinished edit that wait in memory; then they go to the disk.
    static constexpr std::size_t kMostWaiting = 1024 * 1024;

    /// `path`: where the journal comes to be; in between there may be a file of that name and ".new".
    /// `projectFile`: the file whose edits it takes; the journal gets its rights. `id` and `base`: what its
    /// header states.
    JournalWriter(FileOperations& files, std::string path, std::string projectFile, std::uint64_t id,
                  std::uint64_t base, Now now = Clock::now);

    /// Closes the file, which stays. What was not committed is lost.
    ~JournalWriter() override;
    JournalWriter(const JournalWriter&) = delete;
    JournalWriter& operator=(const JournalWriter&) = delete;

    /// Begins an entry. Null when another one is open, for another project's file or none, and when the
    /// journal HasFailed. The stream is in memory and has the version already.
    ofpstream* Open(const char* file, int code) override;

    /// Ends the entry: it waits for a Commit. After bad_alloc it is still open.
    void Close(ofpstream* entry) override;

    /// Gives an open entry up.
    void Discard(ofpstream* entry) override;

    /// Entries from here to the EndEdit that belongs to it come back together or not at all. Edits within an
    /// edit are a part of it. Entries of an unfinished edit are not committed.
    void BeginEdit();
    void EndEdit();

    /// In place of EndEdit: the whole edit, also the one that it is a part of, comes back not at all. An open
    /// entry is given up, too.
    void DropEdit();

    bool IsInEdit() const { return depth_ > 0; }

    /// Stores all entries of finished edits. 0, or an error number of errno: then they still wait, in their
    /// order, and the next Commit tries again with a new file.
    ///
    /// EEXIST: there is a journal of that name that is not this writer's; it is left alone.
    int Commit();

    /// Whether it is time for a Commit: kMostEntries wait, or one has waited for kWindow. After a Commit that
    /// failed, kWindow later.
    bool IsDue() const;

    /// How long until then if nothing more comes; 0: now. Nothing: no entry waits.
    std::optional<Clock::duration> TimeToDue() const;

    /// After a save, outside of an edit: the journal is not needed any more, and what waits is dropped. 0, or
    /// an error number of errno: then the file is still there, and the next one takes its place. A missing
    /// file is no error.
    ///
    /// Entries may follow: they make a new file, whose first sequence follows the last one; SetBase says what
    /// it continues.
    int Remove();

    /// For the next file: at the beginning and after Remove. False, and nothing is changed, once there are
    /// entries.
    bool SetBase(std::uint64_t id, std::uint64_t base);

    /// Greatest sequence that was given; 0: none.
    std::uint64_t GetLastSequence() const { return last_; }

    /// Up to this one everything is on the disk. GetLastSequence after a Commit that succeeded, outside of an
    /// edit.
    std::uint64_t GetDurableSequence() const { return durable_; }

    std::uint64_t GetId() const { return id_; }

    /// Bytes of the file that are stored.
    std::int64_t GetSize() const { return stored_; }

    /// Whether it has made a file that is still there.
    bool HasFile() const { return mine_; }

    /// What was stored is not in the file any more, which is then left alone: no entry is taken, and none is
    /// stored. A save of the whole project, and Remove, begin anew.
    bool HasFailed() const { return failed_; }

private:
    void Add(std::uint16_t code, std::string_view payload);
    void Seal(std::size_t at, bool more);
    void Finish(std::size_t entries);
    void LeaveEdit();
    void ForgetEdit();
    void SpillEdit();

    // Files: what they do with the first bytes of what waits.
    int Store(std::size_t bytes, std::uint64_t lastOfThem);
    int StoreSomewhere(std::size_t bytes);
    int Append(std::size_t bytes);
    int CheckName();
    int Create(std::size_t bytes);
    int Rewrite(std::size_t bytes);
    int CheckReplaceable() const;
    int CopyStored(int to);
    bool HoldsStored(int file, int& error) const;
    void GiveRights(int file) const;
    std::string NewHeader() const;
    void CloseFile();

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    FileOperations& files_;
    const std::string path_, newPath_, folder_;
    const std::string projectFile_;
    std::uint64_t id_, base_;
    const Now now_;

    std::unique_ptr<ofpstream> entry_;  // its memory is used again
    std::uint16_t code_ = 0;
    bool open_ = false;

    // What is not stored: frames of finished edits, then those of the unfinished one. Of these the last is
    // not sealed: only the next one, or the end, tells whether more follow.
    std::string waiting_;
    std::size_t finished_ = 0;  // bytes
    std::size_t finishedEntries_ = 0;
    std::size_t unsealed_ = kNone;  // where it begins
    std::size_t editEntries_ = 0;   // of the unfinished edit, among those that wait
    std::size_t spillAt_ = kMostWaiting;
    bool editStored_ = false;  // some of it is in the file
    bool dropped_ = false;
    int depth_ = 0;
    Clock::time_point oldest_;                  // when the first of the finished came
    std::optional<Clock::time_point> refused_;  // when the last Commit failed, if it did

    std::uint64_t last_ = 0;
    std::uint64_t durable_ = 0;
    std::uint64_t first_ = 1;  // of the file
    std::int64_t stored_ = 0;
    int file_ = -1;       // -1: none, or none to be written any more
    bool mine_ = false;   // the file of that name
    bool direct_ = true;  // it can be made under its name
    bool failed_ = false;
};
