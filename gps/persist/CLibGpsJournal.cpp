// CLibGps: the journal of changed and deleted groups and points.
#include "gps/model/CLibGps.h"
#include "gps/persist/JournalCodes.h"
#include "gps/persist/OrNull.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

/// The version that an entry begins with. False when it is not known here; nothing is read behind it then.
bool ReadEntryVersion(ifpstream& in) {
    in.SetVersion(in.ReadShort());
    return in.GetVersion() <= kVerCorrente;
}

}  // namespace

// --- writing -----------------------------------------------------------------------------------------------

// One entry; when its content cannot be written, for want of memory, there is none.
template <class Write>
void CLibGps::NoteEntry(int code, Write write) {
    ofpstream* entry = GetFileOutTmp(GetNomeFile().c_str(), code);
    if (!entry) return;
    try {
        write(*entry);
        CloseFileOutTmp(entry);
    } catch (...) {
        DropFileOutTmp(entry);
        throw;
    }
}

void CLibGps::SaveTmpGrpGps(CGrpGps* group, vex::CPtr64Mapper* mapper) {
    int g = -1;
    if (!GetIndiciDiGrp(group, g)) return;
    NoteEntry(kTmpGrpGps, [&](ofpstream& entry) {
        entry.WriteInt(g);
        group->SalvaInFile(entry, false, mapper);
    });
}

void CLibGps::SaveTmpPunGps(CPunGps* point) {
    int g = -1, p = -1;
    if (!GetIndiciDiPun(point, g, p)) return;
    NoteEntry(kTmpPunGps, [&](ofpstream& entry) {
        entry.WriteInt(g);
        entry.WriteInt(p);
        point->SalvaInFile(entry, false);
    });
}

void CLibGps::SaveDelGrpGps(CGrpGps* group) {
    int g = -1;
    if (!GetIndiciDiGrp(group, g)) return;
    NoteEntry(kDelGrpGps, [&](ofpstream& entry) { entry.WriteInt(g); });
}

void CLibGps::SaveDelPunGps(CPunGps* point) {
    int g = -1, p = -1;
    if (!GetIndiciDiPun(point, g, p)) return;
    NoteEntry(kDelPunGps, [&](ofpstream& entry) {
        entry.WriteInt(g);
        entry.WriteInt(p);
    });
}

// --- replay ------------------------------------------------------------------------------------------------

// The group that a changed group is read into: the one at g, made with all that are missing before it. Null
// for a negative g, and when they cannot be made.
CGrpGps* CLibGps::GrpToReplay(int g) {
    while (g >= GetGrpArSize()) {
        if (!OrNull([&] { return AddGrp(false); })) return nullptr;
    }
    return GetGrpAt(g);
}

CPunGps* CLibGps::PunToReplay(int g, int p) {
    if (p < 0 || !GrpToReplay(g)) return nullptr;
    while (p >= GetPunArSize(g)) {
        if (!OrNull([&] { return AddPun(g, false); })) return nullptr;
    }
    return GetPunAt(g, p);
}

bool CLibGps::LoadTmpGrpGps(ifpstream& in, bool apply, CDrawingsMapper& drawings) {
    if (!ReadEntryVersion(in)) return false;
    const int g = in.ReadInt();
    if (CGrpGps* group = apply && in.GetHeaderFlag() ? GrpToReplay(g) : nullptr) {
        group->LeggeDaFile(in, drawings, true);
        SetModifiedFlag(true);
        return true;
    }
    CGrpGps discarded(nullptr, false, ArchLibMap, TargetDrawing);
    discarded.LeggeDaFile(in, drawings, true);
    return !apply;
}

CEgn* CLibGps::LoadTmpPunGps(ifpstream& in, bool apply) {
    if (!ReadEntryVersion(in)) return nullptr;
    const int g = in.ReadInt();
    const int p = in.ReadInt();
    if (CPunGps* point = apply && in.GetHeaderFlag() ? PunToReplay(g, p) : nullptr) {
        point->LeggeDaFile(in);
        SetModifiedFlag(true);
        return point;
    }
    CPunGps discarded(nullptr, false, nullptr);
    discarded.LeggeDaFile(in);
    return nullptr;
}

bool CLibGps::LoadDelGrpGps(ifpstream& in, bool apply) {
    if (!ReadEntryVersion(in)) return false;
    const int g = in.ReadInt();
    if (!apply || !in.GetHeaderFlag()) return !apply;
    DelGrpAt(g);
    SetModifiedFlag(true);  // intended: also when there was no such group
    return true;
}

CEgn* CLibGps::LoadDelPunGps(ifpstream& in, bool apply, int& gisHandle) {
    gisHandle = 0;
    if (!ReadEntryVersion(in)) return nullptr;
    const int g = in.ReadInt();
    const int p = in.ReadInt();
    if (!apply || !in.GetHeaderFlag()) return nullptr;
    CPunGps* const point = GetPunAt(g, p);
    if (point) gisHandle = point->GetGisHandle();
    DelPunAt(g, p);
    SetModifiedFlag(true);  // intended: also when there was no such point
    return point;
}
