// CommitRecords: what a commit's text says, record by record.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/cloud/ItemFields.h"
#include "host/cloud/Value.h"

namespace gpssync {

struct CommitRecord {
    enum class Act : std::uint8_t { unknown, change, add, remove };

    Act act = Act::unknown;
    CloudKind kind = CloudKind::point;
    std::int64_t id = 0;      // of what is changed or deleted
    std::int64_t parent = 0;  // of an added point: a group's id, or -k: the k-th added record
    std::uint32_t mask = 0;   // which fields follow; all of them in an added record
    Values values;            // a place for every field of the kind; what the mask leaves out means nothing
    bool hasMapDatum = true;  // false: the datum selected in the map library was left out
    std::string wrong;        // why the record cannot be taken; empty: it is as it should be
};

/// Goes through the records of a commit in their order.
class CommitReader {
public:
    explicit CommitReader(std::string_view records) : rest_(records), more_(!records.empty()) {}

    /// The next record; false: there are no more. A record that is wrong says why; whether it is an added one
    /// is told even then. The memory of `record` is used again.
    bool Next(CommitRecord& record);

private:
    std::string_view rest_;
    bool more_;
};

}  // namespace gpssync
