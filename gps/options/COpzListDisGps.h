// COpzListDisGps: how the GPS entities of a field book are drawn.
#pragma once

#include "gps/GpsExport.h"
#include "platform/entity/COpzListDisEgn.h"

class COpzDisGrpGps;
class COpzDisPunGps;

/// The list "Entità GPS" (in UTF-8), of type 2, with two normal entries: "Punti GPS" at position 0 and
/// "Basi GPS" at position 1. Its settings, and those of its entries, begin with "DIS-GPS".
class GPS_API COpzListDisGps : public COpzListDisEgn {
public:
    /// Makes the list and its entries and reads the settings. `parent` may be null.
    explicit COpzListDisGps(COpzListDisEgn* parent);

    /// The two pointers to the entries are copied as they are: in a copy they lead to entries of the source,
    /// and nowhere once it is gone. Intended; nothing looks through them.
    COpzListDisGps(const COpzListDisGps&) = default;
    COpzListDisGps& operator=(const COpzListDisGps&) = default;
    ~COpzListDisGps() override;

    COpzListDisEgn* Clone() const override;

    /// The normal entries at positions 0 and 1, which the host may have exchanged.
    COpzDisEgn& GetOpzPun() { return GetOpzNor(0); }
    COpzDisEgn& GetOpzGrp() { return GetOpzNor(1); }

    /// The base's record: the form of old files below version 742, the full form from there on.
    void SalvaInFile(ofpstream& out, short version, CSymbolUsedTracer* tracer) const;

    /// Takes the whole record; values change only with `load`. Below version 720 entries are found by their
    /// position, from there on by their name. The two versions differ on purpose.
    void LeggeDaFile(ifpstream& in, bool load, short version);

private:
    friend struct COpzListDisGpsLayout;  // lets a test look at the pointers

    COpzDisPunGps* opzPun_;
    COpzDisGrpGps* opzGrp_;
};
