// CGpsBaseCloudTable: a group's conversion, into a record and back from a reply.
#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CommitLine.h"
#include "platform/coord/CConvCoord.h"
#include "platform/coord/CLibMap.h"

namespace {

CDatumConv* SelectedDatum(const CConvCoord& conversion) {
    const CLibMap* map = conversion.GetLibMap();
    if (!map) return nullptr;
    return map->GetDatAt(conversion.GetImp(CConvCoord::impDatSel1), conversion.GetImp(CConvCoord::impDatSel2),
                         conversion.GetImp(CConvCoord::impDatIndice));
}

}  // namespace

char* CGpsBaseCloudTable::ConcatDatumConv(char* line, CDatumConv* datum) {
    char* end = EndOf(line);
    if (!datum) return end;
    bool fromStd = false;
    double c[7] = {};
    datum->GetCoeff(fromStd, c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
    double lat = 0, lon = 0;
    datum->GetGrafOrigine(lat, lon);
    end = AppendText(end, datum->GetNome());
    end = AppendInt(end, fromStd ? 1 : 0);
    for (const double coefficient : c) end = ConcatDoubleValue(end, coefficient, fmtLineare);
    end = ConcatDoubleValue(end, lat, fmtAngolo);
    return ConcatDoubleValue(end, lon, fmtAngolo);
}

char* CGpsBaseCloudTable::ConcatConvCoord(char* line, CConvCoord* conversion) {
    char* end = EndOf(line);
    CLibMap* map = conversion->GetLibMap();

    for (int k = 1; k <= 5; ++k) end = AppendInt(end, conversion->GetImp(k));
    end = ConcatDoubleValue(end, conversion->GetImpReal(1), fmtLineare);
    end = ConcatDoubleValue(end, conversion->GetImpReal(2), fmtLineare);
    end = AppendInt(end, conversion->GetImpFlag() ? 1 : 0);
    for (int k = 6; k <= 10; ++k) end = AppendInt(end, conversion->GetImp(k));

    end = AppendInt(end, conversion->GetTpDtBaseGps());
    end = ConcatDatumConv(end, conversion->GetConvDtBaseGps());
    end = ConcatDatumConv(end, SelectedDatum(*conversion));
    end = AppendInt(end, map ? map->GetTpDtBaseGps() : 0);
    end = ConcatDatumConv(end, map ? map->GetConvDtBaseGps() : nullptr);

    const CConvLocal& local = *conversion->GetConvLocal();
    double p[5] = {};
    local.GetDatiProiezPlaEx(p[0], p[1], p[2], p[3], p[4]);
    end = AppendInt(end, local.GetTpProiezPla());
    for (int k = 0; k < 5; ++k) end = ConcatDoubleValue(end, p[k], k < 2 ? fmtAngolo : fmtLineare);

    // Intended: the origin travels as latitude and longitude, its local counterpart as it is.
    double o[4] = {}, lat = 0, lon = 0;
    local.GetOrigin(o[0], o[1], o[2], o[3]);
    local.GetCoordGraf(o[0], o[1], lat, lon);
    end = ConcatDoubleValue(end, lat, fmtAngolo);
    end = ConcatDoubleValue(end, lon, fmtAngolo);
    end = ConcatDoubleValue(end, o[2], fmtLineare);
    end = ConcatDoubleValue(end, o[3], fmtLineare);
    end = ConcatDoubleValue(end, local.GetScala(), fmtFattore);
    end = ConcatDoubleValue(end, local.GetAngRot(), fmtFattore);

    const CConvAltez& height = *conversion->GetConvAltez();
    double h[5] = {}, c[3] = {};
    height.GetDatiProiezPlaEx(h[0], h[1], h[2], h[3], h[4]);
    height.GetCoeff(c[0], c[1], c[2]);
    end = AppendInt(end, height.GetTpProiezPla());
    end = AppendInt(end, height.GetTpCalcPt());
    for (int k = 0; k < 5; ++k) end = ConcatDoubleValue(end, h[k], k < 2 ? fmtAngolo : fmtLineare);
    for (const double coefficient : c) end = ConcatDoubleValue(end, coefficient, fmtLineare);
    return end;
}

void CGpsBaseCloudTable::SetDatumConv(CDatumConv* datum, const TDatumConvValues& values) {
    if (!datum) return;
    const double(&c)[7] = values.Coeff;
    datum->SetNome(std::string(values.Nome.View()));
    if (values.FromStd)
        datum->SetCoeffFromStd(c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
    else
        datum->SetCoeffToStd(c[0], c[1], c[2], c[3], c[4], c[5], c[6]);
    datum->SetGrafOrigine(values.GrafOrigine[0], values.GrafOrigine[1]);
}

void CGpsBaseCloudTable::SetConvCoord(CConvCoord* conversion, const TConvCoordValues& v) {
    const int s[] = {v.S1, v.S2, v.S3, v.S4, v.S5, v.S6, v.S7, v.S8, v.S9, v.S10};
    for (int k = 1; k <= 5; ++k) conversion->SetImp(k, s[k - 1]);
    conversion->SetImpReal(1, v.R1);
    conversion->SetImpReal(2, v.R2);
    conversion->SetImpFlag(v.B);
    for (int k = 6; k <= 10; ++k) conversion->SetImp(k, s[k - 1]);

    conversion->SetTpDtBaseGps(v.TpDtBaseGps);
    SetDatumConv(conversion->GetConvDtBaseGps(), v.DtBaseGps);
    // Intended: the map library is that of all groups. The server holds it once for the project.
    if (CLibMap* map = conversion->GetLibMap()) {
        for (long long n = map->GetDatArSize(v.S3, v.S4); n <= v.S5; ++n)
            if (!map->AddDat(v.S3, v.S4)) break;  // no such list, or as many as it takes: S5 may be anything
        SetDatumConv(map->GetDatAt(v.S3, v.S4, v.S5), v.MapDatum);
        map->SetTpDtBaseGps(v.MapTpDtBaseGps);
        SetDatumConv(map->GetConvDtBaseGps(), v.MapDtBaseGps);
    }

    // The settings stand before the projection, whose ellipsoid they name, and it before its origin.
    CConvLocal& local = *conversion->GetConvLocal();
    const double(&c)[6] = v.CoeffLatLon;
    local.SetTpProiezPlaEx(v.TpProiezPla, v.P[0], v.P[1], v.P[2], v.P[3], v.P[4]);
    local.SetCoeffLatLon(c[0], c[1], c[2], c[3], c[4], c[5]);
    CConvAltez& height = *conversion->GetConvAltez();
    height.SetTpCalcPt(v.TpCalcPt);
    height.SetTpProiezPlaEx(v.AltezTpProiezPla, v.H[0], v.H[1], v.H[2], v.H[3], v.H[4]);
    height.SetCoeff(v.MinQua[0], v.MinQua[1], v.MinQua[2]);
}
