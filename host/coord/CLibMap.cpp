#include "platform/coord/CLibMap.h"

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
