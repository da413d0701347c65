#include "platform/coord/CConvCoord.h"

#include <cmath>

#include "host/base/RecordEnvelope.h"
#include "host/coord/MotoreProj.h"
#include "platform/base/GpsValues.h"
#include "platform/coord/CLibMap.h"
#include "platform/coord/CMotoreConv.h"
#include "platform/entity/CCloudItem.h"

namespace {

struct NamedEllipsoid {
    int code;
    double a, rf;
};

// Semi-major axis and inverse flattening as the EPSG dataset defines them.
constexpr NamedEllipsoid kEllipsoids[] = {
    {CConvCoord::ellWgs84, 6378137.0, 298.257223563},
    {CConvCoord::ellGrs80, 6378137.0, 298.257222101},
    {CConvCoord::ellInternazionale1924, 6378388.0, 297.0},
    {CConvCoord::ellBessel1841, 6377397.155, 299.1528128},
    {CConvCoord::ellClarke1866, 6378206.4, 6378206.4 / (6378206.4 - 6356583.8)},
    {CConvCoord::ellClarke1880Rgs, 6378249.145, 293.465},
    {CConvCoord::ellAiry1830, 6377563.396, 299.3249646},
    {CConvCoord::ellKrassowsky1940, 6378245.0, 298.3},
    {CConvCoord::ellAustraliano, 6378160.0, 298.25},
    {CConvCoord::ellGrs67, 6378160.0, 298.247167427},
};

constexpr std::int32_t kForm = 1;  // of the record

bool Failed(double& a, double& b, double& c) {
    a = b = c = GPS_VAL_UNSET;
    return false;
}

// Set, and a number that a computation can use: not NaN, not infinite.
bool Usable(double v) { return std::fabs(v) < GPS_VAL_SET_LIMIT; }

bool Usable(double a, double b, double c) { return Usable(a) && Usable(b) && Usable(c); }

// From one datum to another, geographic, in place: `to` or `from` null is WGS 84 itself.
bool ChangeDatum(const CEllissoide& ellFrom, const CDatumConv* from, const CDatumConv* to,
                 const CEllissoide& ellTo, double& lat, double& lon, double& h) {
    double x, y, z;
    if (!ellFrom.GrafToGeoc(lat, lon, h, x, y, z)) return false;
    if (from && !from->ToStd(x, y, z, x, y, z)) return false;
    if (to && !to->FromStd(x, y, z, x, y, z)) return false;
    return ellTo.GeocToGraf(x, y, z, lat, lon, h);
}

}  // namespace

CConvCoord::CConvCoord(CLibMap* map, CCloudItem* item) : map_(map), item_(item) { Bind(); }

CConvCoord::CConvCoord(const CConvCoord& other)
    : imp_(other.imp_),
      flag_(other.flag_),
      real_(other.real_),
      tpDtBase_(other.tpDtBase_),
      dtBase_(other.dtBase_),
      local_(other.local_),
      altez_(other.altez_),
      map_(other.map_),
      item_(nullptr),
      datLetto_(other.datLetto_),
      showMessage_(other.showMessage_) {
    Bind();
}

CConvCoord& CConvCoord::operator=(const CConvCoord& other) {
    if (this == &other) return *this;
    imp_ = other.imp_;
    flag_ = other.flag_;
    real_ = other.real_;
    tpDtBase_ = other.tpDtBase_;
    dtBase_ = other.dtBase_;
    local_ = other.local_;
    ApplyEllissoide();
    altez_ = other.altez_;
    datLetto_ = other.datLetto_;
    showMessage_ = other.showMessage_;
    catena_.valid = false;
    via_ = Via::unknown;
    return *this;
}

CConvCoord::~CConvCoord() = default;

void CConvCoord::Bind() {
    dtBase_.BindTo(this);
    local_.BindTo(this);
    altez_.BindTo(this);
}

void CConvCoord::PartAssigned() {
    catena_.valid = false;
    via_ = Via::unknown;
}

