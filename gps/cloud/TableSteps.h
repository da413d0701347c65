// TableSteps: what both cloud tables do alike.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <set>
#include <vector>

#include "gps/cloud/CommitLine.h"
#include "gps/cloud/FieldLayout.h"
#include "gps/model/CLibGps.h"
#include "platform/base/vexString.h"
#include "platform/entity/CCloudTable.h"

/// The field book whose items a table holds; null before the host has named it.
inline CLibGps* BookOf(const CCloudTable& table) { return static_cast<CLibGps*>(table.GetOwner()); }

// The tables hold items of their own kind only; null stays null.
inline CGrpGps* GrpOf(CCloudItem* item) { return static_cast<CGrpGps*>(item); }
inline CPunGps* PunOf(CCloudItem* item) { return static_cast<CPunGps*>(item); }

/// Tells the field book's listeners that a reply was applied.
inline void NotifyReply(CLibGps* book) {
    if (book) book->Notify(1, 1, nullptr);
}

/// While it lives an item reports no change: what comes from elsewhere is not to be sent.
class ReportsOff {
public:
    explicit ReportsOff(CCloudItem& item) : item_(item) { item_.SetCloudNotify(false); }
    ~ReportsOff() { item_.SetCloudNotify(true); }
    ReportsOff(const ReportsOff&) = delete;
    ReportsOff& operator=(const ReportsOff&) = delete;

private:
    CCloudItem& item_;
};

/// Makes room for what is left, once there are enough records to tell by: growing step by step moves a large
/// commit several times, which costs half as much as writing it.
inline void ReserveByMean(vex::String& records, std::size_t written, std::size_t left) {
    constexpr std::size_t kMost = 1024;  // a few very long texts are not the measure of a million
    const std::size_t mean = std::min(records.View().size() / written, kMost);
    const std::size_t wanted = records.View().size() + left * (mean + mean / 8);
    if (wanted <= static_cast<std::size_t>(std::numeric_limits<int>::max()))
        records.Reserve(static_cast<int>(wanted));
}

/// Replaces `records` by one record for each item, "\r\n" between two. `textBytes` tells how long an item's
/// texts are, `append` builds its record at the line's beginning and returns the end.
template <class Items, class TextBytes, class Append>
void WriteRecords(vex::String& records, const Items& items, TextBytes textBytes, Append append) {
    constexpr std::size_t kEnough = 64;
    records.Empty();
    CommitLine line;
    std::size_t left = items.size();
    for (CCloudItem* item : items) {
        char* end = append(line.Begin(textBytes(item)), item);
        if (--left > 0) end = AppendBytes(end, "\r\n");
        records += line.UpTo(end);
        if (items.size() - left == kEnough) ReserveByMean(records, kEnough, left);
    }
}

/// The beginning of a change record: tag, id and mask, which is printed as a signed number.
inline char* BeginChange(char* line, const char* tag, const CCloudItem& item) {
    char* end = AppendBytes(line, tag);
    end = AppendInt(end, item.GetCloudId());
    return AppendInt(end, static_cast<std::int32_t>(item.GetCloudFlag()));
}

/// Stores the fields of a reply in an item that is known here, but not those changed here since the last
/// confirmation. `setFields` stores the fields of one bit.
template <std::size_t N, class SetFields>
void StoreUnchanged(CCloudItem& item, const std::array<FieldGroup, N>& layout,
                    const std::vector<vex::String>& reply, SetFields setFields) {
    const ReportsOff off(item);
    const std::uint32_t mask = item.GetCloudFlag();
    for (const FieldGroup& field : layout)
        if ((mask & field.bit) == 0) setFields(field.bit, reply.data() + field.first);
}

/// Writes items in the order of what waits: those handed in, then the table's own. An item that stands in
/// more than one place is written once for each.
template <class Write>
void WriteWaiting(const CCloudTable& table, const std::vector<CCloudItem*>& more,
                  const std::set<CCloudItem*>& others, Write write) {
    for (CCloudItem* item : more) write(item);
    for (CCloudItem* item : others) write(item);
    for (CCloudItem* item : table.GetAdded()) write(item);
    for (CCloudItem* item : table.GetChanged()) write(item);
}
