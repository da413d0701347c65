// CGpsPntCloudTable: replies.
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "gps/cloud/EntityFields.h"
#include "gps/cloud/ReplyValues.h"
#include "gps/cloud/TableSteps.h"
#include "gps/persist/OrNull.h"

namespace {

/// Square metres.
float ReplyCovariance(const vex::String& text) { return static_cast<float>(ReplyInt(text) / 1e9); }

// What SetFields does. Here a call of it costs no way through the library's symbols, 17 times a reply.
void StoreFields(CPunGps& point, std::uint32_t bit, const vex::String* fields) {
    // Whole numbers are stored modulo the width of their fields.
    switch (bit) {
        case CHG_PUN_DATETIME:
            point.SetYear(static_cast<unsigned short>(ReplyInt(fields[0])));
            point.SetMonth(static_cast<unsigned char>(ReplyInt(fields[1])));
            point.SetDay(static_cast<unsigned char>(ReplyInt(fields[2])));
            point.SetTod(static_cast<std::uint32_t>(ReplyInt(fields[3])));
            break;
        case CHG_PUN_QUA:
            point.SetQua(ReplyInt(fields[0]));
            break;
        case CHG_PUN_NUGPS:
            point.SetNuGpsUsed(static_cast<unsigned char>(ReplyInt(fields[0])));
            break;
        case CHG_PUN_NUGLO:
            point.SetNuGloUsed(static_cast<unsigned char>(ReplyInt(fields[0])));
            break;
        case CHG_PUN_LAT:
            point.SetLat(ReplyReal(fields[0]));
            break;
        case CHG_PUN_LONG:
            point.SetLong(ReplyReal(fields[0]));
            break;
        case CHG_PUN_ELEV:
            point.SetElev(ReplyReal(fields[0]));
            break;
        case CHG_PUN_ALTANT:
            point.SetAltAnt(ReplyReal(fields[0]));
            break;
        case CHG_PUN_PDOP:
            point.SetPdop(ReplyReal(fields[0]));
            break;
        case CHG_PUN_GDOP:
            point.SetGdop(ReplyReal(fields[0]));
            break;
        case CHG_PUN_HPOSRMS:
            point.SetHposRms(ReplyReal(fields[0]));
            break;
        case CHG_PUN_VPOSRMS:
            point.SetVposRms(ReplyReal(fields[0]));
            break;
        case CHG_PUN_POSCOV:
            point.SetPosCov_xx(ReplyCovariance(fields[0]));
            point.SetPosCov_xy(ReplyCovariance(fields[1]));
            point.SetPosCov_xz(ReplyCovariance(fields[2]));
            point.SetPosCov_yy(ReplyCovariance(fields[3]));
            point.SetPosCov_yz(ReplyCovariance(fields[4]));
            point.SetPosCov_zz(ReplyCovariance(fields[5]));
            break;
        default:
            SetEntityFields(point, bit, fields);
    }
}

}  // namespace

void CGpsPntCloudTable::SetFields(CPunGps& point, std::uint32_t bit, const vex::String* fields) {
    StoreFields(point, bit, fields);
}

bool CGpsPntCloudTable::AddFromReply(long long id, long long groupId, const std::vector<vex::String>& reply) {
    CLibGps* book = BookOf(*this);
    CCloudItem* group = nullptr;
    int g = -1;
    if (!book || !base_ || !base_->FindItem(groupId, group)) return false;
    if (!book->GetIndiciDiGrp(GrpOf(group), g)) return false;  // a group that was deleted here is none
    CPunGps* point = OrNull([&] { return book->AddPun(g, false); });
    if (!point) return false;
    // Intended: the new point reports its changes; with AddItemToTable none of them is left to be sent.
    try {
        CCloudItem* item = CPunGps::CloudItemOf(point);
        item->SetCloudId(id);
        for (const FieldGroup& field : PUN_FIELDS) StoreFields(*point, field.bit, reply.data() + field.first);
        AddItemToTable(item);
    } catch (...) {
        // With an id that the table does not know, the next reply would make the point a second time.
        book->DelPunAt(g, book->GetPunArSize(g) - 1);
        throw;
    }
    return true;
}

bool CGpsPntCloudTable::UpdateSuccessful_Edit(const std::vector<vex::String>& reply) {
    if (reply.size() != PUN_REPLY_FIELDS) return false;
    const long long id = ReplyInt64(reply[0]);
    // Intended: every reply names the group, though a known point stays where it is.
    const long long groupId = ReplyInt64(reply[1]);
    if (id < 1 || groupId < 1) return false;
    CCloudItem* item = nullptr;
    if (!FindItem(id, item)) {
        if (!AddFromReply(id, groupId, reply)) return false;
    } else if (item) {
        StoreUnchanged(*item, PUN_FIELDS, reply, [&](std::uint32_t bit, const vex::String* fields) {
            StoreFields(*PunOf(item), bit, fields);
        });
    }
    NotifyReply(BookOf(*this));
    return true;
}

bool CGpsPntCloudTable::UpdateSuccessful_Del(const std::vector<vex::String>& reply) {
    if (reply.size() != DEL_REPLY_FIELDS) return false;
    CPunGps* point = PunOf(DelItemFromTable(ReplyInt64(reply[1])));
    CLibGps* book = BookOf(*this);
    int g = -1, p = -1;
    if (!book || !book->GetIndiciDiPun(point, g, p)) return false;  // no point is in no book
    book->DelPunAt(g, p);
    NotifyReply(book);
    return true;
}
