// CPunGps: a GPS point, one fix of the field book.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "gps/GpsExport.h"
#include "gps/model/ChangeBits.h"
#include "gps/model/NomeMinGps.h"
#include "platform/base/GpsValues.h"
#include "platform/entity/CCloudItem.h"
#include "platform/entity/CEgn.h"

class CCloudTable;
class CGrpGps;

/// One GNSS fix as the receiver delivered it: a drawing entity (name, secondary text, code, plane
/// coordinates of the ground mark) and an item of the cloud's point table.
///
/// Position: latitude and longitude in degrees, ellipsoidal height of the antenna's phase centre in metres,
/// in the measured datum; antenna height in metres. A real value that is not known is GPS_VAL_UNSET.
///
/// Points are made, placed and destroyed by the field book (CLibGps). A point belongs to one group for life;
/// it owns nothing. Copies are detached values that still name the group of the point they were copied from.
///
/// Setters compare first (`!=`, so a NaN is always a change and -0.0 over 0.0 none), store on a real
/// difference and report one change bit to the point's cloud item. No operation fails.
class GPS_API CPunGps : public CEgn, public CCloudItem {
public:
    /// `table`: the project's cloud point table, null without a cloud project. `fromCloud`: the point is made
    /// from items read from the cloud and does not enter the table's added items now. `group`: the owner.
    CPunGps(CCloudTable* table, bool fromCloud, CGrpGps* group);

    /// Member-wise; nothing is reported and no group learns of the copy.
    CPunGps(const CPunGps&) = default;
    CPunGps& operator=(const CPunGps& other);
    ~CPunGps() override;

    /// The cloud item of a point that may be null: null in, null out.
    static CCloudItem* CloudItemOf(const CPunGps* point);

    // --- entity side, in the order of the virtual operations ------------------------------------------

    /// The point's cloud item. Inside the library CloudItemOf is used wherever the point may be null.
    CCloudItem* GetCloudItem() const override;
    void SetNome(const std::string& nome) override;
    void SetSecScri(const std::string& secScri) override;
    void DoSetCoord(double x, double y, double z) override;  // metres: easting, northing, height
    void SetCodeEgn(unsigned long code) override;
    /// Entity type number of a GPS point: 8.
    int GetUserType() override;

    // --- cloud side --------------------------------------------------------------------------------------

    /// The creator device of the owner group; -1 without one. A point has none of its own.
    int GetCloudCreatorDevId() const override;

    // --- reset ---------------------------------------------------------------------------------------------

    /// Own fields back to the values of a new point, but for owner group and PunRis32. Reports nothing.
    void AnnullaLeVarPun();

    /// The entity's fields, too.
    void AnnullaTutteLeVar();

    // --- the fix -------------------------------------------------------------------------------------------

    unsigned short GetYear() const { return Year; }
    unsigned char GetMonth() const { return Month; }
    unsigned char GetDay() const { return Day; }
    std::uint32_t GetTod() const { return Tod; }   // time of day, as delivered
    double GetHposRms() const { return HposRms; }  // metres
    double GetVposRms() const { return VposRms; }  // metres
    double GetPdop() const { return Pdop; }        // dimensionless
    double GetGdop() const { return Gdop; }        // dimensionless
    unsigned char GetNuGpsUsed() const { return NuGpsUsed; }
    unsigned char GetNuGloUsed() const { return NuGloUsed; }

    // Position and clock covariance, geocentric, square metres.
    float GetPosCov_xx() const { return PosCov_xx; }
    float GetPosCov_yy() const { return PosCov_yy; }
    float GetPosCov_zz() const { return PosCov_zz; }
    float GetPosCov_tt() const { return PosCov_tt; }
    float GetPosCov_xy() const { return PosCov_xy; }
    float GetPosCov_xz() const { return PosCov_xz; }
    float GetPosCov_xt() const { return PosCov_xt; }
    float GetPosCov_yz() const { return PosCov_yz; }
    float GetPosCov_yt() const { return PosCov_yt; }
    float GetPosCov_zt() const { return PosCov_zt; }

