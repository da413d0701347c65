// CLibGps: the groups and points of another field book.
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/cloud/TableSteps.h"
#include "gps/model/CLibGps.h"
#include "gps/persist/OrNull.h"
#include "platform/cad/COrkaEng.h"
#include "platform/entity/CCloudProject.h"

namespace {

/// Takes the id from an item that was assigned one. Where the assignment took the place of an item deleted
/// here, that deletion still waits to be sent.
void DropId(CCloudItem& item, bool wasTombstone) {
    if (wasTombstone) item.GetTable()->ItemDeletedLocally(&item);
    item.SetCloudId(0);
}

bool IsTombstone(const CCloudTable* table, long long id) {
    CCloudItem* item = nullptr;
    return table && table->FindItem(id, item) && !item;
}

}  // namespace

// Appends a copy of a group of another field book, without points; null when it cannot be made.
CGrpGps* CLibGps::CopyGrpFrom(const CGrpGps& source, bool fromCloud, bool keepId) {
    CGrpGps* group = OrNull([&] { return AddGrp(fromCloud); });
    if (!group) return nullptr;
    const long long drawing = group->TargetDrawing;
    const auto detachPoints = [group] {
        group->AzzeraPunSet();
        group->PunList.clear();
        group->moves_.Clear();
        group->searchSteps_ = 0;
    };
    try {
        const bool wasTombstone = IsTombstone(group->GetTable(), source.GetCloudId());
        *group = source;
        if (!keepId) DropId(*group, wasTombstone);
        detachPoints();
        // The assignment brought the source's drawing, but no usage of it.
        if (group->TargetDrawing != drawing) {
            COrkaEng::AddDrawingRefUsage(group->TargetDrawing);
            COrkaEng::SubDrawingRefUsage(drawing);
        }
    } catch (...) {
        detachPoints();  // they are the source's
        group->TargetDrawing = drawing;
        DelGrpAt(GetGrpArSize() - 1);
        throw;
    }
    return group;
}

// Appends a copy of a point of another field book to group g; nothing when it cannot be made.
void CLibGps::CopyPunFrom(const CPunGps& source, int g, bool fromCloud, bool keepId) {
    // A value apart has its id and its owner right before the table and the look-ups learn of it.
    CPunGps value(source);
    value.Group = GetGrpAt(g);
    if (!keepId) value.SetCloudId(0);
    CPunGps* point = OrNull([&] { return AddPun(g, fromCloud); });
    if (!point) return;
    try {
        *point = value;
    } catch (...) {
        DelPunAt(g, GetPunArSize(g) - 1);
        throw;
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
