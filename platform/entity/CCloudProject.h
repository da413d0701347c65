// CCloudProject: the tables of a project that is shared in the cloud.
#pragma once

#include "platform/base/PlatformExport.h"
#include "platform/base/vexString.h"

class CCloudTable;

/// Holds, without owning them, the tables of a project. The recommended order at the end: the field book
/// goes first, the project after it.
class GPS_PLATFORM_API CCloudProject {
public:
    /// `isCloud` false: a project that has tables but is not linked to a cloud (yet).
    explicit CCloudProject(bool isCloud = true) : isCloud_(isCloud) {}

    bool IsCloud() const { return isCloud_; }
    void SetCloud(bool isCloud) { isCloud_ = isCloud; }

    /// Both may be null.
    void SetGpsTables(CCloudTable* base, CCloudTable* points) {
        base_ = base;
        points_ = points;
    }
    CCloudTable* GetGpsBaseTable() const { return base_; }
    CCloudTable* GetGpsPntTable() const { return points_; }

    /// Replaces `records` by those of one commit, "\r\n" between two. What changed comes first, then what is
    /// new, then what was deleted, each time the bases before the points: a new point names a new base by
    /// its number among the additions. Nothing without tables.
    void GenerateCommit(vex::String& records);

private:
    bool isCloud_;
    CCloudTable* base_ = nullptr;
    CCloudTable* points_ = nullptr;
};
