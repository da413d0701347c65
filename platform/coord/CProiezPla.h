// CProiezPla: a plane projection, by type and five values or by definition.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "platform/base/PlatformExport.h"
#include "platform/base/streams.h"

/// Types of plane projections; the numbers are stored and sent.
struct TpProiezPla {
    enum : int {
        nessuna = 0,             // no projection: every conversion fails
        mercatoreTrasversa = 1,  // transverse Mercator
        lambert1SP = 2,          // Lambert conformal conic, one standard parallel
        lambert2SP = 3,          // Lambert conformal conic, two standard parallels
        stereografica = 4,       // stereographic, from the ellipsoid at once (Snyder)
        stereograficaObliqua =
            5,           // oblique stereographic, through the conformal sphere (Roussilhe, "double")
        definizione = 6  // a coordinate system by EPSG code, PROJ string or WKT
    };
};

/// The projection from an ellipsoid to the plane and back.
///
/// The five values p1 to p5:
///   lambert2SP: latitude of the first parallel, longitude of origin (degrees), false easting, false northing
///     at the first parallel (metres), latitude of the second parallel (degrees). A definition with its own
///     latitude of origin is brought into this form by SetLambert2SP.
///   definizione: p1 is the EPSG code, or 0 when the system is given by text; the others are 0.
///   all others: latitude and longitude of origin (degrees, north and east positive), false easting, false
///     northing (metres), scale factor at the origin.
///
/// Plane: x easting, y northing, metres, whatever axis order a definition has. A definition keeps its unit
/// when that is not the metre, and its signs when its axes point west or south. Geographic: degrees, on the
/// projection's ellipsoid; for "definizione" WGS 84, because the datum step belongs to the definition then.
///
/// Accuracy: that of PROJ; there and back within 1e-11 degrees near the area of use, stereographic 1e-10.
/// Projections of the same definition share what is costly to make, also between objects.
class GPS_PLATFORM_API CProiezPla {
public:
    using Values = std::array<double, 5>;

    CProiezPla();
    CProiezPla(const CProiezPla&);
    CProiezPla& operator=(const CProiezPla&);
    ~CProiezPla();

    int GetType() const { return type_; }
    const Values& GetValues() const { return p_; }

    /// Each setter returns true when something changed. Setting a type drops a definition given by text.
    bool Set(int type, const Values& values);

    /// Semi-major axis in metres, inverse flattening (0: sphere); not used by "definizione".
    bool SetEllissoide(double a, double invFlattening);
    void GetEllissoide(double& a, double& invFlattening) const {
        a = a_;
        invFlattening = rf_;
    }

    /// Lambert conformal conic with two parallels from the usual six figures: latitude and longitude of
    /// origin, latitudes of the parallels (degrees), false easting and northing at the origin (metres).
    /// Stored with p1 = lat1 and p4 = fn + y(lat1), y being the northing above the origin on the central
    /// meridian, on the ellipsoid set at that time. Returns false, changing nothing, when the figures define
    /// no projection.
    bool SetLambert2SP(double lat0, double lon0, double lat1, double lat2, double fe, double fn);

    /// A projected coordinate system: "EPSG:code", a PROJ string or WKT. Returns false, changing nothing,
    /// when the text is none; `why` then says what is wrong.
    bool SetDefinizione(const std::string& definition, std::string& why);

    /// "EPSG:code" or the text of the definition; empty for the other types.
    std::string GetDefinizione() const;

    /// True for a definition given by text, which has no place in the five values.
    bool IsDefinizioneText() const { return !text_.empty(); }

    /// The system as a text that PROJ understands as a coordinate reference system, for files that name
    /// theirs; empty without a projection.
    std::string GetSistema() const;

    /// The same as WKT (2019), for programs that do not know all that PROJ does.
    std::string GetWkt() const;

    /// Degrees, degrees, metres to easting, northing, height. On error: false, all three outputs unset.
    bool GrafToPlan(double lat, double lon, double h, double& x, double& y, double& z) const;

    /// The inverse. On error: false, all three outputs unset.
    bool PlanToGraf(double x, double y, double z, double& lat, double& lon, double& h) const;

    /// Its part of a record in a project stream; see docs/formats/records.md. Reading reports nothing.
    void SalvaInFile(ofpstream& out) const;
    void LeggeDaFile(ifpstream& in);

    /// What projections of one definition share; null when the values define none. Valid until this object
    /// changes. For the host's own conversions.
    class Motore;
    const Motore* GetMotore() const;

private:
    int type_ = TpProiezPla::nessuna;
    Values p_{};
    double a_;   // metres
    double rf_;  // inverse flattening
    std::string text_;
    mutable std::shared_ptr<const Motore> motore_;  // made at the first conversion
    mutable bool made_ = false;
};
