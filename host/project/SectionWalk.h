// SectionWalk: goes through a GPS section record by record and keeps nothing.
#pragma once

#include <cstdint>
#include <string>

class ifpstream;

namespace gpsproject {

/// A record of the section: a group (point -1), a point, or something that stands once.
struct SectionRecord {
    int group = -1;
    int point = -1;
    const char* name = "";   // of what stands once
    std::int64_t begin = 0;  // in the section
    std::int64_t end = 0;

    /// "group 3, point 17", "field-book options".
    std::string Text() const;
};

class SectionListener {
public:
    virtual ~SectionListener() = default;

    /// The record has been read, as far as it is there.
    virtual void Record(const SectionRecord& record) = 0;
};

/// Reads a whole section the way the field book does, into one group and one point that are used again and
/// again. What the stream does at its end (StreamExhausted) passes through.
/// Returns the number of groups and points.
std::int64_t WalkSection(ifpstream& in, SectionListener* listener);

}  // namespace gpsproject
