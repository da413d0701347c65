#include "gps/options/COpzListDisGps.h"

#include <memory>
#include <new>

#include "gps/options/COpzDisGrpGps.h"
#include "gps/options/COpzDisPunGps.h"
#include "gps/options/StringResources.h"

namespace {

constexpr const char* kSection = "DIS-GPS";
constexpr int kTipoGps = 2;

// Written in the full form from this version on, read by name from that one on. Files in between are written
// in one way and read in the other.
constexpr short kVerWriteFull = 742;
constexpr short kVerReadByName = 720;

// An entry with its settings. It is named first: the name is part of their section.
template <class Entry>
std::unique_ptr<Entry> MakeEntry(const char* name) {
    auto entry = std::make_unique<Entry>(kSection);
    entry->SetNomeOpz(name);
    entry->GetDaIni();
    return entry;
}

}  // namespace

COpzListDisGps::COpzListDisGps(COpzListDisEgn* parent) : COpzListDisEgn(parent, kSection) {
    GetDaIni();
    char name[1024];
    LoadStringGps(kStrOpzListGps, name, sizeof name);
    SetNomeOpzList(name);
    SetTipoOpzList(kTipoGps);
    opzPun_ = MakeEntry<COpzDisPunGps>("Punti GPS").release();
    COpzListDisEgn::AddOpzNor(opzPun_);
    opzGrp_ = MakeEntry<COpzDisGrpGps>("Basi GPS").release();
    COpzListDisEgn::AddOpzNor(opzGrp_);
}

COpzListDisGps::~COpzListDisGps() = default;

COpzListDisEgn* COpzListDisGps::Clone() const {
    try {
        return new COpzListDisGps(*this);
    } catch (const std::bad_alloc&) {  // of the list, an entry or a text
        return nullptr;
    }
}

void COpzListDisGps::SalvaInFile(ofpstream& out, short version, CSymbolUsedTracer* tracer) const {
    if (version < kVerWriteFull)
        SalvaInFileDataList(out, version);
    else
        COpzListDisEgn::SalvaInFile(out, version, tracer);
}

void COpzListDisGps::LeggeDaFile(ifpstream& in, bool load, short version) {
    if (version < kVerReadByName)
        LeggeDaFileDataList(in, load, version);
    else
        LeggeDaFileOpzExist(in, load, version);
}
