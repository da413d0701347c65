// CGrpGps: a GPS group, one base set-up with its points.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "gps/GpsExport.h"
#include "gps/model/CPunGps.h"
#include "gps/model/ChangeBits.h"
#include "gps/model/ListMoves.h"
#include "gps/model/NomeMinGps.h"
#include "platform/coord/CConvCoord.h"
#include "platform/coord/CTrovaNomeBaseGps.h"
#include "platform/entity/CCloudItem.h"
#include "platform/entity/CEgn.h"

class CCloudTable;
class CDrawingsMapper;
class CLibGps;
class CLibMap;

namespace vex {
class CPtr64Mapper;
}

/// One survey from one base: the base's position, survey and receiver type, the conversion of the survey's
/// fixes to the project's plane system, and the points measured. A drawing entity and an item of the cloud's
/// base table.
///
/// Base position: degrees, degrees, metres of the phase centre in the measured datum; antenna height in
/// metres.
///
/// Groups are made, placed and destroyed by the field book (CLibGps), and points are added and removed
/// through it. A group owns its points and holds one counted reference to its target drawing. A copy is a
/// value that lists the same points and takes no reference; its destruction would delete points that the
/// other one still lists.
class GPS_API CGrpGps : public CEgn, public CCloudItem {
public:
    /// Points by name, not owned.
    using PunSet = std::set<CPunGps*, NomeMinGps<CPunGps*>>;

    /// `table`: the project's cloud base table, null without a cloud project. `fromCloud`: as for points.
    /// `map`: for the conversion. `targetDrawing`: drawing of the group's entities, 0 for none.
    CGrpGps(CCloudTable* table, bool fromCloud, CLibMap* map, long long targetDrawing);

    /// Member-wise; nothing is reported.
    CGrpGps(const CGrpGps&) = default;
    CGrpGps& operator=(const CGrpGps&) = default;

    /// Deletes the points from the first to the last, then gives the drawing reference back.
    ~CGrpGps() override;

    /// The cloud item of a group that may be null: null in, null out.
    static CCloudItem* CloudItemOf(const CGrpGps* group);

    // --- entity side, in the order of the virtual operations ------------------------------------------

    /// The group's cloud item. Inside the library CloudItemOf is used wherever the group may be null.
    CCloudItem* GetCloudItem() const override;
    void SetNome(const std::string& nome) override;
    void SetSecScri(const std::string& secScri) override;
    void DoSetCoord(double x, double y, double z) override;  // metres: easting, northing, height
    void SetCodeEgn(unsigned long code) override;

    // --- cloud side --------------------------------------------------------------------------------------

    int GetCloudCreatorDevId() const override { return CloudCreatorDevId; }

    /// Called by the conversion when one of its values changes.
    void ConvCoordChanged() override;

    /// Stored without a report.
    void SetCloudCreatorDevId(int devId) { CloudCreatorDevId = devId; }

    // --- reset ---------------------------------------------------------------------------------------------

    /// Base values to unset, factors to 1, types to 0. Texts, processing code, conversion, points and sets
    /// stay. Reports nothing.
    void AnnullaLeVarGrp();

    /// The entity's fields, too.
    void AnnullaTutteLeVar();

    // --- name, labels, types -----------------------------------------------------------------------------

    const std::string& GetNomeGrp() const { return NomeGrp; }
    const std::string& GetOper() const { return Oper; }
    const std::string& GetStrum() const { return Strum; }
    const std::string& GetData() const { return Data; }
    const std::string& GetLocalita() const { return Localita; }
    unsigned char GetTipoRilievo() const { return TipoRilievo; }
    unsigned char GetTipoRicevitore() const { return TipoRicevitore; }

    void SetNomeGrp(const std::string& nome) { Set(NomeGrp, nome, CHG_GRP_NOMEGRP); }
    void SetTipoRilievo(unsigned char tipo) { Set(TipoRilievo, tipo, CHG_GRP_TIPORILIEVO); }
    void SetTipoRicevitore(unsigned char tipo) { Set(TipoRicevitore, tipo, CHG_GRP_TIPORICEVITORE); }

    // Intended: the four labels are stored without comparison and report nothing; they do not travel by
    // change bits.
    void SetOper(const std::string& oper) { Oper = oper; }
    void SetStrum(const std::string& strum) { Strum = strum; }
    void SetData(const std::string& data) { Data = data; }
    void SetLocalita(const std::string& localita) { Localita = localita; }

    /// Stores the four labels in this order. By value: the arguments may be the group's own labels.
    void SetLabels(std::string oper, std::string strum, std::string data, std::string localita);

