// COpzDisPunGps: how GPS points are drawn.
#pragma once

#include "gps/GpsExport.h"
#include "platform/entity/COpzDisEgn.h"

/// Defaults: colours 5, symbol type 3, line widths 0. Visibility is the base's: its default is kept, and it
/// is not read from the settings. The settings of a GIS may take the place of these.
class GPS_API COpzDisPunGps : public COpzDisEgn {
public:
    /// Values of the base until RisettaOpz or GetDaIni is called.
    explicit COpzDisPunGps(const char* section);
    COpzDisPunGps(const COpzDisPunGps&) = default;
    COpzDisPunGps& operator=(const COpzDisPunGps&) = default;
    ~COpzDisPunGps() override;

    COpzDisEgn* Clone() const override;
    bool IsAllowUseGisSettings() const override;
    void doRisettaOpz() override;
    void doGetDaIni() override;
};
