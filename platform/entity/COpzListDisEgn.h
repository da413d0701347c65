// COpzListDisEgn: the display entries of one kind of entities.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/base/PlatformExport.h"
#include "platform/base/streams.h"
#include "platform/entity/COpzDisEgn.h"

class CSymbolUsedTracer;

/// Holds two lists of entries, which it owns: normal ones, each for a class of entities, and common ones,
/// which hold for all of them. Its one value of its own, VisList, tells whether any of it is drawn (1, the
/// default) or not (0).
///
/// A copy has entries of its own, made by their Clone. Copying may throw std::bad_alloc; an assignment that
/// throws has changed nothing.
///
/// The order of the virtual operations is part of the contract.
class GPS_PLATFORM_API COpzListDisEgn {
public:
    /// `parent`, the list that this one is shown under, may be null; it is kept, never looked into.
    /// `section`: where the list's own settings stand; a null pointer counts as the empty text.
    explicit COpzListDisEgn(COpzListDisEgn* parent = nullptr, const char* section = "DIS");
    COpzListDisEgn(const COpzListDisEgn& other);
    COpzListDisEgn& operator=(const COpzListDisEgn& other);
    virtual ~COpzListDisEgn();

    /// A copy of the same class, owned by the caller; null without memory.
    virtual COpzListDisEgn* Clone() const;

    /// Reads or writes the settings of every common entry.
    virtual void GetDaIniOpzComList();
    virtual void SetInIniOpzComList();

    /// Appends an entry and returns its position. The list owns it from the call on, also when
    /// std::bad_alloc comes out of it. Null, or an entry that the list holds already: -1, nothing done.
    virtual int AddOpzNor(COpzDisEgn* entry);

    /// Deletes an entry; those behind it move up. False, with nothing done, when it is not there.
    virtual bool DelOpzNor(COpzDisEgn* entry);
    virtual bool DelOpzNorAt(int i);

    /// The same for common entries.
    virtual int AddOpzCom(COpzDisEgn* entry);
    virtual bool DelOpzCom(COpzDisEgn* entry);
    virtual bool DelOpzComAt(int i);

    /// Defaults of the list's own value and of all entries.
    virtual void doRisettaOpz();

    /// Settings of the list itself, of its normal and of its common entries.
    virtual void doGetDaIni();
    virtual void doSetInIni();

    void RisettaOpz() { doRisettaOpz(); }
    void GetDaIni() { doGetDaIni(); }
    void SetInIni() { doSetInIni(); }

    int GetNumOpzNor() const { return static_cast<int>(normali_.size()); }
    int GetNumOpzCom() const { return static_cast<int>(comuni_.size()); }

    /// The entry at a position. Where there is none: an entry with default values that is in no list, so
    /// that what is set in it has no effect.
    COpzDisEgn& GetOpzNor(int i);
    COpzDisEgn& GetOpzCom(int i);

    COpzListDisEgn* GetListPadre() const { return padre_; }
    const std::string& GetSezioneIni() const { return sezione_; }

    const std::string& GetNomeOpzList() const { return nome_; }
    void SetNomeOpzList(const std::string& nome) { nome_ = nome; }

    /// What kind of list it is, a number of the drawing program's; 0 in a new list.
    int GetTipoOpzList() const { return tipo_; }
    void SetTipoOpzList(int tipo) { tipo_ = tipo; }

    short GetVisList() const { return visList_; }
    void SetVisList(short value) { visList_ = value; }

    // --- records --------------------------------------------------------------------------------------
    //
    // Two forms in one envelope (form, length, content), the same in every version of a file. Either reader
    // takes either form, and passes over a form or over fields that it does not know: the stream is always
    // behind the record afterwards. With `load` false nothing else happens. Entries whose stored values are
    // not complete stay as they are; so do name, type and number of entries of the list.

    /// The form of old files: normal entries only.
    void SalvaInFileDataList(ofpstream& out, short version) const;

    /// The full form. The tracer, which may be null, is told every entry's symbol type.
    void SalvaInFile(ofpstream& out, short version, CSymbolUsedTracer* tracer) const;

    /// Stored entries go to the entries at the same positions, whatever their names.
    void LeggeDaFileDataList(ifpstream& in, bool load, short version);

    /// Stored entries go to the entries of the same names; those of other names are dropped. Of several
    /// entries of one name the first stored goes to the first here, and so on.
    void LeggeDaFileOpzExist(ifpstream& in, bool load, short version);

private:
    using Voci = std::vector<std::unique_ptr<COpzDisEgn>>;

    int Add(Voci& list, COpzDisEgn* entry);
    bool Holds(const COpzDisEgn* entry) const;
    COpzDisEgn& At(Voci& list, int i);
    void Legge(ifpstream& in, bool load, bool byName);

    COpzListDisEgn* padre_;
    std::string sezione_;
    std::string nome_;
    int tipo_ = 0;
    short visList_ = 1;
    Voci normali_;
    Voci comuni_;
    COpzDisEgn nessuna_;  // answered where there is no entry
};
