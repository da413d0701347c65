#include "apps/gpsbook/readers/LocalFrame.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace gpsbook {

namespace {

using Matrix = std::array<Vector3, 3>;

Matrix Transposed(const Matrix& m) {
    Matrix t{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) t[i][j] = m[j][i];
    }
    return t;
}

// M C M', of which the upper triangle is kept.
Covariance Rotated(const Matrix& m, const Covariance& cov) {
    const Matrix c{{{cov[0], cov[3], cov[4]}, {cov[3], cov[1], cov[5]}, {cov[4], cov[5], cov[2]}}};
    Matrix mc{};
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            mc[i][j] = m[i][0] * c[0][j] + m[i][1] * c[1][j] + m[i][2] * c[2][j];
        }
    }
    const auto element = [&](std::size_t i, std::size_t j) {
        return mc[i][0] * m[j][0] + mc[i][1] * m[j][1] + mc[i][2] * m[j][2];
    };
    return {element(0, 0), element(1, 1), element(2, 2), element(0, 1), element(0, 2), element(1, 2)};
}

}  // namespace

LocalFrame::LocalFrame(double lat, double lon) {
    const double b = lat * std::numbers::pi / 180.0;
    const double l = lon * std::numbers::pi / 180.0;
    const double sb = std::sin(b);
    const double cb = std::cos(b);
    const double sl = std::sin(l);
    const double cl = std::cos(l);
    r_ = {{{-sl, -sb * cl, cb * cl}, {cl, -sb * sl, cb * sl}, {0.0, cb, sb}}};
}

Vector3 LocalFrame::ToGeocentric(const Vector3& enu) const {
    Vector3 xyz{};
    for (std::size_t i = 0; i < 3; ++i) {
        xyz[i] = r_[i][0] * enu[0] + r_[i][1] * enu[1] + r_[i][2] * enu[2];
    }
    return xyz;
}

Covariance LocalFrame::CovToGeocentric(const Covariance& enu) const { return Rotated(r_, enu); }

Covariance LocalFrame::CovToLocal(const Covariance& xyz) const { return Rotated(Transposed(r_), xyz); }

double HorizontalRms(const Covariance& enu) { return std::sqrt(std::max(0.0, enu[0] + enu[1])); }

double VerticalRms(const Covariance& enu) { return std::sqrt(std::max(0.0, enu[2])); }

}  // namespace gpsbook
