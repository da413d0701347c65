#include "platform/coord/CConvAltez.h"

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

void CConvAltez::SetTpCalcPt(int type) {
    if (Store(tpCalc_, type)) Changed();
}

void CConvAltez::GetDatiProiezPlaEx(double& h1, double& h2, double& h3, double& h4, double& h5) const {
    const CProiezPla::Values& h = proiez_.GetValues();
    h1 = h[0];
    h2 = h[1];
    h3 = h[2];
    h4 = h[3];
    h5 = h[4];
}

void CConvAltez::SetTpProiezPlaEx(int type, double h1, double h2, double h3, double h4, double h5) {
    if (proiez_.Set(type, {h1, h2, h3, h4, h5})) Changed();
}

bool CConvAltez::GetDifferenzaAt(double lat, double lon, double x, double y, double& dh) const {
    dh = 0;
    switch (tpCalc_) {
        case tpNessuno:
            return true;
        case tpCostante: {
            double c2 = 0, c3 = 0;
            GetCoeff(dh, c2, c3);
            return true;
        }
        case tpPiano:
            break;
        default:
            return false;
    }
    if (proiez_.GetType() != TpProiezPla::nessuna) {
        double z = 0;
        if (!proiez_.GrafToPlan(lat, lon, 0, x, y, z)) return false;
    }
    dh = GetDifferenza(x, y);
    return true;
}

void CConvAltez::SalvaInFile(ofpstream& out) const {
    out.WriteInt(tpCalc_);
    CCalcMinQua2::SalvaInFile(out);
    proiez_.SalvaInFile(out);
}

void CConvAltez::LeggeDaFile(ifpstream& in) {
    tpCalc_ = in.ReadInt();
    CCalcMinQua2::LeggeDaFile(in);
    proiez_.LeggeDaFile(in);
    Assigned();
}
