// CMotoreConv: stands in for the computations of a conversion.
#pragma once

#include "platform/base/PlatformExport.h"

/// The computations of CConvCoord as an interface of their own, so that a test can script results, failures
/// and exceptions of a conversion, and a host can route it elsewhere. Units and contracts are those of the
/// operations of the same names in CConvCoord; exceptions pass through to the caller.
class GPS_PLATFORM_API CMotoreConv {
public:
    virtual ~CMotoreConv() = default;

    virtual bool GrafBaseToGrafWgs(double lat, double lon, double h, double& latW, double& lonW,
                                   double& hW) = 0;
    virtual bool GeocBaseToGeocWgs(double x, double y, double z, double& xW, double& yW, double& zW) = 0;
    virtual bool GrafGpsToPlanAtt(double lat, double lon, double h, double altAnt, double& east,
                                  double& north, double& height) = 0;
    virtual bool PlanAttToGrafGps(double east, double north, double height, double altAnt, double& lat,
                                  double& lon, double& h) = 0;

    /// Told of CConvCoord::ShowMessage.
    virtual void ShowMessage(bool) {}
};