void CConvCoord::PartChanged() {
    PartAssigned();
    if (item_) item_->ConvCoordChanged();
}

// --- the chain -----------------------------------------------------------------------------------------

const CConvCoord::Catena& CConvCoord::GetCatena() const {
    const std::uint64_t revision = map_ ? map_->GetRevision() : 0;
    if (catena_.valid && catena_.mapRevision == revision) return catena_;

    catena_ = {};
    switch (tpDtBase_) {
        case dtWgs84:
            break;
        case dtProprio:
            catena_.base = &dtBase_;
            break;
        case dtLibreria:
            if (!map_)
                catena_.baseKnown = false;
            else if (map_->GetTpDtBaseGps() != 0)
                catena_.base = map_->GetConvDtBaseGps();
            break;
        default:
            catena_.baseKnown = false;
    }
    if (catena_.base && catena_.base->IsIdentity()) catena_.base = nullptr;
    catena_.usable = catena_.baseKnown;

    if (local_.GetTpProiezPla() != TpProiezPla::definizione) {
        double a = 0, rf = 0;
        if (GetEllissoide(a, rf) && a > 0)
            catena_.ellissoide = CEllissoide(a, rf);
        else
            catena_.usable = false;
        if (flag_) {
            catena_.project = GetDatSelezionato();
            if (!catena_.project) catena_.usable = false;
            // An identity datum changes neither angles nor heights, whatever the ellipsoid.
            if (catena_.project && catena_.project->IsIdentity()) catena_.project = nullptr;
        }
    }
    if (!catena_.project) catena_.ellissoide = CEllissoide();
    catena_.motore = local_.GetProiezPla().GetMotore();
    if (!catena_.motore) catena_.usable = false;
    catena_.mapRevision = revision;
    catena_.valid = true;
    return catena_;
}

bool CConvCoord::GrafBaseToGrafWgs(double lat, double lon, double h, double& latW, double& lonW,
                                   double& hW) const {
    if (motore_) return motore_->GrafBaseToGrafWgs(lat, lon, h, latW, lonW, hW);
    if (!(std::fabs(lat) <= 90) || !Usable(lon) || !Usable(h)) return Failed(latW, lonW, hW);
    const Catena& c = GetCatena();
    if (!c.baseKnown) return Failed(latW, lonW, hW);
    if (c.base && !ChangeDatum(CEllissoide(), c.base, nullptr, CEllissoide(), lat, lon, h))
        return Failed(latW, lonW, hW);
    latW = lat;
    lonW = lon;
    hW = h;
    return true;
}

bool CConvCoord::GeocBaseToGeocWgs(double x, double y, double z, double& xW, double& yW, double& zW) const {
    if (motore_) return motore_->GeocBaseToGeocWgs(x, y, z, xW, yW, zW);
    if (!Usable(x, y, z)) return Failed(xW, yW, zW);
    const Catena& c = GetCatena();
    if (!c.baseKnown) return Failed(xW, yW, zW);
    if (c.base) return c.base->ToStd(x, y, z, xW, yW, zW);
    xW = x;
    yW = y;
    zW = z;
    return true;
}

void CConvCoord::FindVia() const {
    const bool asMap = flag_ || tpDtBase_ == dtLibreria;
    const Catena& c = GetCatena();
    if (motore_)
        via_ = Via::engine;
    else if (c.usable && !asMap && !c.base && altez_.GetTpCalcPt() == CConvAltez::tpNessuno &&
             !local_.IsRotoTrasSet())
        via_ = Via::projection;
    else
        via_ = Via::chain;
}

bool CConvCoord::GrafGpsToPlanAtt(double lat, double lon, double h, double altAnt, double& east,
                                  double& north, double& height) const {
    if (via_ != Via::projection) return GrafGpsToPlanAttVia(lat, lon, h, altAnt, east, north, height);
    // A million points go through here, so each is tested once, by what comes out: PROJ gives infinite values
    // for what it cannot convert, and passes the height through. A sum is below the limit only when each of
    // its terms is; NaN never is.
    double x, y, z;
    if (!(std::fabs(lat) <= 90)) return Failed(east, north, height);
    catena_.motore->Forward(lat, lon, h - altAnt, x, y, z);
    if (!(std::fabs(x) + std::fabs(y) + std::fabs(z) < GPS_VAL_SET_LIMIT)) return Failed(east, north, height);
    east = x;
    north = y;
    height = z;
    return true;
}

