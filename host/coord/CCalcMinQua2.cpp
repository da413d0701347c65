#include "platform/coord/CCalcMinQua2.h"

#include <cmath>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

void CCalcMinQua2::GetCoeff(double& c1, double& c2, double& c3) const {
    c1 = c1_;
    c2 = c2_;
    c3 = c3_;
}

void CCalcMinQua2::SetCoeff(double c1, double c2, double c3) {
    bool changed = Store(c1_, c1);
    changed = Store(c2_, c2) || changed;
    changed = Store(c3_, c3) || changed;
    if (changed) Changed();
}

bool CCalcMinQua2::CalcolaDaPunti(const std::vector<PuntoQuota>& punti, std::vector<double>* residui) {
    if (punti.size() < 3) return false;
    // About the centre of gravity: plane coordinates are millions of metres, their squares would leave few
    // digits for the slopes.
    const auto n = static_cast<double>(punti.size());
    double xm = 0, ym = 0, dm = 0;
    for (const PuntoQuota& p : punti) {
        for (const double v : {p.x, p.y, p.dh})
            if (!IsCoordValid(v) || !std::isfinite(v)) return false;
        xm += p.x / n;
        ym += p.y / n;
        dm += p.dh / n;
    }
    double xx = 0, xy = 0, yy = 0, xd = 0, yd = 0;
    for (const PuntoQuota& p : punti) {
        const double x = p.x - xm, y = p.y - ym, d = p.dh - dm;
        xx += x * x;
        xy += x * y;
        yy += y * y;
        xd += x * d;
        yd += y * d;
    }
    const double det = xx * yy - xy * xy;
    if (!(det > 1e-12 * (xx + yy) * (xx + yy))) return false;  // on one line, or in one place
    const double c2 = (xd * yy - yd * xy) / det, c3 = (yd * xx - xd * xy) / det;
    SetCoeff(dm - c2 * xm - c3 * ym, c2, c3);
    if (residui) {
        residui->clear();
        for (const PuntoQuota& p : punti) residui->push_back(p.dh - GetDifferenza(p.x, p.y));
    }
    return true;
}

void CCalcMinQua2::SalvaInFile(ofpstream& out) const {
    for (const double c : {c1_, c2_, c3_}) out.WriteDouble(c);
}

void CCalcMinQua2::LeggeDaFile(ifpstream& in) {
    for (double* c : {&c1_, &c2_, &c3_}) *c = in.ReadDouble();
    Assigned();
}