    double GetLat() const { return Lat; }        // degrees, north positive
    double GetLong() const { return Long; }      // degrees, east positive
    double GetElev() const { return Elev; }      // metres, phase centre above the ellipsoid
    double GetAltAnt() const { return AltAnt; }  // metres, phase centre above the ground mark
    int GetQua() const { return Qua; }           // quality code, as delivered

    bool IsPrimaryPtDup() const { return PrimaryPtDup; }
    bool IsSecondaryPtDup() const { return SecondaryPtDup; }

    /// The point's code is the entity's secondary text.
    const std::string& GetCode() const { return GetSecScri(); }

    std::uint32_t GetPunRis32() const { return PunRis32; }

    void SetYear(unsigned short year) { Set(Year, year, CHG_PUN_DATETIME); }
    void SetMonth(unsigned char month) { Set(Month, month, CHG_PUN_DATETIME); }
    void SetDay(unsigned char day) { Set(Day, day, CHG_PUN_DATETIME); }
    void SetTod(std::uint32_t tod) { Set(Tod, tod, CHG_PUN_DATETIME); }
    void SetQua(int qua) { Set(Qua, qua, CHG_PUN_QUA); }
    void SetNuGpsUsed(unsigned char n) { Set(NuGpsUsed, n, CHG_PUN_NUGPS); }
    void SetNuGloUsed(unsigned char n) { Set(NuGloUsed, n, CHG_PUN_NUGLO); }
    void SetLat(double lat) { Set(Lat, lat, CHG_PUN_LAT); }              // degrees
    void SetLong(double lon) { Set(Long, lon, CHG_PUN_LONG); }           // degrees
    void SetElev(double elev) { Set(Elev, elev, CHG_PUN_ELEV); }         // metres
    void SetAltAnt(double alt) { Set(AltAnt, alt, CHG_PUN_ALTANT); }     // metres
    void SetPdop(double pdop) { Set(Pdop, pdop, CHG_PUN_PDOP); }         // dimensionless
    void SetGdop(double gdop) { Set(Gdop, gdop, CHG_PUN_GDOP); }         // dimensionless
    void SetHposRms(double rms) { Set(HposRms, rms, CHG_PUN_HPOSRMS); }  // metres
    void SetVposRms(double rms) { Set(VposRms, rms, CHG_PUN_VPOSRMS); }  // metres

    void SetPosCov_xx(float c) { Set(PosCov_xx, c, CHG_PUN_POSCOV); }
    void SetPosCov_yy(float c) { Set(PosCov_yy, c, CHG_PUN_POSCOV); }
    void SetPosCov_zz(float c) { Set(PosCov_zz, c, CHG_PUN_POSCOV); }
    void SetPosCov_xy(float c) { Set(PosCov_xy, c, CHG_PUN_POSCOV); }
    void SetPosCov_xz(float c) { Set(PosCov_xz, c, CHG_PUN_POSCOV); }
    void SetPosCov_yz(float c) { Set(PosCov_yz, c, CHG_PUN_POSCOV); }

    // Intended: the clock terms are stored without a report. They never go to the cloud, and a report would
    // send six unchanged covariances for nothing.
    void SetPosCov_tt(float c) { StoreOnly(PosCov_tt, c); }
    void SetPosCov_xt(float c) { StoreOnly(PosCov_xt, c); }
    void SetPosCov_yt(float c) { StoreOnly(PosCov_yt, c); }
    void SetPosCov_zt(float c) { StoreOnly(PosCov_zt, c); }

    // Intended: plain stores without a report. Marks of duplicates belong to one field book.
    void SetIsPrimaryPtDup(bool dup) { PrimaryPtDup = dup; }
    void SetIsSecondaryPtDup(bool dup) { SecondaryPtDup = dup; }

    /// Through the virtual SetSecScri.
    void SetCode(const std::string& code) { SetSecScri(code); }