bool CConvCoord::GrafGpsToPlanAttVia(double lat, double lon, double h, double altAnt, double& east,
                                     double& north, double& height) const {
    if (via_ == Via::unknown) {
        FindVia();
        return GrafGpsToPlanAtt(lat, lon, h, altAnt, east, north, height);
    }
    if (via_ == Via::engine) return motore_->GrafGpsToPlanAtt(lat, lon, h, altAnt, east, north, height);
    const Catena& c = GetCatena();
    if (!c.usable || !(std::fabs(lat) <= 90) || !Usable(lon, h, altAnt)) return Failed(east, north, height);

    double ground = h - altAnt;
    double latP = lat, lonP = lon;
    if ((c.base || c.project) &&
        !ChangeDatum(CEllissoide(), c.base, c.project, c.ellissoide, latP, lonP, ground))
        return Failed(east, north, height);
    double x, y, z;
    c.motore->Forward(latP, lonP, ground, x, y, z);

    if (altez_.GetTpCalcPt() != CConvAltez::tpNessuno) {
        double latW = lat, lonW = lon, hW = h - altAnt, dh = 0;
        if (c.base && !ChangeDatum(CEllissoide(), c.base, nullptr, CEllissoide(), latW, lonW, hW))
            return Failed(east, north, height);
        if (!altez_.GetDifferenzaAt(latW, lonW, x, y, dh)) return Failed(east, north, height);
        z -= dh;
    }
    local_.ToLocal(x, y);
    if (!Usable(x, y, z)) return Failed(east, north, height);
    east = x;
    north = y;
    height = z;
    return true;
}

bool CConvCoord::PlanAttToGrafGps(double east, double north, double height, double altAnt, double& lat,
                                  double& lon, double& h) const {
    if (motore_) return motore_->PlanAttToGrafGps(east, north, height, altAnt, lat, lon, h);
    const Catena& c = GetCatena();
    if (!c.usable || !Usable(east, north, height) || !Usable(altAnt)) return Failed(lat, lon, h);

    double x = east, y = north;
    local_.FromLocal(x, y);
    const CProiezPla& proiez = local_.GetProiezPla();
    double latP, lonP, ground;
    if (!proiez.PlanToGraf(x, y, height, latP, lonP, ground)) return Failed(lat, lon, h);

    if (altez_.GetTpCalcPt() != CConvAltez::tpNessuno) {
        // The difference depends on the position only, and that hardly on the height: the height as it stands
        // gives the position to far below the step that a slope of the surface could show.
        double latW = latP, lonW = lonP, hW = ground, dh = 0;
        if (c.project && !ChangeDatum(c.ellissoide, c.project, nullptr, CEllissoide(), latW, lonW, hW))
            return Failed(lat, lon, h);
        if (!altez_.GetDifferenzaAt(latW, lonW, x, y, dh)) return Failed(lat, lon, h);
        if (!proiez.PlanToGraf(x, y, height + dh, latP, lonP, ground)) return Failed(lat, lon, h);
    }
    if ((c.base || c.project) &&
        !ChangeDatum(c.ellissoide, c.project, c.base, CEllissoide(), latP, lonP, ground))
        return Failed(lat, lon, h);
    if (!Usable(latP, lonP, ground + altAnt)) return Failed(lat, lon, h);
    lat = latP;
    lon = lonP;
    h = ground + altAnt;
    return true;
}

void CConvCoord::ShowMessage(bool show) {
    showMessage_ = show;
    if (motore_) motore_->ShowMessage(show);
}

// --- settings --------------------------------------------------------------------------------------------

