#include "gps/options/COpzDisGrpGps.h"

#include <new>

#include "platform/base/CIniFile.h"

namespace {

constexpr short kVisible = 1;
constexpr short kColour = 4;
constexpr short kSymbol = 6;
constexpr short kWidth = 0;

}  // namespace

COpzDisGrpGps::COpzDisGrpGps(const char* section) : COpzDisEgn(section) {}

COpzDisGrpGps::~COpzDisGrpGps() = default;

COpzDisEgn* COpzDisGrpGps::Clone() const {
    try {
        return new COpzDisGrpGps(*this);
    } catch (const std::bad_alloc&) {  // of the object or of a text in it
        return nullptr;
    }
}

void COpzDisGrpGps::doRisettaOpz() {
    COpzDisEgn::doRisettaOpz();
    VisSimb = kVisible;
    ColSimb = ColNome = ColDesc = ColQuot = kColour;
    TipoSimb = kSymbol;
    SetLwSimb(kWidth);
    SetLwNameSimb(kWidth);
    SetLwDescSimb(kWidth);
    SetLwQuotSimb(kWidth);
}

void COpzDisGrpGps::doGetDaIni() {
    COpzDisEgn::doGetDaIni();
    const CIniFile ini;
    const std::string section = GetSezioneIni();
    VisSimb = ini.GetShort(section.c_str(), "VisSimb", kVisible);
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
