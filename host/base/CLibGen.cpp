#include "platform/base/CLibGen.h"

TmpJournal::~TmpJournal() = default;

CLibGen::CLibGen(const CLibGen& other)
    : VEXNotifySource(other),
      modified_(other.modified_),
      autoSaved_(other.autoSaved_),
      nomeFile_(other.nomeFile_) {}

CLibGen& CLibGen::operator=(const CLibGen& other) {
    VEXNotifySource::operator=(other);
    modified_ = other.modified_;
    autoSaved_ = other.autoSaved_;
    nomeFile_ = other.nomeFile_;
    return *this;
}

CLibGen::~CLibGen() = default;

void CLibGen::SetModifiedFlag(bool modified) {
    modified_ = modified;
    if (modified) autoSaved_ = false;
}

bool CLibGen::IsModified() { return modified_; }

void CLibGen::SetAutoSaved() { autoSaved_ = true; }

bool CLibGen::IsAutoSaved() { return autoSaved_; }

void CLibGen::SalvaInFile(ofpstream&, short) {}

void CLibGen::LeggeDaFile(ifpstream&, short) {}

ofpstream* CLibGen::GetFileOutTmp(const char* file, int code) {
    return journal_ && file && *file ? journal_->Open(file, code) : nullptr;
}

void CLibGen::CloseFileOutTmp(ofpstream* entry) {
    if (journal_ && entry) journal_->Close(entry);
}

void CLibGen::DropFileOutTmp(ofpstream* entry) {
    if (journal_ && entry) journal_->Discard(entry);
}
