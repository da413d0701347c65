// CloudTables: a book's two cloud tables, and the cloud project that they make.
#pragma once

#include "gps/cloud/CGpsBaseCloudTable.h"
#include "gps/cloud/CGpsPntCloudTable.h"
#include "platform/entity/CCloudProject.h"

namespace gpsproject {

/// Made before the book and destroyed after it. A book that is not shared has a cloud project without tables.
struct CloudTables {
    CGpsBaseCloudTable base;
    CGpsPntCloudTable points{&base};
    CCloudProject project{false};

    bool IsLinked() const { return project.IsCloud(); }

    /// From now on, items of the book belong to the tables.
    void Link() {
        project.SetGpsTables(&base, &points);
        project.SetCloud(true);
    }
};

}  // namespace gpsproject
