// CConvCoord: a survey's coordinate conversion, from fixes to the project's plane and back.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "platform/base/streams.h"
#include "platform/coord/CConvAltez.h"
#include "platform/coord/CConvLocal.h"
#include "platform/coord/CConvPart.h"
#include "platform/coord/CDatumConv.h"
#include "platform/coord/CEllissoide.h"

class CCloudItem;
class CLibMap;
class CMotoreConv;

/// A chain of links, each of which can be the identity:
///
///   measured datum -> WGS 84 -> the project's datum -> plane projection -> local roto-translation -> height
///
/// * Measured datum: see GetTpDtBaseGps.
/// * The project's datum: selected in the map library by settings S3, S4, S5, when flag B is set; it lies on
/// the
///   ellipsoid of S2. Without B latitude, longitude and height stay as they are.
/// * Plane projection "by definition": from WGS 84 to that system, whose datum step is part of it; B and S2
///   play no part.
/// * Height: the antenna height comes off first, along the ellipsoid's normal, so that the ground mark is
/// what
///   goes through the chain; then CConvAltez.
///
/// Units: degrees (latitude north, longitude east positive) and metres everywhere.
/// Accuracy: each link's own; there and back within 0.01 mm, or no way back. Nothing is allocated per call
/// once a conversion has been used; what a chain needs is prepared at the first use after a change.
///
/// Changes of its values and of those of its parts are reported to the cloud item it was made with
/// (CCloudItem::ConvCoordChanged), on a real difference; never by construction, copy or assignment, and never
/// for the map library, which all groups share.
class GPS_PLATFORM_API CConvCoord : private CConvPart::Whole {
public:
    /// Numbers of the integer settings S1 to S10. Those without a name are the host's, carried unchanged.
    enum : int {
        impPronta = 1,      // S1: not 0 when the conversion is set up (IsConvCoordReady)
        impEllissoide = 2,  // S2: ellipsoid of the project's datum, see GetEllissoide
        impDatSel1 = 3,     // S3, S4: list of the project's datum in the map library
        impDatSel2 = 4,
        impDatIndice = 5,  // S5: its index
        IMP_MAX = 10
    };

    /// Ellipsoids of S2.
    enum : int {
        ellWgs84 = 0,
        ellGrs80 = 1,
        ellInternazionale1924 = 2,
        ellBessel1841 = 3,
        ellClarke1866 = 4,
        ellClarke1880Rgs = 5,
        ellAiry1830 = 6,
        ellKrassowsky1940 = 7,
        ellAustraliano = 8,
        ellGrs67 = 9,
        ellProprio = 100  // semi-major axis R1 (metres) and inverse flattening R2
    };

    /// Types of the measured datum. Any other type, or dtLibreria without a map library, makes every
    /// computation fail: fixes are not taken for WGS 84 that may be hundreds of metres from it.
    enum : int {
        dtWgs84 = 0,    // fixes are in WGS 84
        dtProprio = 1,  // in the conversion's own datum, GetConvDtBaseGps
        dtLibreria = 2  // in that of the map library, by the library's type
    };

    /// Both may be null: without a map library there is no project datum to select, without an item nobody is
    /// told of changes. They must outlive the conversion.
    explicit CConvCoord(CLibMap* map = nullptr, CCloudItem* item = nullptr);

    /// Copies the values and the map library; the copy reports to nobody.
    CConvCoord(const CConvCoord& other);

    /// Copies the values; map library and cloud item stay those of the target. Nothing is reported.
    CConvCoord& operator=(const CConvCoord& other);
    virtual ~CConvCoord();

    /// Whether the conversion is set up: S1 is not 0.
    bool IsConvCoordReady() const { return imp_[0] != 0; }

    // --- computations: on error false, and all outputs unset ---------------------------------------------

    /// Measured datum to WGS 84, geographic.
    bool GrafBaseToGrafWgs(double lat, double lon, double h, double& latW, double& lonW, double& hW) const;

    /// Measured datum to WGS 84, geocentric.
    bool GeocBaseToGeocWgs(double x, double y, double z, double& xW, double& yW, double& zW) const;

    /// Phase centre in the measured datum and antenna height to the ground mark in the project's plane
    /// system: easting, northing, height.
    bool GrafGpsToPlanAtt(double lat, double lon, double h, double altAnt, double& east, double& north,
                          double& height) const;

