#include "platform/coord/CConvLocal.h"

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

CConvLocal& CConvLocal::operator=(const CConvLocal& other) {
    if (this == &other) return *this;
    CConvRotoTras::operator=(other);
    double a = 0, rf = 0;
    proiez_.GetEllissoide(a, rf);
    proiez_ = other.proiez_;
    proiez_.SetEllissoide(a, rf);
    return *this;
}

void CConvLocal::GetDatiProiezPlaEx(double& p1, double& p2, double& p3, double& p4, double& p5) const {
    const CProiezPla::Values& p = proiez_.GetValues();
    p1 = p[0];
    p2 = p[1];
    p3 = p[2];
    p4 = p[3];
    p5 = p[4];
}

void CConvLocal::SetTpProiezPlaEx(int type, double p1, double p2, double p3, double p4, double p5) {
    if (proiez_.Set(type, {p1, p2, p3, p4, p5})) Changed();
}

bool CConvLocal::SetLambert2SP(double lat0, double lon0, double lat1, double lat2, double fe, double fn) {
    CProiezPla wanted(proiez_);
    if (!wanted.SetLambert2SP(lat0, lon0, lat1, lat2, fe, fn)) return false;
    if (proiez_.Set(wanted.GetType(), wanted.GetValues())) Changed();
    return true;
}

bool CConvLocal::SetDefinizione(const std::string& definition, std::string& why) {
    CProiezPla wanted(proiez_);
    if (!wanted.SetDefinizione(definition, why)) return false;
    const bool same =
        wanted.GetType() == proiez_.GetType() && wanted.GetDefinizione() == proiez_.GetDefinizione();
    if (same) return true;
    proiez_ = wanted;
    Changed();
    return true;
}

bool CConvLocal::GetCoordGraf(double o1, double o2, double& g1, double& g2) const {
    double h = 0;
    return proiez_.PlanToGraf(o1, o2, 0, g1, g2, h);
}

void CConvLocal::SetCoeffLatLon(double g1, double g2, double o3, double o4, double scala, double angRot) {
    double o1 = 0, o2 = 0, h = 0;
    proiez_.GrafToPlan(g1, g2, 0, o1, o2, h);
    SetRotoTras(o1, o2, o3, o4, scala, angRot);
}

void CConvLocal::SalvaInFile(ofpstream& out) const {
    proiez_.SalvaInFile(out);
    CConvRotoTras::SalvaInFile(out);
}

void CConvLocal::LeggeDaFile(ifpstream& in) {
    proiez_.LeggeDaFile(in);
    CConvRotoTras::LeggeDaFile(in);
}
