// CGpsBaseCloudTable: another copy of the project.
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/EntityFields.h"
#include "gps/cloud/TableSteps.h"

CCloudItem* CGpsBaseCloudTable::Merge(CCloudItem* item) {
    CCloudItem* local = nullptr;
    if (!item || !FindItem(item->GetCloudId(), local) || !local) return nullptr;
    const ReportsOff off(*local);
    CGrpGps& to = *GrpOf(local);
    const CGrpGps& from = *GrpOf(item);
    FillEntityGaps(to, from);
    if (!to.GetGrpFlagRis()) to.SetGrpFlagRis(from.GetGrpFlagRis());
    if (to.GetGrpFactorA() == 1.0) to.SetGrpFactorA(from.GetGrpFactorA());
    if (to.GetGrpFactorB() == 1.0) to.SetGrpFactorB(from.GetGrpFactorB());
    if (to.GetOper().empty()) to.SetOper(from.GetOper());
    if (to.GetStrum().empty()) to.SetStrum(from.GetStrum());
    if (to.GetData().empty()) to.SetData(from.GetData());
    if (to.GetLocalita().empty()) to.SetLocalita(from.GetLocalita());
    return local;
}
