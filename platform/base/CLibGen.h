// CLibGen: base of every library (a field book, a map library) that a project holds.
#pragma once

#include <string>

#include "platform/base/TmpJournal.h"
#include "platform/base/VEXNotifySource.h"
#include "platform/base/streams.h"

/// A library of a project: it can be marked modified and autosaved, and knows the file of its project.
/// The order of the virtual operations is part of the contract.
class GPS_PLATFORM_API CLibGen : public VEXNotifySource {
public:
    /// How an operation with a file of groups or points ended. The numbers are fixed.
    enum class TResActionObj {
        done = 0,
        notCreated = 1,          // the file could not be made
        notOpened = 2,           // the file could not be opened
        notInserted = 3,         // a group or point found no place in the field book
        noPlaneCoordinates = 4,  // a loaded point has none
    };

    CLibGen() = default;

    /// A copy has no journal: it is for looking at. An assignment leaves the target's journal alone.
    CLibGen(const CLibGen& other);
    CLibGen& operator=(const CLibGen& other);
    ~CLibGen() override;

    /// Marks the library as changed since the last save (true) or as saved (false). Setting it also ends
    /// the autosaved state: what changed after an autosave is not in it.
    virtual void SetModifiedFlag(bool modified);
    virtual bool IsModified();

    /// The present state has been autosaved.
    virtual void SetAutoSaved();
    virtual bool IsAutoSaved();

    /// The library's own record in the project stream, of the given version. A library base alone has
    /// nothing to store: these do nothing.
    virtual void SalvaInFile(ofpstream& out, short version);
    virtual void LeggeDaFile(ifpstream& in, short version);

    /// File of the project; empty before the first save or load.
    const std::string& GetNomeFile() const { return nomeFile_; }
    void SetNomeFile(const std::string& name) { nomeFile_ = name; }

    /// Begins a journal entry of a kind, for the project whose file is `file`; CloseFileOutTmp ends it. One
    /// at a time. Null when nothing can be noted: no journal, no file name (null or empty), another entry
    /// open.
    ofpstream* GetFileOutTmp(const char* file, int code);
    void CloseFileOutTmp(ofpstream* entry);

    /// In place of it: the entry could not be completed, and nothing of it is noted.
    void DropFileOutTmp(ofpstream* entry);

    /// The host's journal, which must outlive its use here; null (the beginning): nothing is noted.
    void SetTmpJournal(TmpJournal* journal) { journal_ = journal; }
    TmpJournal* GetTmpJournal() const { return journal_; }

private:
    bool modified_ = false;
    bool autoSaved_ = false;
    std::string nomeFile_;
    TmpJournal* journal_ = nullptr;
};
