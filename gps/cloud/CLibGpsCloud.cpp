// CLibGps: the groups and points of another field book.
#include <new>

#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/cloud/TableSteps.h"
#include "gps/model/CLibGps.h"
#include "gps/persist/OrNull.h"
#include "platform/cad/COrkaEng.h"
#include "platform/entity/CCloudProject.h"

// Appends a copy of a group of another field book, without points; null, and nothing appended, when there is
// no memory for it.
CGrpGps* CLibGps::CopyGrpFrom(const CGrpGps& source, bool fromCloud, bool keepId) {
    CGrpGps* group = OrNull([&] { return AddGrp(fromCloud); });
    if (!group) return nullptr;
    const long long drawing = group->TargetDrawing;
    try {
        // A value apart lists no points, which are the source's, and has no id: an id that is given before
        // all else is copied would take the place of a deletion that waits here, also when the copy then
        // fails.
        CGrpGps value(source);
        value.AzzeraPunSet();
        value.PunList.clear();
        value.moves_.Clear();
        value.searchSteps_ = 0;
        value.SetCloudId(0);
        // Destroyed, the value gives a usage back; the source has one, so that another needs no memory.
        COrkaEng::AddDrawingRefUsage(value.TargetDrawing);
        *group = value;
        value.TargetDrawing = drawing;  // the usages change hands
        if (keepId) group->CCloudItem::operator=(source);
    } catch (const std::bad_alloc&) {
        DelGrpAt(GetGrpArSize() - 1);
        return nullptr;
    }
    return group;
}

// Appends a copy of a point of another field book to group g; nothing when there is no memory for it.
void CLibGps::CopyPunFrom(const CPunGps& source, int g, bool fromCloud, bool keepId) {
    CPunGps* point = nullptr;
    try {
        // A value apart has its id and its owner right before the table and the look-ups learn of it.
        CPunGps value(source);
        value.Group = GetGrpAt(g);
        if (!keepId) value.SetCloudId(0);
        point = AddPun(g, fromCloud);
        *point = value;
    } catch (const std::bad_alloc&) {
        if (point) DelPunAt(g, GetPunArSize(g) - 1);
    }
}

void CLibGps::ImportCloudItems(CLibGps* source) {
    if (!source) return;
    // The source may be this field book: it is counted before it grows.
    const int groups = source->GetGrpArSize();
    GrpArAddReserve(groups);
    for (int i = 0; i < groups; ++i) {
        CGrpGps& from = *source->GetGrpAt(i);
        if (!CopyGrpFrom(from, true, false)) continue;
        const int g = GetGrpArSize() - 1;
        const int points = source->GetPunArSize(i);
        PunArAddReserve(g, points);
        for (int p = 0; p < points; ++p) CopyPunFrom(*source->GetPunAt(i, p), g, true, false);
    }
}

void CLibGps::MergeCloudItems(CLibGps* source) {
    CCloudProject* cloud = GetCloudProject();
    CCloudTable* base = cloud ? cloud->GetGpsBaseTable() : nullptr;
    CCloudTable* pnt = cloud ? cloud->GetGpsPntTable() : nullptr;
    if (!source || !base || !pnt) return;
    const int groups = source->GetGrpArSize();
    for (int i = 0; i < groups; ++i) {
        CGrpGps& from = *source->GetGrpAt(i);
        const int points = source->GetPunArSize(i);
        CGrpGps* group = GrpOf(base->Merge(CGrpGps::CloudItemOf(&from)));
        if (!group) group = CopyGrpFrom(from, false, true);
        if (!group) continue;
        for (int p = 0; p < points; ++p) {
            CPunGps& point = *source->GetPunAt(i, p);
            int g = -1;
            if (pnt->Merge(CPunGps::CloudItemOf(&point)) || !GetIndiciDiGrp(group, g)) continue;
            CopyPunFrom(point, g, false, true);
        }
    }
}
