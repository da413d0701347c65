#include "gps/cloud/EntityFields.h"

#include "gps/cloud/CommitLine.h"
#include "gps/cloud/ReplyValues.h"
#include "gps/model/ChangeBits.h"
#include "platform/entity/CCloudTable.h"

std::size_t EntityTextBytes(const CEgn& entity) {
    return entity.GetNome().size() + entity.GetSecScri().size();
}

char* AppendEntityFields(char* end, const CEgn& entity, std::uint32_t mask) {
    if (mask & CHG_NOME) end = AppendText(end, entity.GetNome());
    if (mask & CHG_SECSCRI) end = AppendText(end, entity.GetSecScri());
    if (mask & CHG_COORD) {
        end = CCloudTable::ConcatDoubleValue(end, entity.GetCoordX(), CCloudTable::fmtLineare);
        end = CCloudTable::ConcatDoubleValue(end, entity.GetCoordY(), CCloudTable::fmtLineare);
        end = CCloudTable::ConcatDoubleValue(end, entity.GetCoordZ(), CCloudTable::fmtLineare);
    }
    // Entity codes hold 32 bits; they travel as a signed number.
    if (mask & CHG_CODEEGN) end = AppendInt(end, static_cast<std::int32_t>(entity.GetCodeEgn()));
    return end;
}

bool SetEntityFields(CEgn& entity, std::uint32_t bit, const vex::String* fields) {
    switch (bit) {
        case CHG_NOME:
            entity.SetNome(std::string(fields[0].View()));
            return true;
        case CHG_SECSCRI:
            entity.SetSecScri(std::string(fields[0].View()));
            return true;
        case CHG_COORD:
            entity.SetCoord(ReplyReal(fields[0]), ReplyReal(fields[1]), ReplyReal(fields[2]));
            return true;
        case CHG_CODEEGN:
            entity.SetCodeEgn(static_cast<std::uint32_t>(ReplyInt(fields[0])));
            return true;
        default:
            return false;
    }
}

void FillEntityGaps(CEgn& local, const CEgn& incoming) {
    // What is equal is not stored again: an entity makes room for these fields when one is first stored.
    const auto fillText = [&](const std::string& (CEgn::*get)() const, void (CEgn::*set)(const std::string&),
                              const char* empty) {
        const std::string& value = (incoming.*get)();
        if ((local.*get)() == empty && value != empty) (local.*set)(value);
    };
    fillText(&CEgn::GetTerScri, &CEgn::SetTerScri, "");
    fillText(&CEgn::GetNote, &CEgn::SetNote, "");
    // Intended: photo names are empty as a new entity has them, and then only.
    fillText(&CEgn::GetNomiFoto_Raw, &CEgn::SetNomiFoto_Raw, "******");
    fillText(&CEgn::GetAttribDis, &CEgn::SetAttribDis, "");
    if (local.GetVldtEgn() == 0) local.SetVldtEgn(incoming.GetVldtEgn());
    const auto setDescr = [&](int ident) {
        if (ident != local.GetIdentDescr()) local.SetIdentDescr(ident);
    };
    if (local.GetIdentDescr() == -1) setDescr(incoming.GetIdentDescr());
    // Intended: the incoming GIS handle, 0 too, becomes the descriptor id of an entity without GIS handle,
    // which keeps none: the other copy's reference to the object is not lost.
    if (local.GetGisHandle() == 0) setDescr(incoming.GetGisHandle());
}
