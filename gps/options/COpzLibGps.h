// COpzLibGps: options of a GPS field book.
#pragma once

#include "gps/GpsExport.h"
#include "platform/base/streams.h"

/// One setting of the user's, CalcLibCmp, and values that travel with the project only. What they mean is
/// the host's business. Making one reads the setting; copying does not.
class GPS_API COpzLibGps {
public:
    COpzLibGps();
    COpzLibGps(const COpzLibGps&) = default;
    ~COpzLibGps() = default;

    /// Copies all five, OpzFlagC too, although no record holds it. Intended.
    COpzLibGps& operator=(const COpzLibGps&) = default;

    /// Settings: section "OPZ-GPS-VAR", key "CalcLibCmp", true when there is none.
    void GetDaIni();
    void SetInIni();

    /// The record is the same in every version: 14 bytes.
    void SalvaInFile(ofpstream& out, short version) const;

    /// Takes the whole record; the values change only with `load`. The settings never do.
    void LeggeDaFile(ifpstream& in, bool load, short version);

    short OpzValore = 0;
    bool CalcLibCmp = true;
    bool OpzFlagA = false;
    bool OpzFlagB = false;
    bool OpzFlagC = false;
};
