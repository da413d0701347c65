// Project: a field book with everything that belongs to it, and its file.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "gps/model/CLibGps.h"
#include "host/project/BookCloud.h"
#include "host/project/BookEdits.h"
#include "host/project/CloudTables.h"
#include "host/project/DamageReport.h"
#include "host/project/JournalFile.h"
#include "host/project/JournalReplay.h"
#include "host/project/KeptSection.h"
#include "host/project/OpenedFile.h"
#include "host/project/OwnedFile.h"
#include "host/project/ProjectError.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

class FileOperations;

namespace gpsproject {

class ContainerWriter;
class ProjectLock;
struct SaveTarget;
struct Container;

/// Texts that belong to the project as a whole, by key ("name", "crs"). Unknown keys are kept.
using ProjectSettings = std::map<std::string, std::string>;

/// Owns the map library and the field book. Not copied and not moved: groups point to the map library.
///
/// Edits between two saves are noted in a journal beside the file (GetEdits). When a program ends before it
/// saves, they come back when the project is opened again (GetReplay).
///
/// A project that was opened for writing holds the lock of its file until it is destroyed. What is saved is
/// complete and verified before it takes the place of the file before, which is kept as backup
/// (FILE.bak). A link is followed: what it leads to is replaced, and the link stays.
/// Errors are thrown as ProjectError, or std::bad_alloc; the file on disk and the objects in memory are then
/// as they were. One error comes later: when the disk cannot confirm that the new file has its place, it has
/// it all the same, the message says so, and the project goes on with it.
class Project {
public:
    static constexpr short kOldestVersion = 743;  // versions before are read, not written
    static constexpr short kNewestVersion = 1400;

    enum class Mode {
        read,     // no lock, Save is refused
        write,    // with the lock; a damaged file or journal opens read-only
        salvage,  // as write; of a damaged journal, or one of another save, it takes what can be used
    };

    /// An empty project that has no file yet.
    explicit Project(short streamVersion = kNewestVersion);

    /// The same, on other files than the system's; they outlive the project.
    Project(short streamVersion, FileOperations& files);
    ~Project();
    Project(const Project&) = delete;
    Project& operator=(const Project&) = delete;

    /// Opens a file, and replays what its journal holds beyond it; for writing that is saved at once.
    /// A damaged one gives what could be read, is read-only, and says what is wrong
    /// (GetReport). Throws when nothing at all can be read.
    static std::unique_ptr<Project> Open(const std::string& path, Mode mode);
    static std::unique_ptr<Project> Open(const std::string& path, Mode mode, FileOperations& files);

    /// Saves a new project, or one under another name, and goes on with that file, with its lock, for
    /// writing. `overwrite`: a file of that name is replaced (and kept as backup). A damaged file is never
    /// replaced by what could be read of it.
    void SaveAs(const std::string& path, bool overwrite);

    /// Saves over the file that was opened or saved last. When that file has been changed by others it is
    /// refused; when it is gone it is made again.
    void Save();

    CLibGps& GetBook() { return *book_; }
    CLibMap& GetMap() { return *map_; }
    ProjectSettings& GetSettings() { return settings_; }

    /// What drawing references in a file mean here. There are no drawings: each stays what it is.
    CDrawingsMapper& GetDrawings() { return drawings_; }

    FileOperations& GetFiles() { return files_; }

    /// To note what is edited.
    BookEdits& GetEdits() { return edits_; }

    /// The book's side of a shared project, when it belongs to one.
    BookCloud& GetCloud() { return cloud_; }

    /// What the journal brought back at opening.
    const ReplayReport& GetReplay() const { return replay_; }

    /// The journal as it was found at opening. For salvage its file can still be read (GetJournalFile, -1:
    /// there is none).
    const FoundJournal& GetJournal() const { return journal_; }
    int GetJournalFile() const { return journalFile_.number; }

    /// The edits since the last save are not to come back. False: the journal cannot be removed, and they
    /// would.
    bool DropEdits();

    /// After a salvage: everything that can be used of the journal is in the book now. Saves it and gives the
    /// journal another name, which is returned; it is kept.
    std::string SaveAndSetJournalAside();

    /// Version of the field-book section, in which it was read and will be saved.
    short GetStreamVersion() const { return version_; }
    void SetStreamVersion(short version) { version_ = version; }

    const std::string& GetPath() const { return path_; }
    bool IsReadOnly() const { return readOnly_; }
    const DamageReport& GetReport() const { return report_; }

    /// What is worth telling, though nothing is damaged; one line each. After opening: groups whose datum is
    /// another one now. After saving: values that the stream version has no place for, and that the file
    /// therefore does not hold.
    const std::vector<std::string>& GetNotes() const { return notes_; }

private:
    static std::unique_ptr<Project> OpenOnce(const std::string& path, const std::string& target, Mode mode,
                                             FileOperations& files);
    void ReadFrom(int file, const Container& container);
    void ReplayJournal(Mode mode);
    void TellJournalDamage(Mode mode);
    void SaveReplayed();
    void SyncNamesBeside(const std::string& path);
    JournalMark KeepStranger(const std::string& journal);
    void TakeJournalIn(std::unique_ptr<JournalWriter> next, const std::string& journal, bool elsewhere);
    JournalMark MarkNow() const;
    std::unique_ptr<JournalWriter> NewJournal(const std::string& path, const std::string& target,
                                              const std::vector<SectionEntry>& sections);
    void GoOnWith(std::unique_ptr<JournalWriter> journal);
    void SaveTo(const std::string& path, const SaveTarget& target, std::unique_ptr<ProjectLock> lock);
    void WriteSections(ContainerWriter& writer, const JournalMark& mark, const std::string& path,
                       const std::string& target);
    void RefuseToWrite(const std::string& path) const;

    FileOperations& files_;
    std::unique_ptr<CLibMap> map_;
    CDrawingsMapper drawings_ = CDrawingsMapper::KeepingUnknown();
    std::unique_ptr<CloudTables> tables_;
    std::unique_ptr<CLibGps> book_;
    ProjectSettings settings_;
    std::vector<KeptSection> kept_;  // what other programs have put into the file
    DamageReport report_;
    std::vector<std::string> notes_;
    std::string path_;
    std::string target_;                // the file itself, without links
    std::optional<OpenedFile> opened_;  // how the file was when it was opened or saved last
    std::unique_ptr<ProjectLock> lock_;
    JournalMark mark_;      // whose edits are in the book, as it is here, up to which
    FoundJournal journal_;  // at opening
    OwnedFile journalFile_;
    ReplayReport replay_;
    std::unique_ptr<JournalWriter> writer_;
    BookEdits edits_;
    BookCloud cloud_;
    short version_;
    bool readOnly_ = false;
};

}  // namespace gpsproject
