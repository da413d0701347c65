// CLibGen: base of every library (a field book, a map library) that a project holds.
#pragma once

#include <string>

#include "platform/base/VEXNotifySource.h"
#include "platform/base/streams.h"

/// A library of a project: it can be marked modified and autosaved, and knows the file of its project.
/// The order of the virtual operations is part of the contract.
class GPS_PLATFORM_API CLibGen : public VEXNotifySource {
public:
    CLibGen() = default;
    CLibGen(const CLibGen&) = default;
    CLibGen& operator=(const CLibGen&) = default;
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

private:
    bool modified_ = false;
    bool autoSaved_ = false;
    std::string nomeFile_;
};
