// CCalcMinQua2: a plane through heights, by least squares.
#pragma once

#include <vector>

#include "platform/base/GpsValues.h"
#include "platform/base/streams.h"
#include "platform/coord/CConvPart.h"

/// A surface of height differences over the plane, c1 + c2 x + c3 y: c1 in metres, c2 and c3 in metres per
/// metre, x and y metres. The difference is ellipsoidal height minus height: H = h - (c1 + c2 x + c3 y).
class GPS_PLATFORM_API CCalcMinQua2 : public CConvPart {
public:
    /// A control point: position in the plane (metres) and ellipsoidal height minus height there (metres).
    struct PuntoQuota {
        double x, y, dh;
    };

    void GetCoeff(double& c1, double& c2, double& c3) const;
    void SetCoeff(double c1, double c2, double c3);

    /// Metres at a position in the plane (metres).
    double GetDifferenza(double x, double y) const { return c1_ + c2_ * x + c3_ * y; }

    /// Fits the three coefficients by least squares; `residui` (may be null) gets dh minus the surface per
    /// point, metres. Returns false, changing nothing, with fewer than three points, points on one line, or a
    /// value that is not set.
    bool CalcolaDaPunti(const std::vector<PuntoQuota>& punti, std::vector<double>* residui);

    /// Its part of a record in a project stream; see docs/formats/records.md. Reading reports nothing.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

protected:
    ~CCalcMinQua2() = default;  // lives as a part of CConvAltez

private:
    double c1_ = 0;  // metres
    double c2_ = 0;  // metres per metre
    double c3_ = 0;  // metres per metre
};
