// CGpsPntCloudTable: another copy of the project.
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/cloud/EntityFields.h"
#include "gps/cloud/TableSteps.h"

CCloudItem* CGpsPntCloudTable::Merge(CCloudItem* item) {
    CCloudItem* local = nullptr;
    if (!item || !FindItem(item->GetCloudId(), local) || !local) return nullptr;
    const ReportsOff off(*local);
    CPunGps& to = *PunOf(local);
    const CPunGps& from = *PunOf(item);
    FillEntityGaps(to, from);
    if (!to.IsPrimaryPtDup()) to.SetIsPrimaryPtDup(from.IsPrimaryPtDup());
    if (!to.IsSecondaryPtDup()) to.SetIsSecondaryPtDup(from.IsSecondaryPtDup());
    return local;
}
