// CGpsBaseCloudTable: the cloud table of GPS bases.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "gps/GpsExport.h"
#include "gps/cloud/ConvCoordValues.h"
#include "gps/model/CGrpGps.h"
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
    CGpsBaseCloudTable();

    // --- in the order of the virtual operations
    // -------------------------------------------------------------

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
    /// creator device below 1, or the group could not be made.
    bool UpdateSuccessful_Edit(const std::vector<vex::String>& reply) override;

    /// Fills the empty fields, of those that no record carries, of the group with the item's id from the
    /// item's group; null when there is none. The local side always wins.
    CCloudItem* Merge(CCloudItem* item) override;

    // --- single fields, for the sync of a host
    // -----------------------------------------------------------------

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
