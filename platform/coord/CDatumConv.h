// CDatumConv: seven parameters between a datum and the standard datum, WGS 84.
#pragma once

#include <array>
#include <string>

#include "platform/base/streams.h"
#include "platform/coord/CConvPart.h"

/// A similarity in space with seven parameters c1 to c7: translation tx, ty, tz in metres, rotations
/// rx, ry, rz in arc seconds, scale difference s in parts per million, position vector convention, linear in
/// the rotations as such parameters are published:
///
///     X' = t + (1 + s 1e-6) R X,   R = |  1  -rz   ry |
///                                      |  rz   1  -rx |
///                                      | -ry  rx    1 |
///
/// The other direction is the exact inverse of that matrix, not the parameters with their signs changed,
/// which would miss by millimetres.
///
/// Direction: coefficients "from standard" convert WGS 84 to the datum, "to standard" the datum to WGS 84.
/// All zero is the identity.
class GPS_PLATFORM_API CDatumConv : public CConvPart {
public:
    CDatumConv();
    CDatumConv(const CDatumConv&) = default;
    CDatumConv& operator=(const CDatumConv&) = default;
    ~CDatumConv() = default;

    const std::string& GetNome() const { return nome_; }
    void SetNome(const std::string& nome);

    /// `fromStd` is true when the coefficients convert from WGS 84. c1 to c3 metres, c4 to c6 arc seconds,
    /// c7 parts per million.
    void GetCoeff(bool& fromStd, double& c1, double& c2, double& c3, double& c4, double& c5, double& c6,
                  double& c7) const;

    /// Coefficients that convert WGS 84 to this datum; units as above.
    void SetCoeffFromStd(double c1, double c2, double c3, double c4, double c5, double c6, double c7);

    /// Coefficients that convert this datum to WGS 84; units as above.
    void SetCoeffToStd(double c1, double c2, double c3, double c4, double c5, double c6, double c7);

    /// Where the parameters were determined: latitude and longitude in degrees, unset by default. For
    /// people; no computation uses it.
    void GetGrafOrigine(double& lat, double& lon) const;
    void SetGrafOrigine(double lat, double lon);

    bool IsIdentity() const { return identity_; }

    /// Geocentric, metres: this datum to WGS 84. False, with unset outputs, when a value is not set or the
    /// coefficients have no inverse.
    bool ToStd(double x, double y, double z, double& xs, double& ys, double& zs) const;

    /// Geocentric, metres: WGS 84 to this datum. On error: as ToStd.
    bool FromStd(double x, double y, double z, double& xd, double& yd, double& zd) const;

    /// Its part of a record in a project stream; see docs/formats/records.md. Reading reports nothing.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

    /// Same name, direction, coefficients and origin.
    friend bool operator==(const CDatumConv& a, const CDatumConv& b);

private:
    /// An affine map: rows of {m1, m2, m3, t}.
    using Map = std::array<std::array<double, 4>, 3>;

    void SetCoeff(bool fromStd, const std::array<double, 7>& c);
    void Prepare();
    static bool Apply(const Map& map, double x, double y, double z, double& xo, double& yo, double& zo);

    std::string nome_;
    bool fromStd_ = false;
    std::array<double, 7> c_{};      // metres, arc seconds, ppm
    std::array<double, 2> origine_;  // degrees
    bool identity_ = true;
    Map toStd_{};
    Map toDatum_{};
};