    /// The inverse: the ground mark's plane coordinates and the antenna height to the phase centre.
    bool PlanAttToGrafGps(double east, double north, double height, double altAnt, double& lat, double& lon,
                          double& h) const;

    /// Switches the conversion's own messages to the user. The open host has none; it keeps the switch.
    void ShowMessage(bool show);
    bool IsShowMessage() const { return showMessage_; }

    // --- project stream ------------------------------------------------------------------------------------

    /// The conversion's record, the same in every version; see docs/formats/records.md. It also holds the
    /// values of the datum that is selected in the map library. Reading reports nothing.
    virtual void SalvaInFile(ofpstream& out, short version);
    virtual void LeggeDaFile(ifpstream& in, short version);

    /// True when the record that was read selected a datum that the map library does not have now, or has
    /// with other values: the conversion gives other coordinates than where it was saved. False again once
    /// another datum is selected.
    bool IsDatumDiverso() const;

    // --- settings ------------------------------------------------------------------------------------------

    /// S1 to S10 by number; 0 for any other number, and setting one has no effect.
    int GetImp(int k) const;
    void SetImp(int k, int value);

    /// B: the project has a datum of its own, selected in the map library.
    bool GetImpFlag() const { return flag_; }
    void SetImpFlag(bool flag);

    /// R1 (k = 1): semi-major axis, metres; R2 (k = 2): inverse flattening. Both of S2 = ellProprio. 0 for
    /// any other number.
    double GetImpReal(int k) const;
    void SetImpReal(int k, double value);

    int GetTpDtBaseGps() const { return tpDtBase_; }
    void SetTpDtBaseGps(int type);

    /// The conversion's own measured datum; always there.
    CDatumConv* GetConvDtBaseGps() { return &dtBase_; }
    const CDatumConv* GetConvDtBaseGps() const { return &dtBase_; }

    CConvLocal* GetConvLocal() { return &local_; }
    const CConvLocal* GetConvLocal() const { return &local_; }
    CConvAltez* GetConvAltez() { return &altez_; }
    const CConvAltez* GetConvAltez() const { return &altez_; }
    CLibMap* GetLibMap() const { return map_; }

    /// Semi-major axis (metres) and inverse flattening of an ellipsoid of S2. False for an unknown one; the
    /// outputs are then unchanged.
    bool GetEllissoide(double& a, double& invFlattening) const;

    /// Puts another engine behind the computations, or with null the conversion's own. Not owned, not
    /// copied, not stored.
    void SetMotore(CMotoreConv* motore) {
        motore_ = motore;
        via_ = Via::unknown;
    }

private:
    // What stands behind a computation, found again after a change.
    enum class Via : std::uint8_t {
        unknown,     // to be found again
        engine,      // SetMotore
        projection,  // the projection alone: what most jobs are, and nothing in it depends on the map library
        chain        // anything else
    };

    // Which links are not the identity; found again after a change here or in the map library.
    struct Catena {
        bool valid = false;
        std::uint64_t mapRevision = 0;
        bool baseKnown = true;                // the type of the measured datum means something here
        bool usable = false;                  // all of these are there
        const CDatumConv* base = nullptr;     // measured datum, null: WGS 84
        const CDatumConv* project = nullptr;  // project's datum, null: as WGS 84
        CEllissoide ellissoide;               // of the project's datum
        const CProiezPla::Motore* motore = nullptr;
    };

    void PartChanged() override;
    void PartAssigned() override;
    void ApplyEllissoide();
    void Bind();
    const Catena& GetCatena() const;
    void FindVia() const;
    bool GrafGpsToPlanAttVia(double lat, double lon, double h, double altAnt, double& east, double& north,
                             double& height) const;

    const CDatumConv* GetDatSelezionato() const;

    std::array<int, IMP_MAX> imp_{};
    bool flag_ = false;
    std::array<double, 2> real_{};  // metres; inverse flattening
    int tpDtBase_ = dtWgs84;
    CDatumConv dtBase_;
    CConvLocal local_;
    CConvAltez altez_;
    CLibMap* map_;
    CCloudItem* item_;
    CMotoreConv* motore_ = nullptr;
    std::shared_ptr<const CDatumConv> datLetto_;  // the selected datum as it was read; null: none was
    bool showMessage_ = true;
    mutable Via via_ = Via::unknown;
    mutable Catena catena_;
};
