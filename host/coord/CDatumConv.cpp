#include "platform/coord/CDatumConv.h"

#include <cmath>
#include <limits>

#include "platform/base/GpsValues.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

constexpr double kArcSecond = 3.14159265358979323846 / (180.0 * 3600.0);  // radians

// A map whose every result is NaN, which Apply answers with false.
std::array<std::array<double, 4>, 3> NoResult() {
    std::array<std::array<double, 4>, 3> map;
    for (auto& row : map) row.fill(std::numeric_limits<double>::quiet_NaN());
    return map;
}

}  // namespace

CDatumConv::CDatumConv() : origine_{GPS_VAL_UNSET, GPS_VAL_UNSET} { Prepare(); }

void CDatumConv::SetNome(const std::string& nome) {
    if (Store(nome_, nome)) Changed();
}

void CDatumConv::GetCoeff(bool& fromStd, double& c1, double& c2, double& c3, double& c4, double& c5,
                          double& c6, double& c7) const {
    fromStd = fromStd_;
    c1 = c_[0];
    c2 = c_[1];
    c3 = c_[2];
    c4 = c_[3];
    c5 = c_[4];
    c6 = c_[5];
    c7 = c_[6];
}

void CDatumConv::SetCoeffFromStd(double c1, double c2, double c3, double c4, double c5, double c6,
                                 double c7) {
    SetCoeff(true, {c1, c2, c3, c4, c5, c6, c7});
}

void CDatumConv::SetCoeffToStd(double c1, double c2, double c3, double c4, double c5, double c6, double c7) {
    SetCoeff(false, {c1, c2, c3, c4, c5, c6, c7});
}

void CDatumConv::GetGrafOrigine(double& lat, double& lon) const {
    lat = origine_[0];
    lon = origine_[1];
}

void CDatumConv::SetGrafOrigine(double lat, double lon) {
    bool changed = Store(origine_[0], lat);
    changed = Store(origine_[1], lon) || changed;
    if (changed) Changed();
}

void CDatumConv::SetCoeff(bool fromStd, const std::array<double, 7>& c) {
    bool changed = Store(fromStd_, fromStd);
    for (std::size_t i = 0; i < c.size(); ++i) changed = Store(c_[i], c[i]) || changed;
    if (!changed) return;
    Prepare();
    Changed();
}

void CDatumConv::Prepare() {
    identity_ = true;
    for (const double c : c_) identity_ = identity_ && c == 0;

    const double k = 1 + c_[6] * 1e-6;
    const double rx = c_[3] * kArcSecond, ry = c_[4] * kArcSecond, rz = c_[5] * kArcSecond;
    const double m[3][3] = {{k, -k * rz, k * ry}, {k * rz, k, -k * rx}, {-k * ry, k * rx, k}};

    Map& direct = fromStd_ ? toDatum_ : toStd_;
    Map& inverse = fromStd_ ? toStd_ : toDatum_;
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            direct[i][j] = m[i][j];
            const std::size_t a = (j + 1) % 3, b = (j + 2) % 3, c = (i + 1) % 3, d = (i + 2) % 3;
            inverse[i][j] = (m[a][c] * m[b][d] - m[a][d] * m[b][c]) / det;  // cofactor, transposed
        }
        direct[i][3] = c_[i];
    }
    for (auto& row : inverse) row[3] = -(row[0] * c_[0] + row[1] * c_[1] + row[2] * c_[2]);

    // A coefficient that is not set must not pass for a number, not even as a translation of that length.
    for (const double c : c_)
        if (!IsCoordValid(c) || !std::isfinite(c)) direct = inverse = NoResult();
}

bool CDatumConv::Apply(const Map& map, double x, double y, double z, double& xo, double& yo, double& zo) {
    const double a = map[0][0] * x + map[0][1] * y + map[0][2] * z + map[0][3];
    const double b = map[1][0] * x + map[1][1] * y + map[1][2] * z + map[1][3];
    const double c = map[2][0] * x + map[2][1] * y + map[2][2] * z + map[2][3];
    const bool ok = IsCoordValid(x) && IsCoordValid(y) && IsCoordValid(z) && std::isfinite(a) &&
                    std::isfinite(b) && std::isfinite(c);
    xo = ok ? a : GPS_VAL_UNSET;
    yo = ok ? b : GPS_VAL_UNSET;
    zo = ok ? c : GPS_VAL_UNSET;
    return ok;
}

bool CDatumConv::ToStd(double x, double y, double z, double& xs, double& ys, double& zs) const {
    return Apply(toStd_, x, y, z, xs, ys, zs);
}

bool CDatumConv::FromStd(double x, double y, double z, double& xd, double& yd, double& zd) const {
    return Apply(toDatum_, x, y, z, xd, yd, zd);
}

GPS_PLATFORM_API bool operator==(const CDatumConv& a, const CDatumConv& b) {
    return a.nome_ == b.nome_ && a.fromStd_ == b.fromStd_ && a.c_ == b.c_ && a.origine_ == b.origine_;
}

void CDatumConv::SalvaInFile(ofpstream& out) const {
    out.WriteString(nome_);
    out.WriteUChar(fromStd_ ? 1 : 0);
    for (const double c : c_) out.WriteDouble(c);
    for (const double o : origine_) out.WriteDouble(o);
}

void CDatumConv::LeggeDaFile(ifpstream& in) {
    in.ReadString(nome_);
    fromStd_ = in.ReadUChar() != 0;
    for (double& c : c_) c = in.ReadDouble();
    for (double& o : origine_) o = in.ReadDouble();
    Prepare();
    Assigned();
}
