#include "platform/coord/CLibMap.h"

#include "host/base/RecordEnvelope.h"

namespace {

constexpr std::int32_t kForm = 1;

}  // namespace

CLibMap::CLibMap() {
    dtBase_.BindTo(this);
    AddDat(0, 0);
}

CLibMap::~CLibMap() = default;

int CLibMap::GetDatArSize(int sel1, int sel2) const {
    const auto found = datums_.find({sel1, sel2});
    return found == datums_.end() ? 0 : static_cast<int>(found->second.size());
}

CDatumConv* CLibMap::GetDatAt(int sel1, int sel2, int index) const {
    if (index < 0 || index >= GetDatArSize(sel1, sel2)) return nullptr;
    return datums_.find({sel1, sel2})->second[static_cast<std::size_t>(index)].get();
}

CDatumConv* CLibMap::AddDat(int sel1, int sel2) {
    if (sel1 < 0 || sel2 < 0 || GetDatArSize(sel1, sel2) >= MAX_DATUM) return nullptr;
    auto datum = std::make_unique<CDatumConv>();
    datum->BindTo(this);
    auto& list = datums_[{sel1, sel2}];
    list.push_back(std::move(datum));
    ++revision_;
    return list.back().get();
}

void CLibMap::SetTpDtBaseGps(int type) {
    if (type == tpDtBase_) return;
    tpDtBase_ = type;
    ++revision_;
}

void CLibMap::SalvaInFile(ofpstream& out, short) {
    WriteEnvelope(out, kForm, [this](ofpstream& payload) {
        payload.WriteInt(tpDtBase_);
        dtBase_.SalvaInFile(payload);
        payload.WriteInt(static_cast<std::int32_t>(datums_.size()));
        for (const auto& [selectors, list] : datums_) {
            payload.WriteInt(selectors.first);
            payload.WriteInt(selectors.second);
            payload.WriteInt(static_cast<std::int32_t>(list.size()));
            for (const auto& datum : list) datum->SalvaInFile(payload);
        }
    });
}

void CLibMap::LeggeDaFile(ifpstream& in, short) {
    datums_.clear();
    ++revision_;
    ReadEnvelope(in, [this](ifpstream& payload, std::int32_t) {
        tpDtBase_ = payload.ReadInt();
        dtBase_.LeggeDaFile(payload);
        // Counts that the payload cannot hold are damage.
        const std::int32_t lists = payload.ReadInt();
        for (std::int32_t i = 0; i < lists && payload.GetRemaining() > 0; ++i) {
            const int sel1 = payload.ReadInt();
            const int sel2 = payload.ReadInt();
            const std::int32_t count = payload.ReadInt();
            for (std::int32_t j = 0; j < count && payload.GetRemaining() > 0; ++j) {
                CDatumConv discarded;  // damage: no selectors, or more than a list holds
                CDatumConv* datum = AddDat(sel1, sel2);
                (datum ? *datum : discarded).LeggeDaFile(payload);
            }
        }
    });
}