int CConvCoord::GetImp(int k) const {
    return k >= 1 && k <= IMP_MAX ? imp_[static_cast<std::size_t>(k - 1)] : 0;
}

void CConvCoord::SetImp(int k, int value) {
    if (k < 1 || k > IMP_MAX || imp_[static_cast<std::size_t>(k - 1)] == value) return;
    imp_[static_cast<std::size_t>(k - 1)] = value;
    if (k >= impDatSel1 && k <= impDatIndice) datLetto_.reset();
    ApplyEllissoide();
    PartChanged();
}

void CConvCoord::SetImpFlag(bool flag) {
    if (flag_ == flag) return;
    flag_ = flag;
    datLetto_.reset();
    PartChanged();
}

double CConvCoord::GetImpReal(int k) const {
    return k == 1 || k == 2 ? real_[static_cast<std::size_t>(k - 1)] : 0;
}

void CConvCoord::SetImpReal(int k, double value) {
    if ((k != 1 && k != 2) || !(real_[static_cast<std::size_t>(k - 1)] != value)) return;
    real_[static_cast<std::size_t>(k - 1)] = value;
    ApplyEllissoide();
    PartChanged();
}

void CConvCoord::SetTpDtBaseGps(int type) {
    if (tpDtBase_ == type) return;
    tpDtBase_ = type;
    PartChanged();
}

bool CConvCoord::GetEllissoide(double& a, double& invFlattening) const {
    const int code = GetImp(impEllissoide);
    if (code == ellProprio) {
        a = real_[0];
        invFlattening = real_[1];
        return true;
    }
    for (const NamedEllipsoid& e : kEllipsoids) {
        if (e.code != code) continue;
        a = e.a;
        invFlattening = e.rf;
        return true;
    }
    return false;
}

void CConvCoord::ApplyEllissoide() {
    double a = 0, rf = 0;
    if (GetEllissoide(a, rf)) local_.SetEllissoide(a, rf);
}

// --- project stream --------------------------------------------------------------------------------------

const CDatumConv* CConvCoord::GetDatSelezionato() const {
    if (!flag_ || !map_) return nullptr;
    return map_->GetDatAt(GetImp(impDatSel1), GetImp(impDatSel2), GetImp(impDatIndice));
}

void CConvCoord::SalvaInFile(ofpstream& out, short) {
    WriteEnvelope(out, kForm, [this](ofpstream& payload) {
        for (const int imp : imp_) payload.WriteInt(imp);
        payload.WriteUChar(flag_ ? 1 : 0);
        for (const double real : real_) payload.WriteDouble(real);
        payload.WriteInt(tpDtBase_);
        dtBase_.SalvaInFile(payload);
        local_.SalvaInFile(payload);
        altez_.SalvaInFile(payload);
        // Without the datum here, what was read of it is all that is known.
        const CDatumConv* datum = GetDatSelezionato();
        if (!datum) datum = datLetto_.get();
        payload.WriteUChar(datum ? 1 : 0);
        if (datum) datum->SalvaInFile(payload);
    });
}

void CConvCoord::LeggeDaFile(ifpstream& in, short) {
    ReadEnvelope(in, [this](ifpstream& payload, std::int32_t) {
        for (int& imp : imp_) imp = payload.ReadInt();
        flag_ = payload.ReadUChar() != 0;
        for (double& real : real_) real = payload.ReadDouble();
        tpDtBase_ = payload.ReadInt();
        dtBase_.LeggeDaFile(payload);
        local_.LeggeDaFile(payload);
        altez_.LeggeDaFile(payload);
        datLetto_.reset();
        if (payload.ReadUChar() != 0) {
            const auto datum = std::make_shared<CDatumConv>();
            datum->LeggeDaFile(payload);
            datLetto_ = datum;
        }
    });
    ApplyEllissoide();
    PartAssigned();
}

bool CConvCoord::IsDatumDiverso() const {
    if (!datLetto_ || !flag_) return false;
    const CDatumConv* datum = GetDatSelezionato();
    return !datum || !(*datum == *datLetto_);
}
