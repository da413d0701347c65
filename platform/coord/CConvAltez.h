// CConvAltez: the height part of a conversion.
#pragma once

#include "platform/coord/CCalcMinQua2.h"
#include "platform/coord/CProiezPla.h"

/// How the height of the ground mark follows from its ellipsoidal height h (metres):
///   tpNessuno: H = h.
///   tpCostante: H = h - c1.
///   tpPiano: H = h - (c1 + c2 x + c3 y), the plane of CCalcMinQua2.
/// x and y (metres) are coordinates of this part's own projection when it has one (types and values as
/// CProiezPla), from WGS 84; else those of the conversion's projection before its roto-translation.
class GPS_PLATFORM_API CConvAltez : public CCalcMinQua2 {
public:
    enum : int { tpNessuno = 0, tpCostante = 1, tpPiano = 2 };

    CConvAltez() = default;
    CConvAltez(const CConvAltez&) = default;
    CConvAltez& operator=(const CConvAltez&) = default;
    ~CConvAltez() = default;

    int GetTpCalcPt() const { return tpCalc_; }
    void SetTpCalcPt(int type);

    int GetTpProiezPla() const { return proiez_.GetType(); }
    void GetDatiProiezPlaEx(double& h1, double& h2, double& h3, double& h4, double& h5) const;
    void SetTpProiezPlaEx(int type, double h1, double h2, double h3, double h4, double h5);

    const CProiezPla& GetProiezPla() const { return proiez_; }

    /// Ellipsoidal height minus height (metres) at WGS 84 latitude and longitude (degrees) and projection
    /// coordinates x, y (metres). False for an unknown type or a position that has none.
    bool GetDifferenzaAt(double lat, double lon, double x, double y, double& dh) const;

    /// Its part of a record in a project stream; see docs/formats/records.md. Reading reports nothing.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

private:
    int tpCalc_ = tpNessuno;
    CProiezPla proiez_;
};