    /// Intended: five texts, the group name first, though SetLabels takes four. The name is changed through
    /// SetNomeGrp only, which reports it.
    void GetLabels(std::string& nomeGrp, std::string& oper, std::string& strum, std::string& data,
                   std::string& localita) const;

    // --- base -----------------------------------------------------------------------------------------

    double GetBaseLat() const { return BaseLat; }                                 // degrees
    double GetBaseLong() const { return BaseLong; }                               // degrees
    double GetBaseElev() const { return BaseElev; }                               // metres
    double GetBaseAltAnt() const { return BaseAltAnt; }                           // metres
    void SetBaseLat(double lat) { Set(BaseLat, lat, CHG_GRP_BASELAT); }           // degrees
    void SetBaseLong(double lon) { Set(BaseLong, lon, CHG_GRP_BASELONG); }        // degrees
    void SetBaseElev(double elev) { Set(BaseElev, elev, CHG_GRP_BASEELEV); }      // metres
    void SetBaseAltAnt(double alt) { Set(BaseAltAnt, alt, CHG_GRP_BASEALTANT); }  // metres

    // --- conversion -----------------------------------------------------------------------------------

    short GetCodeElab() const { return CodeElab; }
    void SetCodeElab(short code) { Set(CodeElab, code, CHG_GRP_CODEELAB); }
    CConvCoord* GetConvCoord() { return &ConvCoord; }
    const CConvCoord* GetConvCoord() const { return &ConvCoord; }

    /// The conversion is set up and bit 0 of the processing code is set.
    bool IsCdElabValid() const { return ConvCoord.IsConvCoordReady() && (CodeElab & 1) != 0; }

    // --- drawing --------------------------------------------------------------------------------------

    long long GetTargetDrawing() const { return TargetDrawing; }

    /// Moves the counted reference; id 0 is neither taken nor given back here. The same id is given back and
    /// taken again. Reports nothing.
    void SetTargetDrawing(long long id);

    // --- project stream (gps/persist) ----------------------------------------------------------------------

    /// The group record, without the points, by the stream's version. `cloudFlag` goes to the cloud item's
    /// record; `mapper`, which may be null, learns of the drawing reference.
    void SalvaInFile(ofpstream& out, bool cloudFlag, vex::CPtr64Mapper* mapper);

    /// Reads a group record. Nothing is reported; fields that the stream's version does not have stay. With
    /// `remapDrawing` false the group keeps its drawing, though a stream before version 1004 always gives the
    /// default drawing.
    void LeggeDaFile(ifpstream& in, CDrawingsMapper& drawings, bool remapDrawing);

    // --- values kept and stored, which nothing here interprets ----------------------------------------

    bool GetGrpFlagRis() const { return GrpFlagRis; }
    void SetGrpFlagRis(bool flag) { GrpFlagRis = flag; }
    double GetGrpFactorA() const { return GrpFactorA; }  // dimensionless
    void SetGrpFactorA(double factor) { GrpFactorA = factor; }
    double GetGrpFactorB() const { return GrpFactorB; }  // dimensionless
    void SetGrpFactorB(double factor) { GrpFactorB = factor; }
    double GetBaseSpare1() const { return BaseSpare1; }  // unit: the host's
    void SetBaseSpare1(double value) { BaseSpare1 = value; }
    double GetBaseSpare2() const { return BaseSpare2; }  // unit: the host's
    void SetBaseSpare2(double value) { BaseSpare2 = value; }
    double GetBaseSpare3() const { return BaseSpare3; }  // unit: the host's
    void SetBaseSpare3(double value) { BaseSpare3 = value; }
    std::uint32_t GetGrpRis32() const { return GrpRis32; }
    void SetGrpRis32(std::uint32_t value) { GrpRis32 = value; }

    // --- point sets ----------------------------------------------------------------------------------------
    //
    // Two indexes by name, filled by the host alone: which points are normal and which special is its own
    // business. Requires: a point leaves the sets before it is renamed or deleted.

    /// True when inserted; false when a point of that name is there already.
    bool InsInPunSetNor(CPunGps* point) { return PunSetNor.insert(point).second; }
    void TolDaPunSetNor(PunSet::iterator at) { PunSetNor.erase(at); }
    PunSet::iterator GetPunSetNorLoBo(CPunGps* point) { return PunSetNor.lower_bound(point); }
    PunSet::iterator GetPunSetNorUpBo(CPunGps* point) { return PunSetNor.upper_bound(point); }
    PunSet::iterator GetPunSetNorBegin() { return PunSetNor.begin(); }
    PunSet::iterator GetPunSetNorEnd() { return PunSetNor.end(); }

