#include "platform/entity/COpzDisEgn.h"

#include <iterator>
#include <new>

#include "platform/base/CIniFile.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"

// A value with its key, in the order of the settings and of the record.
struct COpzDisEgn::Valore {
    const char* key;
    short COpzDisEgn::*value;
    short byDefault;
};

const COpzDisEgn::Valore COpzDisEgn::valori_[10] = {
    {"VisSimb", &COpzDisEgn::VisSimb, 1},        {"ColSimb", &COpzDisEgn::ColSimb, 0},
    {"ColNome", &COpzDisEgn::ColNome, 0},        {"ColDesc", &COpzDisEgn::ColDesc, 0},
    {"ColQuot", &COpzDisEgn::ColQuot, 0},        {"TipoSimb", &COpzDisEgn::TipoSimb, 0},
    {"LwSimb", &COpzDisEgn::lwSimb_, 0},         {"LwNameSimb", &COpzDisEgn::lwNameSimb_, 0},
    {"LwDescSimb", &COpzDisEgn::lwDescSimb_, 0}, {"LwQuotSimb", &COpzDisEgn::lwQuotSimb_, 0},
};

COpzDisEgn::COpzDisEgn(const char* section) : sezione_(section ? section : "") {}

COpzDisEgn::~COpzDisEgn() = default;

COpzDisEgn* COpzDisEgn::Clone() const {
    try {
        return new COpzDisEgn(*this);
    } catch (const std::bad_alloc&) {  // of the object or of a text in it
        return nullptr;
    }
}

bool COpzDisEgn::IsAllowUseGisSettings() const { return false; }

void COpzDisEgn::doRisettaOpz() {
    for (const Valore& valore : valori_) this->*valore.value = valore.byDefault;
}

void COpzDisEgn::doGetDaIni() {}

void COpzDisEgn::doSetInIni() {
    CIniFile ini;
    const std::string section = GetSezioneIni();
    for (const Valore& valore : valori_) ini.WriteShort(section.c_str(), valore.key, this->*valore.value);
}

std::string COpzDisEgn::GetSezioneIni() const { return nome_.empty() ? sezione_ : sezione_ + '-' + nome_; }

void COpzDisEgn::SalvaValori(ofpstream& out) const {
    for (const Valore& valore : valori_) out.WriteShort(this->*valore.value);
}

void COpzDisEgn::LeggeValori(ifpstream& in) {
    short read[std::size(valori_)];
    for (short& value : read) value = in.ReadShort();
    if (!in.IsOk()) return;
    for (std::size_t i = 0; i < std::size(valori_); ++i) this->*valori_[i].value = read[i];
}
