// COpzDisGrpGps: how GPS bases, the groups of the field book, are drawn.
#pragma once

#include "gps/GpsExport.h"
#include "platform/entity/COpzDisEgn.h"

/// Defaults: visible (1), colours 4, symbol type 6, line widths 0.
class GPS_API COpzDisGrpGps : public COpzDisEgn {
public:
    /// Values of the base until RisettaOpz or GetDaIni is called.
    explicit COpzDisGrpGps(const char* section);
    COpzDisGrpGps(const COpzDisGrpGps&) = default;
    COpzDisGrpGps& operator=(const COpzDisGrpGps&) = default;
    ~COpzDisGrpGps() override;

    COpzDisEgn* Clone() const override;
    void doRisettaOpz() override;
    void doGetDaIni() override;
};
