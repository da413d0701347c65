// COpzListDisEgnStream: the records of a display list in a project.
#include <cstdint>
#include <string>
#include <vector>

#include "host/base/RecordEnvelope.h"
#include "platform/base/ifpstream.h"
#include "platform/base/ofpstream.h"
#include "platform/entity/COpzListDisEgn.h"
#include "platform/entity/CSymbolUsedTracer.h"

namespace {

constexpr std::int32_t kFormDataList = 1;  // normal entries
constexpr std::int32_t kFormFull = 2;      // name, type and visibility of the list, normal and common entries

using Voci = std::vector<std::unique_ptr<COpzDisEgn>>;

// An entry has a length of its own, so that a later form can append values to it.
void WriteEntry(ofpstream& out, const COpzDisEgn& entry) {
    ofpstream bytes(out.GetVersion());
    bytes.WriteString(entry.GetNomeOpz());
    entry.SalvaValori(bytes);
    out.WriteString(bytes.GetBytes());
}

void WriteEntries(ofpstream& out, const Voci& list) {
    out.WriteInt(static_cast<std::int32_t>(list.size()));
    for (const auto& entry : list) WriteEntry(out, *entry);
}

// Where stored entries go.
class Receiver {
public:
    Receiver(const Voci& list, bool byName) : list_(list), given_(list.size(), false), byName_(byName) {}

    /// The next stored entry has this name: who takes its values; null for nobody.
    COpzDisEgn* Next(const std::string& name) {
        const std::size_t stored = next_++;
        if (!byName_) return stored < list_.size() ? list_[stored].get() : nullptr;
        for (std::size_t i = 0; i < list_.size(); ++i) {
            if (given_[i] || list_[i]->GetNomeOpz() != name) continue;
            given_[i] = true;
            return list_[i].get();
        }
        return nullptr;
    }

private:
    const Voci& list_;
    std::vector<bool> given_;
    std::size_t next_ = 0;
    bool byName_;
};

void ReadEntry(ifpstream& in, Receiver& receiver) {
    const std::string bytes = in.ReadString();
    ifpstream stored(bytes.data(), bytes.size(), in.GetVersion());
    const std::string name = stored.ReadString();
    if (COpzDisEgn* const entry = receiver.Next(name)) entry->LeggeValori(stored);
}

void ReadEntries(ifpstream& in, const Voci& list, bool byName) {
    Receiver receiver(list, byName);
    const std::int32_t count = in.ReadInt();
    for (std::int32_t i = 0; i < count && in.IsOk(); ++i) ReadEntry(in, receiver);
}

}  // namespace

void COpzListDisEgn::SalvaInFileDataList(ofpstream& out, short) const {
    WriteEnvelope(out, kFormDataList, [this](ofpstream& payload) { WriteEntries(payload, normali_); });
}

void COpzListDisEgn::SalvaInFile(ofpstream& out, short, CSymbolUsedTracer* tracer) const {
    WriteEnvelope(out, kFormFull, [this](ofpstream& payload) {
        payload.WriteString(nome_);
        payload.WriteInt(tipo_);
        payload.WriteShort(visList_);
        WriteEntries(payload, normali_);
        WriteEntries(payload, comuni_);
    });
    if (!tracer) return;
    for (const Voci* list : {&normali_, &comuni_})
        for (const auto& entry : *list) tracer->SymbolUsed(entry->GetTipoSimb());
}

void COpzListDisEgn::LeggeDaFileDataList(ifpstream& in, bool load, short) { Legge(in, load, false); }

void COpzListDisEgn::LeggeDaFileOpzExist(ifpstream& in, bool load, short) { Legge(in, load, true); }

void COpzListDisEgn::Legge(ifpstream& in, bool load, bool byName) {
    ReadEnvelope(in, [&](ifpstream& payload, std::int32_t form) {
        if (!load || form < kFormDataList || form > kFormFull) return;
        if (form == kFormFull) {
            payload.ReadString();  // name and type are the list's own
            payload.ReadInt();
            const short visList = payload.ReadShort();
            if (payload.IsOk()) visList_ = visList;
        }
        ReadEntries(payload, normali_, byName);
        if (form == kFormFull) ReadEntries(payload, comuni_, byName);
    });
}
