// CConvLocal: the plane part of a conversion, projection and local roto-translation.
#pragma once

#include <string>

#include "platform/coord/CConvRotoTras.h"
#include "platform/coord/CProiezPla.h"

/// One object that is both the plane projection and the roto-translation that follows it.
/// The ellipsoid of the projection is set by the conversion that holds this part; an assignment leaves it
/// alone.
class GPS_PLATFORM_API CConvLocal : public CConvRotoTras {
public:
    CConvLocal() = default;
    CConvLocal(const CConvLocal&) = default;
    CConvLocal& operator=(const CConvLocal& other);
    ~CConvLocal() = default;

    /// See CProiezPla for types and the meaning of the five values.
    int GetTpProiezPla() const { return proiez_.GetType(); }
    void GetDatiProiezPlaEx(double& p1, double& p2, double& p3, double& p4, double& p5) const;
    void SetTpProiezPlaEx(int type, double p1, double p2, double p3, double p4, double p5);

    /// As CProiezPla::SetLambert2SP and CProiezPla::SetDefinizione.
    bool SetLambert2SP(double lat0, double lon0, double lat1, double lat2, double fe, double fn);
    bool SetDefinizione(const std::string& definition, std::string& why);

    const CProiezPla& GetProiezPla() const { return proiez_; }

    /// Plane coordinates of the projection (metres) to latitude and longitude (degrees). On error or with an
    /// unset value: false, both outputs unset.
    bool GetCoordGraf(double o1, double o2, double& g1, double& g2) const;

    /// The six local values with the projection's origin as latitude g1 and longitude g2 (degrees); the
    /// projection must be set before. Unset or inconvertible g1, g2 make o1, o2 unset.
    void SetCoeffLatLon(double g1, double g2, double o3, double o4, double scala, double angRot);

    /// Its part of a record in a project stream; see docs/formats/records.md. Reading reports nothing.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

private:
    friend class CConvCoord;  // whose settings name the ellipsoid, and which reports their changes

    /// Semi-major axis (metres) and inverse flattening of the projection.
    void SetEllissoide(double a, double invFlattening) { proiez_.SetEllissoide(a, invFlattening); }

    CProiezPla proiez_;
};
