// CGpsBaseCloudTable: the cloud table of GPS bases.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "gps/GpsExport.h"
#include "gps/model/CGrpGps.h"
#include "platform/base/vexString.h"
#include "platform/entity/CCloudTable.h"

class CConvCoord;
class CDatumConv;

/// Ties the groups of one field book to a cloud project: writes those changed or added here as records
/// ("UBAS", "IBAS"), applies the server's replies, fills gaps from another copy of the project.
/// docs/formats/commit.md shows records and replies.
///
/// Its owner is the field book (CCloudTable::SetOwner); its items are groups, all of them. Not thread-safe:
/// calls come from the thread that edits the book.
class GPS_API CGpsBaseCloudTable : public CCloudTable {  // NOLINT(cppcoreguidelines-virtual-class-destructor)
public:
    /// A datum's seven parameters and origin, as a reply holds them.
    struct TDatumConvValues {
        vex::String Nome;
        bool FromStd = false;        // true: the coefficients lead from the standard datum, else to it
        double Coeff[7] = {};        // translations in metres, rotations in arc seconds, scale in ppm
        double GrafOrigine[2] = {};  // degrees: latitude, longitude
    };

    /// Settings, datums, plane and height conversion, as a reply holds them. The order is not that of a
    /// reply: there the type of the map library's datum follows the datum that is selected in the library.
    struct TConvCoordValues {
        int S1 = 0, S2 = 0, S3 = 0, S4 = 0, S5 = 0;
        double R1 = 0;  // metres
        double R2 = 0;  // inverse flattening
        bool B = false;
        int S6 = 0, S7 = 0, S8 = 0, S9 = 0, S10 = 0;
        int TpDtBaseGps = 0;
        TDatumConvValues DtBaseGps;
        int MapTpDtBaseGps = 0;
        TDatumConvValues MapDatum;      // the one selected by S3, S4, S5
        TDatumConvValues MapDtBaseGps;  // the library's own
        int TpProiezPla = 0;
        // The five values of a projection, in the units that CProiezPla tells for its type: P1, P2 degrees,
        // P3, P4 metres, P5 a factor; degrees for a cone with two parallels; the code for a definition.
        double P[5] = {};
        double CoeffLatLon[6] = {};  // origin G1, G2 degrees; O3, O4 metres; scale; angle in degrees
        int AltezTpProiezPla = 0;
        int TpCalcPt = 0;
        double H[5] = {};       // as P
        double MinQua[3] = {};  // metres, metres per metre twice
    };

    CGpsBaseCloudTable();

    // --- in the order of the virtual operations -------------------------------------------------------

    /// Of the item's group; no effect for a null item.
    void SetCloudCreatorDevId(CCloudItem* item, int devId) override;

    void GenerateCommitString_Change(vex::String& records) override;
    void GenerateCommitString_Add(int& counter, vex::String& records) override;

    /// A reply of two fields, the id in the second: the group leaves table and book, with its points.
    /// False: another number of fields, no such item, or none that the book holds; it has left the table
    /// then.
    bool UpdateSuccessful_Del(const std::vector<vex::String>& reply) override;

    /// A reply of 86 fields: a new group, or the fields of a known one that were not changed here since the
    /// last confirmation. Notifies the book (1, 1). False, changing nothing: another number of fields, id or
    /// creator device below 1; for a new group also when there is no book (SetOwner), or no memory to make
    /// it. When memory ends while fields are stored std::bad_alloc leaves, and nobody is notified: a new
    /// group is removed again, a known one keeps what was stored by then. The same reply may be applied once
    /// more.
    bool UpdateSuccessful_Edit(const std::vector<vex::String>& reply) override;

    /// Fills the empty fields, of those that no record carries, of the group with the item's id from the
    /// item's group; null when there is none. What has a value here keeps it.
    CCloudItem* Merge(CCloudItem* item) override;

    // --- single fields, for the sync of a host --------------------------------------------------------

    /// Replaces `text` by the fields of the bits in `mask`, joined by ";", as a change record has them.
    void GetFields(CGrpGps& group, std::uint32_t mask, vex::String& text);

    /// Stores the fields of one bit from a reply's texts, `fields` being the first of them (FieldLayout.h
    /// tells how many). Reported like any edit.
    void SetFields(CGrpGps& group, std::uint32_t bit, const vex::String* fields);

protected:
    /// Both append to a line that ends with a zero byte and return its new end; `line` may be that end.
    /// Nothing is appended for a null datum: the record is shorter then, on purpose.
    char* ConcatConvCoord(char* line, CConvCoord* conversion);
    char* ConcatDatumConv(char* line, CDatumConv* datum);

    void SetConvCoord(CConvCoord* conversion, const TConvCoordValues& values);
    /// Nothing for a null datum.
    void SetDatumConv(CDatumConv* datum, const TDatumConvValues& values);

    /// Writes the groups of `more`, of `others`, the added and the changed ones into the journal, each as
    /// often as it stands there.
    void SaveTmpItems(const std::vector<CCloudItem*>& more, const std::set<CCloudItem*>& others) override;

private:
    char* AppendFields(char* end, CGrpGps& group, std::uint32_t mask);
    bool AddFromReply(long long id, int creator, const std::vector<vex::String>& reply);
};
