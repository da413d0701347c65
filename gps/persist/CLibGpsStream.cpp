// CLibGps: the field-book record of the project stream.
#include "gps/model/CLibGps.h"
#include "gps/options/COpzPostProc.h"
#include "gps/persist/MovedUsage.h"
#include "gps/persist/OrNull.h"
#include "gps/persist/RoomFor.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/base/savedPointers.h"
#include "platform/cad/CDrawingsMapper.h"
#include "platform/coord/CLibMap.h"

void CLibGps::SalvaInFile(ofpstream& out, short version, const char* file, CSymbolUsedTracer* tracer,
                          vex::CPtr64Mapper* mapper) {
    SetNomeFile(file ? file : "");
    // Items 1 to 5 go by the argument, the rest by the version of the stream; the caller passes the same.
    if (version >= kVerDisegni) {
        vex::SavePointerToFile(out, TargetDrawing, mapper);
    } else if (ArchLibMap) {
        ArchLibMap->SalvaInFile(out, version);
    } else {
        CLibMap().SalvaInFile(out, version);  // the record has its place without a library, too
    }
    OpzLib.SalvaInFile(out, version);
    OpzListDis.SalvaInFile(out, version, tracer);
    SalvaTutteLeEnt(out, version, false, mapper);
    SalvaOpzPostProc(out);
}

void CLibGps::LeggeDaFile(ifpstream& in, bool loadOptions, bool addEntities, short version, const char* file,
                          CDrawingsMapper& drawings) {
    SetNomeFile(file ? file : "");
    {
        MovedUsage usage(TargetDrawing);
        if (version >= kVerDisegni) {
            TargetDrawing = drawings.GetDrawing(vex::LoadPointerFromFile(in));
        } else {
            TargetDrawing = drawings.GetDefaultDrawing();
            if (ArchLibMap)
                ArchLibMap->LeggeDaFile(in, version);
            else
                CLibMap().LeggeDaFile(in, version);
        }
        usage.Take();
    }
    OpzLib.LeggeDaFile(in, loadOptions, version);
    OpzListDis.LeggeDaFile(in, loadOptions, version);
    LeggeTutteLeEnt(in, addEntities, version, drawings);
    LeggeOpzPostProc(in, loadOptions);
}

void CLibGps::SalvaTutteLeEnt(ofpstream& out, short version, bool cloudFlag, vex::CPtr64Mapper* mapper) {
    StreamVersion = static_cast<unsigned short>(version);
    out.WriteInt(GetGrpArSize());
    for (CGrpGps* group : GrpList) {
        group->SalvaInFile(out, cloudFlag, mapper);
        out.WriteInt(static_cast<std::int32_t>(group->PunList.size()));
        for (CPunGps* point : group->PunList) point->SalvaInFile(out, cloudFlag);
    }
}

void CLibGps::LeggeTutteLeEnt(ifpstream& in, bool addEntities, short version, CDrawingsMapper& drawings) {
    StreamVersion = static_cast<unsigned short>(version);
    StreamFlag = addEntities;
    // Groups are appended: what is in the field book already stays.
    int g = GetGrpArSize();
    bool groupAdd = addEntities;
    bool pointAdd = addEntities;

    const int groups = in.ReadInt();
    if (groupAdd) GrpArAddReserve(RoomFor(in, groups));
    for (int i = 0; i < groups; ++i, ++g) {
        CGrpGps* group = groupAdd ? OrNull([&] { return AddGrp(false); }) : nullptr;
        if (group) {
            group->LeggeDaFile(in, drawings, true);
        } else {
            groupAdd = false;
            CGrpGps discarded(nullptr, false, ArchLibMap, TargetDrawing);
            discarded.LeggeDaFile(in, drawings, true);
        }
        // Without its group a point has no place; and after one point could not be made, none is: a book
        // with holes in the middle of a group would look complete.
        pointAdd = pointAdd && groupAdd;

        const int points = in.ReadInt();
        if (pointAdd) PunArAddReserve(g, RoomFor(in, points));
        for (int j = 0; j < points; ++j) {
            CPunGps* point = pointAdd ? OrNull([&] { return AddPun(g, false); }) : nullptr;
            if (point) {
                point->LeggeDaFile(in);
            } else {
                pointAdd = false;
                CPunGps discarded(nullptr, false, nullptr);
                discarded.LeggeDaFile(in);
            }
        }
    }
}

void CLibGps::SalvaOpzPostProc(ofpstream& out) {
    if (out.GetVersion() < kVerOpzPostProc) return;
    out.WriteUChar(OpzPostProc ? 1 : 0);
    if (OpzPostProc) OpzPostProc->SalvaInFile(out);
}

void CLibGps::LeggeOpzPostProc(ifpstream& in, bool loadOptions) {
    if (in.GetVersion() < kVerOpzPostProc || in.ReadUChar() == 0) return;
    if (loadOptions) {
        GetOpzPostProc()->LeggeDaFile(in);
    } else {
        COpzPostProc discarded;
        discarded.LeggeDaFile(in);
    }
}
