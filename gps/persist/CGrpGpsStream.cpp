// CGrpGps: the group record of the project stream.
#include "gps/model/CGrpGps.h"
#include "gps/persist/MovedUsage.h"
#include "gps/persist/StreamVersions.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/base/savedPointers.h"
#include "platform/cad/CDrawingsMapper.h"

void CGrpGps::SalvaInFile(ofpstream& out, bool cloudFlag, vex::CPtr64Mapper* mapper) {
    const short version = out.GetVersion();
    out.WriteString(NomeGrp);
    out.WriteString(Oper);
    out.WriteString(Strum);
    out.WriteString(Data);
    if (version >= kVerDisegni) vex::SavePointerToFile(out, TargetDrawing, mapper);
    // Intended: the entity record stands here and not first as in a point; the format is older than it.
    if (version >= kVerEntita) {
        CEgn::SalvaInFile(out);
        out.WriteString(Localita);
        for (const double value :
             {BaseSpare1, BaseSpare2, BaseSpare3, BaseLat, BaseLong, BaseElev, BaseAltAnt})
            out.WriteDouble(value);
    }
    if (version >= kVerTipiGruppo) {
        out.WriteDouble(GrpFactorA);
        out.WriteDouble(GrpFactorB);
        out.WriteUChar(TipoRilievo);
        out.WriteUChar(TipoRicevitore);
    }
    out.WriteShort(CodeElab);
    out.WriteInt(GrpFlagRis ? 1 : 0);
    ConvCoord.SalvaInFile(out, version);
    if (version >= kVerRiserve) out.WriteUInt(GrpRis32);
    if (version >= kVerDispositivo) out.WriteInt(CloudCreatorDevId);
    CCloudItem::SalvaInFile(out, version, cloudFlag);
}

void CGrpGps::LeggeDaFile(ifpstream& in, CDrawingsMapper& drawings, bool remapDrawing) {
    const short version = in.GetVersion();
    in.ReadString(NomeGrp);
    in.ReadString(Oper);
    in.ReadString(Strum);
    in.ReadString(Data);

    {
        MovedUsage usage(TargetDrawing);
        if (version < kVerDisegni) {
            TargetDrawing = drawings.GetDefaultDrawing();
        } else {
            const long long saved = vex::LoadPointerFromFile(in);
            if (remapDrawing) TargetDrawing = drawings.GetDrawing(saved);
        }
        usage.Take();
    }

    if (version >= kVerEntita) {
        CEgn::LeggeDaFile(in);
        in.ReadString(Localita);
        for (double* value :
             {&BaseSpare1, &BaseSpare2, &BaseSpare3, &BaseLat, &BaseLong, &BaseElev, &BaseAltAnt})
            *value = in.ReadDouble();
    }
    if (version >= kVerTipiGruppo) {
        GrpFactorA = in.ReadDouble();
        GrpFactorB = in.ReadDouble();
        TipoRilievo = in.ReadUChar();
        TipoRicevitore = in.ReadUChar();
    }
    CodeElab = in.ReadShort();
    // Intended: true for exactly 1, unlike the marks of points.
    GrpFlagRis = in.ReadInt() == 1;
    ConvCoord.LeggeDaFile(in, version);
    if (version >= kVerRiserve) GrpRis32 = in.ReadUInt();
    if (version >= kVerDispositivo) CloudCreatorDevId = in.ReadInt();
    CCloudItem::LeggeDaFile(in, version);
}