    void SetPunRis32(std::uint32_t value) { PunRis32 = value; }

    // --- derived coordinates (gps/coords) --------------------------------------------------------------
    //
    // Graf: latitude, longitude (degrees), ellipsoidal height (metres). Geoc: geocentric X, Y, Z (metres).
    // CeFa: phase centre. Terr: ground mark, h - antenna height. Mis: measured datum. Wgs84: WGS 84, through
    // the group's conversion. What cannot be computed gives GPS_VAL_UNSET in all three outputs.

    /// Phase centre in WGS 84; the stored values are handed to the conversion untested.
    void GetGrafWgs84(double& lat, double& lon, double& h);

    /// Stores the phase centre from geocentric coordinates, when at least one of them is set.
    /// Intended: nothing is reported; a caller that wants the change published reports it itself.
    void SetGeocCeFaMis(double x, double y, double z);

    void GetGeocCeFaMis(double& x, double& y, double& z);
    void GetGeocCeFaWgs84(double& x, double& y, double& z);
    void GetGeocTerrMis(double& x, double& y, double& z);
    void GetGeocTerrWgs84(double& x, double& y, double& z);

    /// The point's own copy of its base's position: degrees, degrees, metres. Stored as given.
    void SetGrafBase(double lat, double lon, double h);
    void GetGrafBase(double& lat, double& lon, double& h);

    /// The same through geocentric coordinates (metres), without any test.
    void SetGeocBase(double x, double y, double z);
    void GetGeocBase(double& x, double& y, double& z);

    // --- virtual reference station (gps/coords) ------------------------------------------------------------

    /// The secondary text has the tag TAG_VRS.
    bool IsPointVrs() const;

    /// Appends the tag; false, changing nothing, when it is there.
    bool SetPointAsVrs();

    /// Removes the first tag; true when there was one.
    bool ClearPointAsVrs();

    // --- project stream (gps/persist) ----------------------------------------------------------------------

    /// The point record, by the stream's version. `cloudFlag` goes to the cloud item's record.
    void SalvaInFile(ofpstream& out, bool cloudFlag);

    /// Reads a point record. Nothing is reported; fields that the stream's version does not have stay.
    void LeggeDaFile(ifpstream& in);

    // --- order by name -----------------------------------------------------------------------------------

    bool operator==(const CPunGps& other) const { return GetNome() == other.GetNome(); }
    bool operator<(const CPunGps& other) const { return GetNome() < other.GetNome(); }

private:
    friend class CLibGps;
    friend class CGpsPntCloudTable;  // whose add records name the group
    friend struct CPunGpsLayout;     // lets a test look at the order of the fields

    template <class T>
    static bool StoreOnly(T& field, T value) {
        if (!(field != value)) return false;
        field = value;
        return true;
    }

    template <class T>
    void Set(T& field, T value, std::uint32_t flag) {
        if (StoreOnly(field, value)) CloudItemChanged(flag);
    }

    // Whether any point ever got another owner by assignment; until then a point stands in its owner's list,
    // and the field book need not look.
    static std::atomic<bool> ownersAssigned_;

    CGrpGps* Group;
    unsigned short Year;
    unsigned char Month;
    unsigned char Day;
    std::uint32_t Tod;
    double HposRms;  // metres
    double VposRms;  // metres
    double Pdop;
    double Gdop;
    unsigned char NuGpsUsed;
    unsigned char NuGloUsed;
    float PosCov_xx, PosCov_yy, PosCov_zz, PosCov_tt;  // square metres
    float PosCov_xy, PosCov_xz, PosCov_xt, PosCov_yz, PosCov_yt, PosCov_zt;
    double Lat;     // degrees
    double Long;    // degrees
    double Elev;    // metres
    double AltAnt;  // metres
    int Qua;
    double GrafBase[3];  // degrees, degrees, metres
    bool PrimaryPtDup;
    bool SecondaryPtDup;
    std::uint32_t PunRis32;
};
