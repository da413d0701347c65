#include "gps/model/CGrpGps.h"

#include <utility>

#include "gps/model/EntityChanges.h"
#include "platform/cad/COrkaEng.h"
#include "platform/entity/CCloudManager.h"

CGrpGps::CGrpGps(CCloudTable* table, bool fromCloud, CLibMap* map, long long targetDrawing)
    : CCloudItem(table, fromCloud), ConvCoord(map, CloudItemOf(this)), TargetDrawing(targetDrawing) {
    AnnullaLeVarGrp();
    COrkaEng::AddDrawingRefUsage(TargetDrawing);  // with 0 too
    CloudCreatorDevId = CCloudManager::GetInstance()->GetDevId();
}

CGrpGps::~CGrpGps() {
    for (CPunGps* point : PunList) delete point;  // null entries are skipped by delete
    COrkaEng::SubDrawingRefUsage(TargetDrawing);  // with 0 too
}

CCloudItem* CGrpGps::CloudItemOf(const CGrpGps* group) {
    return const_cast<CGrpGps*>(group);  // the conversion to the base keeps null
}

// Intended: answers null when called, qualified, on a null group. The library is compiled so that the test
// stays; callers inside it use CloudItemOf.
#pragma GCC diagnostic push
#if defined(__clang__)
#pragma GCC diagnostic ignored "-Wtautological-undefined-compare"
#else
#pragma GCC diagnostic ignored "-Wnonnull-compare"
#endif
CCloudItem* CGrpGps::GetCloudItem() const {
    if (this == nullptr) return nullptr;
    return CloudItemOf(this);
}
#pragma GCC diagnostic pop

void CGrpGps::SetNome(const std::string& nome) { ChangeNome(*this, nome); }

void CGrpGps::SetSecScri(const std::string& secScri) { ChangeSecScri(*this, secScri); }

void CGrpGps::DoSetCoord(double x, double y, double z) { ChangeCoord(*this, x, y, z); }

void CGrpGps::SetCodeEgn(unsigned long code) { ChangeCodeEgn(*this, code); }

void CGrpGps::ConvCoordChanged() { CloudItemChanged(CHG_GRP_CONVCOORD); }

void CGrpGps::AnnullaLeVarGrp() {
    BaseLat = BaseLong = BaseElev = BaseAltAnt = GPS_VAL_UNSET;
    BaseSpare1 = BaseSpare2 = BaseSpare3 = GPS_VAL_UNSET;
    GrpFactorA = GrpFactorB = 1.0;
    TipoRilievo = TipoRicevitore = 0;
}

void CGrpGps::AnnullaTutteLeVar() {
    CEgn::AnnullaTutteLeVar();
    AnnullaLeVarGrp();
}

void CGrpGps::SetLabels(std::string oper, std::string strum, std::string data, std::string localita) {
    Oper = std::move(oper);
    Strum = std::move(strum);
    Data = std::move(data);
    Localita = std::move(localita);
}

void CGrpGps::GetLabels(std::string& nomeGrp, std::string& oper, std::string& strum, std::string& data,
                        std::string& localita) const {
    nomeGrp = NomeGrp;
    oper = Oper;
    strum = Strum;
    data = Data;
    localita = Localita;
}

void CGrpGps::SetTargetDrawing(long long id) {
    if (TargetDrawing != 0) COrkaEng::SubDrawingRefUsage(TargetDrawing);
    TargetDrawing = 0;  // should the engine fail now, no reference is held that was never taken
    if (id != 0) COrkaEng::AddDrawingRefUsage(id);
    TargetDrawing = id;
}

void CGrpGps::AzzeraPunSet() {
    PunSetNor.clear();
    PunSetSpc.clear();
}
