// CConvRotoTras: rotation, scale and translation in the plane, about an origin.
#pragma once

#include <vector>

#include "platform/base/GpsValues.h"
#include "platform/base/streams.h"
#include "platform/coord/CConvPart.h"

/// Brings coordinates (x, y) of the projection to local ones (X, Y):
///
///     X = o3 + s ( cos a (x - o1) - sin a (y - o2) )
///     Y = o4 + s ( sin a (x - o1) + cos a (y - o2) )
///
/// with the origin o1, o2 in the projection, o3, o4 in the local system (metres), the scale s (dimensionless)
/// and the angle a in degrees, counter-clockwise positive. While one of the six is unset (as in a new object,
/// whose six are all unset) the step is the identity.
class GPS_PLATFORM_API CConvRotoTras : public CConvPart {
public:
    /// A control point: x, y in the projection, xLoc, yLoc in the local system, metres.
    struct PuntoDoppio {
        double x, y, xLoc, yLoc;
    };

    /// Metres: local minus computed, per control point, and the root mean square of their lengths.
    struct Residui {
        std::vector<double> dx, dy;
        double rms = GPS_VAL_UNSET;
    };

    void GetOrigin(double& o1, double& o2, double& o3, double& o4) const;
    double GetScala() const { return scala_; }    // dimensionless
    double GetAngRot() const { return angRot_; }  // degrees, counter-clockwise

    /// All six at once: metres, dimensionless, degrees.
    void SetRotoTras(double o1, double o2, double o3, double o4, double scala, double angRot);

    /// True when all six values are set and the scale is not 0.
    bool IsRotoTrasSet() const { return set_; }

    /// Metres, in place. The identity while IsRotoTrasSet is false.
    void ToLocal(double& x, double& y) const {
        if (!set_) return;
        const double dx = x - o1_, dy = y - o2_;
        x = o3_ + sc_ * dx - ss_ * dy;
        y = o4_ + ss_ * dx + sc_ * dy;
    }
    void FromLocal(double& x, double& y) const;

    /// Fits the six values to control points by least squares (similarity transformation; with `fixedScale`
    /// the scale is 1). The origin is the centre of gravity. Returns false, changing nothing, with fewer than
    /// two different points or a value that is not set. `residui` may be null.
    bool CalcolaDaPunti(const std::vector<PuntoDoppio>& punti, bool fixedScale, Residui* residui);

    /// Its part of a record in a project stream; see docs/formats/records.md. Reading reports nothing.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

protected:
    ~CConvRotoTras() = default;  // lives as a part of CConvLocal

    /// Stores the six values; true when one of them differs.
    bool StoreRotoTras(double o1, double o2, double o3, double o4, double scala, double angRot);

private:
    void Prepare();

    double o1_ = GPS_VAL_UNSET, o2_ = GPS_VAL_UNSET;  // metres
    double o3_ = GPS_VAL_UNSET, o4_ = GPS_VAL_UNSET;  // metres
    double scala_ = GPS_VAL_UNSET;                    // dimensionless
    double angRot_ = GPS_VAL_UNSET;                   // degrees
    bool set_ = false;
    double sc_ = 1, ss_ = 0;  // scale times cosine and sine of the angle
};
