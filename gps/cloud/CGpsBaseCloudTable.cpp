#include "gps/cloud/CGpsBaseCloudTable.h"

#include "gps/cloud/EntityFields.h"
#include "gps/cloud/TableSteps.h"
#include "platform/base/savedPointers.h"
#include "platform/coord/CLibMap.h"

namespace {

constexpr std::uint32_t kAllFields = 0x1FFF;

std::size_t TextBytes(const CGrpGps& group) {
    const CConvCoord& conversion = *group.GetConvCoord();
    std::size_t bytes =
        EntityTextBytes(group) + group.GetNomeGrp().size() + conversion.GetConvDtBaseGps()->GetNome().size();
    if (CLibMap* map = conversion.GetLibMap()) {
        const CDatumConv* selected = map->GetDatAt(conversion.GetImp(CConvCoord::impDatSel1),
                                                   conversion.GetImp(CConvCoord::impDatSel2),
                                                   conversion.GetImp(CConvCoord::impDatIndice));
        if (selected) bytes += selected->GetNome().size();
        bytes += map->GetConvDtBaseGps()->GetNome().size();
    }
    return bytes;
}

std::size_t ItemTextBytes(CCloudItem* item) { return TextBytes(*GrpOf(item)); }

/// Any type but 0 is sent as 1.
int ZeroOrOne(unsigned char type) { return type != 0 ? 1 : 0; }

}  // namespace

CGpsBaseCloudTable::CGpsBaseCloudTable() : CCloudTable(tabGpsBase) {}

void CGpsBaseCloudTable::SetCloudCreatorDevId(CCloudItem* item, int devId) {
    if (CGrpGps* group = GrpOf(item)) group->SetCloudCreatorDevId(devId);
}

char* CGpsBaseCloudTable::AppendFields(char* end, CGrpGps& group, std::uint32_t mask) {
    end = AppendEntityFields(end, group, mask);
    if (mask & CHG_GRP_NOMEGRP) end = AppendText(end, group.GetNomeGrp());
    if (mask & CHG_GRP_TIPORILIEVO) end = AppendInt(end, ZeroOrOne(group.GetTipoRilievo()));
    if (mask & CHG_GRP_TIPORICEVITORE) end = AppendInt(end, ZeroOrOne(group.GetTipoRicevitore()));
    if (mask & CHG_GRP_BASELAT) end = ConcatDoubleValue(end, group.GetBaseLat(), fmtAngolo);
    if (mask & CHG_GRP_BASELONG) end = ConcatDoubleValue(end, group.GetBaseLong(), fmtAngolo);
    if (mask & CHG_GRP_BASEELEV) end = ConcatDoubleValue(end, group.GetBaseElev(), fmtLineare);
    if (mask & CHG_GRP_BASEALTANT) end = ConcatDoubleValue(end, group.GetBaseAltAnt(), fmtLineare);
    if (mask & CHG_GRP_CODEELAB) end = AppendInt(end, group.GetCodeElab());
    if (mask & CHG_GRP_CONVCOORD) end = ConcatConvCoord(end, group.GetConvCoord());
    return end;
}

void CGpsBaseCloudTable::GenerateCommitString_Change(vex::String& records) {
    WriteRecords(records, GetChanged(), ItemTextBytes, [this](char* line, CCloudItem* item) {
        char* end = BeginChange(line, "UBAS", *item);
        return AppendFields(end, *GrpOf(item), item->GetCloudFlag());
    });
}

void CGpsBaseCloudTable::GenerateCommitString_Add(int& counter, vex::String& records) {
    WriteRecords(records, GetAdded(), ItemTextBytes, [this](char* line, CCloudItem* item) {
        char* end = AppendBytes(line, "IBAS");
        return AppendFields(end, *GrpOf(item), kAllFields);
    });
    counter += static_cast<int>(GetAdded().size());
}

void CGpsBaseCloudTable::GetFields(CGrpGps& group, std::uint32_t mask, vex::String& text) {
    CommitLine line;
    const std::string_view fields = line.UpTo(AppendFields(line.Begin(TextBytes(group)), group, mask));
    text = fields.empty() ? fields : fields.substr(1);  // each field has its ";" in front
}

void CGpsBaseCloudTable::SaveTmpItems(const std::vector<CCloudItem*>& more,
                                      const std::set<CCloudItem*>& others) {
    CLibGps* book = BookOf(*this);
    if (!book) return;
    vex::CPtr64Mapper mapper;
    WriteWaiting(*this, more, others, [&](CCloudItem* item) { book->SaveTmpGrpGps(GrpOf(item), &mapper); });
}
