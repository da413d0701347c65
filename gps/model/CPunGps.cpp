#include "gps/model/CPunGps.h"

#include "gps/model/CGrpGps.h"
#include "gps/model/EntityChanges.h"

CPunGps::CPunGps(CCloudTable* table, bool fromCloud, CGrpGps* group)
    : CCloudItem(table, fromCloud), Group(group) {
    AnnullaLeVarPun();
    PunRis32 = 0;
}

CPunGps::~CPunGps() = default;

CCloudItem* CPunGps::CloudItemOf(const CPunGps* point) {
    return const_cast<CPunGps*>(point);  // the conversion to the base keeps null
}

// Intended: answers null when called, qualified, on a null point. The library is compiled so that the test
// stays; callers inside it use CloudItemOf.
#pragma GCC diagnostic push
#if defined(__clang__)
#pragma GCC diagnostic ignored "-Wtautological-undefined-compare"
#else
#pragma GCC diagnostic ignored "-Wnonnull-compare"
#endif
CCloudItem* CPunGps::GetCloudItem() const {
    if (this == nullptr) return nullptr;
    return CloudItemOf(this);
}
#pragma GCC diagnostic pop

void CPunGps::SetNome(const std::string& nome) { ChangeNome(*this, nome); }

void CPunGps::SetSecScri(const std::string& secScri) { ChangeSecScri(*this, secScri); }

void CPunGps::DoSetCoord(double x, double y, double z) { ChangeCoord(*this, x, y, z); }

void CPunGps::SetCodeEgn(unsigned long code) { ChangeCodeEgn(*this, code); }

int CPunGps::GetUserType() { return 8; }

int CPunGps::GetCloudCreatorDevId() const {
    const CCloudItem* group = CGrpGps::CloudItemOf(Group);
    return group ? group->GetCloudCreatorDevId() : -1;
}

void CPunGps::AnnullaLeVarPun() {
    Year = 0;
    Month = Day = 0;
    Tod = 0;
    HposRms = VposRms = Pdop = Gdop = GPS_VAL_UNSET;
    NuGpsUsed = NuGloUsed = 0;
    PosCov_xx = PosCov_yy = PosCov_zz = PosCov_tt = 0;
    PosCov_xy = PosCov_xz = PosCov_xt = PosCov_yz = PosCov_yt = PosCov_zt = 0;
    Lat = Long = Elev = AltAnt = GPS_VAL_UNSET;
    Qua = 0;
    GrafBase[0] = GrafBase[1] = GrafBase[2] = GPS_VAL_UNSET;
    PrimaryPtDup = SecondaryPtDup = false;
}

void CPunGps::AnnullaTutteLeVar() {
    CEgn::AnnullaTutteLeVar();
    AnnullaLeVarPun();
}
