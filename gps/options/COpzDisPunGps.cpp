#include "gps/options/COpzDisPunGps.h"

#include <new>

#include "platform/base/CIniFile.h"

namespace {

constexpr short kColour = 5;
constexpr short kSymbol = 3;
constexpr short kWidth = 0;

}  // namespace

COpzDisPunGps::COpzDisPunGps(const char* section) : COpzDisEgn(section) {}

COpzDisPunGps::~COpzDisPunGps() = default;

COpzDisEgn* COpzDisPunGps::Clone() const {
    try {
        return new COpzDisPunGps(*this);
    } catch (const std::bad_alloc&) {  // of the object or of a text in it
        return nullptr;
    }
}

bool COpzDisPunGps::IsAllowUseGisSettings() const { return true; }

void COpzDisPunGps::doRisettaOpz() {
    COpzDisEgn::doRisettaOpz();
    ColSimb = ColNome = ColDesc = ColQuot = kColour;
    TipoSimb = kSymbol;
    SetLwSimb(kWidth);
    SetLwNameSimb(kWidth);
    SetLwDescSimb(kWidth);
    SetLwQuotSimb(kWidth);
}

void COpzDisPunGps::doGetDaIni() {
    COpzDisEgn::doGetDaIni();
    const CIniFile ini;
    const std::string section = GetSezioneIni();
    // VisSimb is written with the others, but points never take it from the settings.
    ColSimb = ini.GetShort(section.c_str(), "ColSimb", kColour);
    ColNome = ini.GetShort(section.c_str(), "ColNome", kColour);
    ColDesc = ini.GetShort(section.c_str(), "ColDesc", kColour);
    ColQuot = ini.GetShort(section.c_str(), "ColQuot", kColour);
    TipoSimb = ini.GetShort(section.c_str(), "TipoSimb", kSymbol);
    SetLwSimb(ini.GetShort(section.c_str(), "LwSimb", kWidth));
    SetLwNameSimb(ini.GetShort(section.c_str(), "LwNameSimb", kWidth));
    SetLwDescSimb(ini.GetShort(section.c_str(), "LwDescSimb", kWidth));
    SetLwQuotSimb(ini.GetShort(section.c_str(), "LwQuotSimb", kWidth));
}
