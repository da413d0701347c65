#include "platform/base/CLibGen.h"

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