    bool InsInPunSetSpc(CPunGps* point) { return PunSetSpc.insert(point).second; }
    void TolDaPunSetSpc(PunSet::iterator at) { PunSetSpc.erase(at); }
    PunSet::iterator GetPunSetSpcLoBo(CPunGps* point) { return PunSetSpc.lower_bound(point); }
    PunSet::iterator GetPunSetSpcUpBo(CPunGps* point) { return PunSetSpc.upper_bound(point); }
    PunSet::iterator GetPunSetSpcBegin() { return PunSetSpc.begin(); }
    PunSet::iterator GetPunSetSpcEnd() { return PunSetSpc.end(); }
    bool GetPunSetSpcEmpty() const { return PunSetSpc.empty(); }

    /// Empties both sets; the points stay.
    void AzzeraPunSet();

    // --- derived coordinates of the base (gps/coords), names and units as in CPunGps ------------------
    //
    // Intended: the phase-centre members compute when at least one of the three base values is set, where a
    // point needs all three; the ground members need all four values in both classes.

    /// Latitude and longitude are set; the height is not looked at, on purpose.
    bool AreBaseCoordValid();
    void GetGrafWgs84(double& lat, double& lon, double& h);

    /// Stores the base position, when at least one value is set. Intended: nothing is reported.
    void SetGeocCeFaMis(double x, double y, double z);
    void GetGeocCeFaMis(double& x, double& y, double& z);
    void GetGeocCeFaWgs84(double& x, double& y, double& z);
    void GetGeocTerrMis(double& x, double& y, double& z);
    void GetGeocTerrWgs84(double& x, double& y, double& z);

    // --- frame of the base, virtual stations (gps/coords) --------------------------------------------------
    //
    // Tags in the secondary text, see FrameTags.h. Texts go through the virtual SetSecScri.

    /// The secondary text has one of the two tags.
    bool IsBaseEuref() const;

    /// Appends the tag of a kind, BASE_EUREF or BASE_ETRF2000; no tag of any other kind. False, changing
    /// nothing, when the base has a tag. Intended: true for an unknown kind too; the result tells that the
    /// base had no tag before.
    bool SetBaseEuref(int kind);

    /// Removes one tag, first that of ETRF2000; true when there was one.
    bool ClearBaseEuref();

    /// Removes the tag of a virtual station from every point but the one at `kept`; -1 keeps none. `changed`
    /// gets the positions of those that had it; true when there is one.
    bool ClearAllPointVrs(int kept, std::vector<int>& changed);

    // --- the permanent station at the base (gps/coords) ----------------------------------------------------
    //
    // Nothing changes when the base has no position, or no station is found there.

    /// Gives the entity, not the group, the name of the station.
    void SetNomeBaseFromCoord(CTrovaNomeBaseGps::enumProvincia provincia);

    /// The same, and the base gets the station's position first. Intended: only the name is reported, as
    /// SetGeocCeFaMis reports nothing; a caller that wants the position published reports it itself.
    void SetNomeCoordBaseFromCoord(CTrovaNomeBaseGps::enumProvincia provincia);

    bool operator==(const CGrpGps& other) const { return NomeGrp == other.NomeGrp; }

private:
    friend class CLibGps;
    friend GPS_API void FCalcCoordGrpGps(CLibGps* book, int g);
    friend struct CGrpGpsLayout;  // lets a test look at the order of the fields

    template <class T>
    void Set(T& field, const T& value, std::uint32_t flag) {
        if (!(field != value)) return;
        field = value;
        CloudItemChanged(flag);
    }

    bool GrpFlagRis = false;
    std::vector<CPunGps*>::iterator SpareCursor{};  // never used, copied with the group
    std::vector<CPunGps*> PunList;
    double GrpFactorA;  // dimensionless
    double GrpFactorB;  // dimensionless
    std::string NomeGrp;
    std::string Oper;
    std::string Strum;
    std::string Data;
    std::string Localita;
    double BaseLat;     // degrees
    double BaseLong;    // degrees
    double BaseElev;    // metres
    double BaseAltAnt;  // metres
    double BaseSpare1, BaseSpare2, BaseSpare3;
    short CodeElab = 0;
    CConvCoord ConvCoord;
    unsigned char TipoRilievo;
    unsigned char TipoRicevitore;
    PunSet PunSetNor;
    PunSet PunSetSpc;
    long long TargetDrawing;
    std::uint32_t GrpRis32 = 0;
    int CloudCreatorDevId;

    // For searches in the point list: how positions have moved since they were noted, and the steps that
    // searches took beyond that.
    mutable ListMoves moves_;
    mutable std::size_t searchSteps_ = 0;
};
