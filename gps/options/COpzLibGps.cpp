#include "gps/options/COpzLibGps.h"

#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

namespace {

constexpr const char* kSection = "OPZ-GPS-VAR";
constexpr const char* kCalcLibCmp = "CalcLibCmp";

}  // namespace

COpzLibGps::COpzLibGps() { GetDaIni(); }

void COpzLibGps::GetDaIni() { CalcLibCmp = CIniFile().GetBool(kSection, kCalcLibCmp, true); }

void COpzLibGps::SetInIni() { CIniFile().WriteBool(kSection, kCalcLibCmp, CalcLibCmp); }

void COpzLibGps::SalvaInFile(ofpstream& out, short) const {
    out.WriteShort(OpzValore);
    out.WriteInt(CalcLibCmp ? 1 : 0);
    out.WriteInt(OpzFlagA ? 1 : 0);
    out.WriteInt(OpzFlagB ? 1 : 0);
}

void COpzLibGps::LeggeDaFile(ifpstream& in, bool load, short) {
    // In this record any positive number is true; other records have rules of their own.
    const short valore = in.ReadShort();
    const bool calcLibCmp = in.ReadInt() > 0;
    const bool flagA = in.ReadInt() > 0;
    const bool flagB = in.ReadInt() > 0;
    if (!load) return;
    OpzValore = valore;
    CalcLibCmp = calcLibCmp;
    OpzFlagA = flagA;
    OpzFlagB = flagB;
}
