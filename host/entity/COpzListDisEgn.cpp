#include "platform/entity/COpzListDisEgn.h"

#include <algorithm>
#include <new>
#include <utility>

#include "platform/base/CIniFile.h"

namespace {

constexpr const char* kVisList = "VisList";
constexpr short kVisListDefault = 1;

using Voci = std::vector<std::unique_ptr<COpzDisEgn>>;

Voci Cloned(const Voci& list) {
    Voci copy;
    copy.reserve(list.size());
    for (const auto& entry : list) {
        std::unique_ptr<COpzDisEgn> clone(entry->Clone());
        if (!clone) throw std::bad_alloc();
        copy.push_back(std::move(clone));
    }
    return copy;
}

bool DelAt(Voci& list, int i) {
    if (i < 0 || static_cast<std::size_t>(i) >= list.size()) return false;
    list.erase(list.begin() + i);
    return true;
}

auto Find(const Voci& list, const COpzDisEgn* entry) {
    return std::find_if(list.begin(), list.end(), [entry](const auto& held) { return held.get() == entry; });
}

bool Del(Voci& list, const COpzDisEgn* entry) {
    const auto found = Find(list, entry);
    if (found == list.end()) return false;
    list.erase(found);
    return true;
}

}  // namespace

COpzListDisEgn::COpzListDisEgn(COpzListDisEgn* parent, const char* section)
    : padre_(parent), sezione_(section ? section : ""), nessuna_("") {}

COpzListDisEgn::COpzListDisEgn(const COpzListDisEgn& other)
    : padre_(other.padre_),
      sezione_(other.sezione_),
      nome_(other.nome_),
      tipo_(other.tipo_),
      visList_(other.visList_),
      normali_(Cloned(other.normali_)),
      comuni_(Cloned(other.comuni_)),
      nessuna_("") {}

COpzListDisEgn& COpzListDisEgn::operator=(const COpzListDisEgn& other) {
    if (this == &other) return *this;  // its entries stay the ones that others know
    // Everything that may fail comes first.
    Voci normali = Cloned(other.normali_);
    Voci comuni = Cloned(other.comuni_);
    std::string sezione = other.sezione_;
    std::string nome = other.nome_;
    padre_ = other.padre_;
    tipo_ = other.tipo_;
    visList_ = other.visList_;
    sezione_.swap(sezione);
    nome_.swap(nome);
    normali_.swap(normali);
    comuni_.swap(comuni);
    return *this;
}

COpzListDisEgn::~COpzListDisEgn() = default;

COpzListDisEgn* COpzListDisEgn::Clone() const {
    try {
        return new COpzListDisEgn(*this);
    } catch (const std::bad_alloc&) {  // of the list, an entry or a text
        return nullptr;
    }
}

// --- settings ----------------------------------------------------------------------------------------------

void COpzListDisEgn::GetDaIniOpzComList() {
    for (const auto& entry : comuni_) entry->GetDaIni();
}

void COpzListDisEgn::SetInIniOpzComList() {
    for (const auto& entry : comuni_) entry->SetInIni();
}

void COpzListDisEgn::doRisettaOpz() {
    visList_ = kVisListDefault;
    for (const Voci* list : {&normali_, &comuni_})
        for (const auto& entry : *list) entry->RisettaOpz();
}

void COpzListDisEgn::doGetDaIni() {
    visList_ = CIniFile().GetShort(sezione_.c_str(), kVisList, kVisListDefault);
    for (const auto& entry : normali_) entry->GetDaIni();
    GetDaIniOpzComList();
}

void COpzListDisEgn::doSetInIni() {
    CIniFile().WriteShort(sezione_.c_str(), kVisList, visList_);
    for (const auto& entry : normali_) entry->SetInIni();
    SetInIniOpzComList();
}

// --- entries -----------------------------------------------------------------------------------------------

bool COpzListDisEgn::Holds(const COpzDisEgn* entry) const {
    return Find(normali_, entry) != normali_.end() || Find(comuni_, entry) != comuni_.end();
}

int COpzListDisEgn::Add(Voci& list, COpzDisEgn* entry) {
    if (!entry || Holds(entry)) return -1;
    list.push_back(std::unique_ptr<COpzDisEgn>(entry));
    return static_cast<int>(list.size()) - 1;
}

COpzDisEgn& COpzListDisEgn::At(Voci& list, int i) {
    if (i >= 0 && static_cast<std::size_t>(i) < list.size()) return *list[static_cast<std::size_t>(i)];
    nessuna_.RisettaOpz();  // whatever was set in it
    nessuna_.SetNomeOpz(std::string());
    return nessuna_;
}

int COpzListDisEgn::AddOpzNor(COpzDisEgn* entry) { return Add(normali_, entry); }
bool COpzListDisEgn::DelOpzNor(COpzDisEgn* entry) { return Del(normali_, entry); }
bool COpzListDisEgn::DelOpzNorAt(int i) { return DelAt(normali_, i); }
COpzDisEgn& COpzListDisEgn::GetOpzNor(int i) { return At(normali_, i); }

int COpzListDisEgn::AddOpzCom(COpzDisEgn* entry) { return Add(comuni_, entry); }
bool COpzListDisEgn::DelOpzCom(COpzDisEgn* entry) { return Del(comuni_, entry); }
bool COpzListDisEgn::DelOpzComAt(int i) { return DelAt(comuni_, i); }
COpzDisEgn& COpzListDisEgn::GetOpzCom(int i) { return At(comuni_, i); }
