// CGpsPntCloudTable: the cloud table of GPS points.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

#include "gps/GpsExport.h"
#include "gps/model/CPunGps.h"
#include "platform/entity/CCloudTable.h"

class CGpsBaseCloudTable;  // NOLINT(cppcoreguidelines-virtual-class-destructor)

/// For the points what CGpsBaseCloudTable is for the groups, with records "UPTGPS" and "IPTGPS". A new point
/// names its group through the base table.
class GPS_API CGpsPntCloudTable : public CCloudTable {  // NOLINT(cppcoreguidelines-virtual-class-destructor)
public:
    /// `base`: the base table of the same project; it outlives this one.
    explicit CGpsPntCloudTable(CGpsBaseCloudTable* base);

    // --- in the order of the virtual operations -------------------------------------------------------

    void GenerateCommitString_Change(vex::String& records) override;
    void GenerateCommitString_Add(int& counter, vex::String& records) override;

    /// A reply of two fields, as for groups.
    bool UpdateSuccessful_Del(const std::vector<vex::String>& reply) override;

    /// A reply of 29 fields: a new point of a known group, or the fields of a known one that were not changed
    /// here. A known point stays in its group, whatever the reply says. Notifies the book (1, 1). False,
    /// changing nothing: when the reply is not of 29 fields, or one of its two ids is none; for a new point
    /// also when there is no book or base table, its group is not here, or there is no memory to make it.
    /// When memory ends while fields are stored: as for groups.
    bool UpdateSuccessful_Edit(const std::vector<vex::String>& reply) override;

    CCloudItem* Merge(CCloudItem* item) override;

    // --- single fields, as in CGpsBaseCloudTable -----------------------------------------------------

    void GetFields(CPunGps& point, std::uint32_t mask, vex::String& text);
    void SetFields(CPunGps& point, std::uint32_t bit, const vex::String* fields);

protected:
    /// Appends ";" and a covariance (square metres) as a whole number of 1e-9 square metres: at most 1 square
    /// metre, cut towards zero, 32 bits. Intended: there is no lower limit. Returns the new end of the line.
    char* ConcatCovarianceValue(char* line, float covariance);

    void SaveTmpItems(const std::vector<CCloudItem*>& more, const std::set<CCloudItem*>& others) override;

private:
    char* AppendFields(char* end, const CPunGps& point, std::uint32_t mask);
    bool AddFromReply(long long id, long long groupId, const std::vector<vex::String>& reply);

    CGpsBaseCloudTable* base_;
};
