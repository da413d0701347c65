#include "platform/coord/CConvRotoTras.h"

#include <cmath>

#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

constexpr double kRad = 3.14159265358979323846 / 180.0;

bool AllSet(const CConvRotoTras::PuntoDoppio& p) {
    for (const double v : {p.x, p.y, p.xLoc, p.yLoc})
        if (!IsCoordValid(v) || !std::isfinite(v)) return false;
    return true;
}

}  // namespace

void CConvRotoTras::GetOrigin(double& o1, double& o2, double& o3, double& o4) const {
    o1 = o1_;
    o2 = o2_;
    o3 = o3_;
    o4 = o4_;
}

void CConvRotoTras::SetRotoTras(double o1, double o2, double o3, double o4, double scala, double angRot) {
    if (StoreRotoTras(o1, o2, o3, o4, scala, angRot)) Changed();
}

bool CConvRotoTras::StoreRotoTras(double o1, double o2, double o3, double o4, double scala, double angRot) {
    bool changed = Store(o1_, o1);
    changed = Store(o2_, o2) || changed;
    changed = Store(o3_, o3) || changed;
    changed = Store(o4_, o4) || changed;
    changed = Store(scala_, scala) || changed;
    changed = Store(angRot_, angRot) || changed;
    if (changed) Prepare();
    return changed;
}

void CConvRotoTras::Prepare() {
    set_ = scala_ != 0;
    for (const double v : {o1_, o2_, o3_, o4_, scala_, angRot_})
        set_ = set_ && IsCoordValid(v) && std::isfinite(v);
    sc_ = set_ ? scala_ * std::cos(angRot_ * kRad) : 1;
    ss_ = set_ ? scala_ * std::sin(angRot_ * kRad) : 0;
}

void CConvRotoTras::FromLocal(double& x, double& y) const {
    if (!set_) return;
    const double dx = x - o3_, dy = y - o4_;
    const double s2 = sc_ * sc_ + ss_ * ss_;
    x = o1_ + (sc_ * dx + ss_ * dy) / s2;
    y = o2_ + (sc_ * dy - ss_ * dx) / s2;
}

bool CConvRotoTras::CalcolaDaPunti(const std::vector<PuntoDoppio>& punti, bool fixedScale, Residui* residui) {
    const auto n = static_cast<double>(punti.size());
    double o1 = 0, o2 = 0, o3 = 0, o4 = 0;
    for (const PuntoDoppio& p : punti) {
        if (!AllSet(p)) return false;
        o1 += p.x / n;
        o2 += p.y / n;
        o3 += p.xLoc / n;
        o4 += p.yLoc / n;
    }
    double sum = 0, c = 0, s = 0;
    for (const PuntoDoppio& p : punti) {
        const double dx = p.x - o1, dy = p.y - o2, dX = p.xLoc - o3, dY = p.yLoc - o4;
        sum += dx * dx + dy * dy;
        c += dx * dX + dy * dY;
        s += dx * dY - dy * dX;
    }
    const double length = std::hypot(c, s);
    if (punti.size() < 2 || !(sum > 1e-12) || !(length > 1e-12)) return false;  // all points in one place

    SetRotoTras(o1, o2, o3, o4, fixedScale ? 1.0 : length / sum, std::atan2(s, c) / kRad);
    if (residui) {
        *residui = {};
        double square = 0;
        for (const PuntoDoppio& p : punti) {
            double x = p.x, y = p.y;
            ToLocal(x, y);
            residui->dx.push_back(p.xLoc - x);
            residui->dy.push_back(p.yLoc - y);
            square += (p.xLoc - x) * (p.xLoc - x) + (p.yLoc - y) * (p.yLoc - y);
        }
        residui->rms = std::sqrt(square / n);
    }
    return true;
}

void CConvRotoTras::SalvaInFile(ofpstream& out) const {
    for (const double value : {o1_, o2_, o3_, o4_, scala_, angRot_}) out.WriteDouble(value);
}

void CConvRotoTras::LeggeDaFile(ifpstream& in) {
    for (double* value : {&o1_, &o2_, &o3_, &o4_, &scala_, &angRot_}) *value = in.ReadDouble();
    Prepare();
    Assigned();
}
