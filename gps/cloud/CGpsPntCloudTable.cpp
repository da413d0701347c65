#include "gps/cloud/CGpsPntCloudTable.h"

#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/EntityFields.h"
#include "gps/cloud/TableSteps.h"

namespace {

constexpr std::uint32_t kAllFields = 0x1FFFF;

char* AppendCovariance(char* end, float covariance) {
    const double units = (covariance > 1.0F ? 1.0 : static_cast<double>(covariance)) * 1e9;
    // What 64 bits do not hold, and NaN, has no lower 32 bits to send.
    const bool fits = units > -0x1p63 && units < 0x1p63;
    return AppendInt(end, static_cast<std::int32_t>(fits ? static_cast<std::int64_t>(units) : 0));
}

std::size_t ItemTextBytes(CCloudItem* item) { return EntityTextBytes(*PunOf(item)); }

}  // namespace

CGpsPntCloudTable::CGpsPntCloudTable(CGpsBaseCloudTable* base) : CCloudTable(tabGpsPnt), base_(base) {}

char* CGpsPntCloudTable::ConcatCovarianceValue(char* line, float covariance) {
    return AppendCovariance(EndOf(line), covariance);
}

char* CGpsPntCloudTable::AppendFields(char* end, const CPunGps& point, std::uint32_t mask) {
    end = AppendEntityFields(end, point, mask);
    if (mask & CHG_PUN_DATETIME) {
        end = AppendInt(end, static_cast<int>(point.GetYear()));
        end = AppendInt(end, static_cast<int>(point.GetMonth()));
        end = AppendInt(end, static_cast<int>(point.GetDay()));
        end = AppendInt(end, static_cast<std::int32_t>(point.GetTod()));  // as a signed number
    }
    if (mask & CHG_PUN_QUA) end = AppendInt(end, point.GetQua());
    if (mask & CHG_PUN_NUGPS) end = AppendInt(end, static_cast<int>(point.GetNuGpsUsed()));
    if (mask & CHG_PUN_NUGLO) end = AppendInt(end, static_cast<int>(point.GetNuGloUsed()));
    if (mask & CHG_PUN_LAT) end = ConcatDoubleValue(end, point.GetLat(), fmtAngolo);
    if (mask & CHG_PUN_LONG) end = ConcatDoubleValue(end, point.GetLong(), fmtAngolo);
    if (mask & CHG_PUN_ELEV) end = ConcatDoubleValue(end, point.GetElev(), fmtLineare);
    if (mask & CHG_PUN_ALTANT) end = ConcatDoubleValue(end, point.GetAltAnt(), fmtLineare);
    if (mask & CHG_PUN_PDOP) end = ConcatDoubleValue(end, point.GetPdop(), fmtLineare);
    if (mask & CHG_PUN_GDOP) end = ConcatDoubleValue(end, point.GetGdop(), fmtLineare);
    if (mask & CHG_PUN_HPOSRMS) end = ConcatDoubleValue(end, point.GetHposRms(), fmtLineare);
    if (mask & CHG_PUN_VPOSRMS) end = ConcatDoubleValue(end, point.GetVposRms(), fmtLineare);
    if (mask & CHG_PUN_POSCOV) {
        end = AppendCovariance(end, point.GetPosCov_xx());
        end = AppendCovariance(end, point.GetPosCov_xy());
        end = AppendCovariance(end, point.GetPosCov_xz());
        end = AppendCovariance(end, point.GetPosCov_yy());
        end = AppendCovariance(end, point.GetPosCov_yz());
        end = AppendCovariance(end, point.GetPosCov_zz());
    }
    return end;
}

void CGpsPntCloudTable::GenerateCommitString_Change(vex::String& records) {
    WriteRecords(records, GetChanged(), ItemTextBytes, [this](char* line, CCloudItem* item) {
        char* end = BeginChange(line, "UPTGPS", *item);
        return AppendFields(end, *PunOf(item), item->GetCloudFlag());
    });
}

void CGpsPntCloudTable::GenerateCommitString_Add(int& counter, vex::String& records) {
    // Intended: one counter for all points, that of the records before the first: the groups' are the last.
    WriteRecords(records, GetAdded(), ItemTextBytes, [&](char* line, CCloudItem* item) {
        const CPunGps& point = *PunOf(item);
        char* end = AppendBytes(line, "IPTGPS");
        end = AppendInt(end, CalcParentId(CGrpGps::CloudItemOf(point.Group), base_, counter));
        return AppendFields(end, point, kAllFields);
    });
    counter += static_cast<int>(GetAdded().size());
}

void CGpsPntCloudTable::GetFields(CPunGps& point, std::uint32_t mask, vex::String& text) {
    CommitLine line;
    const std::string_view fields = line.UpTo(AppendFields(line.Begin(EntityTextBytes(point)), point, mask));
    text = fields.empty() ? fields : fields.substr(1);  // each field has its ";" in front
}

void CGpsPntCloudTable::SaveTmpItems(const std::vector<CCloudItem*>& more,
                                     const std::set<CCloudItem*>& others) {
    CLibGps* book = BookOf(*this);
    if (!book) return;
    WriteWaiting(*this, more, others, [&](CCloudItem* item) { book->SaveTmpPunGps(PunOf(item)); });
}
