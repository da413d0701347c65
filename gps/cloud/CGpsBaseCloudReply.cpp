// CGpsBaseCloudTable: replies.
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/ConvCoordReply.h"
#include "gps/cloud/EntityFields.h"
#include "gps/cloud/ReplyValues.h"
#include "gps/cloud/TableSteps.h"
#include "gps/persist/OrNull.h"

namespace {

// The fields of a new group in the order in which they are stored, which differs from that of the bits.
constexpr std::array<std::uint32_t, 13> kNewGroup{CHG_NOME,
                                                  CHG_COORD,
                                                  CHG_CODEEGN,
                                                  CHG_SECSCRI,
                                                  CHG_GRP_NOMEGRP,
                                                  CHG_GRP_TIPORILIEVO,
                                                  CHG_GRP_TIPORICEVITORE,
                                                  CHG_GRP_BASELAT,
                                                  CHG_GRP_BASELONG,
                                                  CHG_GRP_BASEELEV,
                                                  CHG_GRP_BASEALTANT,
                                                  CHG_GRP_CODEELAB,
                                                  CHG_GRP_CONVCOORD};

int FirstField(std::uint32_t bit) {
    for (const FieldGroup& field : GRP_FIELDS)
        if (field.bit == bit) return field.first;
    return -1;
}

}  // namespace

void CGpsBaseCloudTable::SetFields(CGrpGps& group, std::uint32_t bit, const vex::String* fields) {
    if (SetEntityFields(group, bit, fields)) return;
    switch (bit) {
        case CHG_GRP_NOMEGRP:
            group.SetNomeGrp(std::string(fields[0].View()));
            break;
        case CHG_GRP_TIPORILIEVO:
            group.SetTipoRilievo(ReplyIsOne(fields[0]));
            break;
        case CHG_GRP_TIPORICEVITORE:
            group.SetTipoRicevitore(ReplyIsOne(fields[0]));
            break;
        case CHG_GRP_BASELAT:
            group.SetBaseLat(ReplyReal(fields[0]));
            break;
        case CHG_GRP_BASELONG:
            group.SetBaseLong(ReplyReal(fields[0]));
            break;
        case CHG_GRP_BASEELEV:
            group.SetBaseElev(ReplyReal(fields[0]));
            break;
        case CHG_GRP_BASEALTANT:
            group.SetBaseAltAnt(ReplyReal(fields[0]));
            break;
        case CHG_GRP_CODEELAB:
            group.SetCodeElab(static_cast<short>(ReplyInt(fields[0])));
            break;
        case CHG_GRP_CONVCOORD:
            SetConvCoord(group.GetConvCoord(), ConvCoordFromReply(fields));
            break;
        default:
            break;
    }
}

bool CGpsBaseCloudTable::AddFromReply(long long id, int creator, const std::vector<vex::String>& reply) {
    CLibGps* book = BookOf(*this);
    CGrpGps* group = book ? OrNull([&] { return book->AddGrp(false); }) : nullptr;
    if (!group) return false;
    // Intended: the new group reports its changes; with AddItemToTable none of them is left to be sent.
    try {
        CCloudItem* item = CGrpGps::CloudItemOf(group);
        item->SetCloudId(id);
        group->SetCloudCreatorDevId(creator);
        for (const std::uint32_t bit : kNewGroup) SetFields(*group, bit, reply.data() + FirstField(bit));
        AddItemToTable(item);
    } catch (...) {
        // With an id that the table does not know, the next reply would make the group a second time.
        book->DelGrpAt(book->GetGrpArSize() - 1);
        throw;
    }
    return true;
}

bool CGpsBaseCloudTable::UpdateSuccessful_Edit(const std::vector<vex::String>& reply) {
    if (reply.size() != GRP_REPLY_FIELDS) return false;
    const long long id = ReplyInt64(reply[0]);
    // Intended: every reply names the creator, though a known group keeps its own.
    const int creator = ReplyInt(reply[1]);
    if (id < 1 || creator < 1) return false;
    CCloudItem* item = nullptr;
    if (!FindItem(id, item)) {
        if (!AddFromReply(id, creator, reply)) return false;
    } else if (item) {
        StoreUnchanged(*item, GRP_FIELDS, reply, [&](std::uint32_t bit, const vex::String* fields) {
            SetFields(*GrpOf(item), bit, fields);
        });
    }
    NotifyReply(BookOf(*this));
    return true;
}

bool CGpsBaseCloudTable::UpdateSuccessful_Del(const std::vector<vex::String>& reply) {
    if (reply.size() != DEL_REPLY_FIELDS) return false;
    CGrpGps* group = GrpOf(DelItemFromTable(ReplyInt64(reply[1])));
    CLibGps* book = BookOf(*this);
    int g = -1;
    if (!book || !book->GetIndiciDiGrp(group, g)) return false;  // no group is in no book
    book->DelGrpAt(g);
    NotifyReply(book);
    return true;
}
