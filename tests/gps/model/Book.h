// Book: a field book in a cloud project, as most tests of it need one.
#pragma once

#include <initializer_list>

#include "gps/model/CLibGps.h"
#include "platform/coord/CLibMap.h"
#include "platform/entity/CCloudManager.h"
#include "platform/entity/CCloudProject.h"
#include "tests/host/entity/CloudParts.h"

namespace test {

/// Tables, project and book in the order in which a host makes them.
struct Book {
    explicit Book(long long drawing = 0) : lib(&project, nullptr, nullptr, &map, drawing) {
        project.SetGpsTables(&bases, &points);
    }

    /// Groups with the given numbers of points.
    void Fill(std::initializer_list<int> sizes) {
        for (const int size : sizes) {
            lib.AddGrp(false);
            for (int i = 0; i < size; ++i) lib.AddPun(lib.GetGrpArSize() - 1, false);
        }
    }

    Table bases{CCloudTable::tabGpsBase};
    Table points{CCloudTable::tabGpsPnt};
    CCloudProject project;
    CLibMap map;
    CLibGps lib;
};

/// This device has another id while it lives.
class DeviceId {
public:
    explicit DeviceId(int id) : before_(CCloudManager::GetInstance()->GetDevId()) {
        CCloudManager::GetInstance()->SetDevId(id);
    }
    ~DeviceId() { CCloudManager::GetInstance()->SetDevId(before_); }
    DeviceId(const DeviceId&) = delete;
    DeviceId& operator=(const DeviceId&) = delete;

private:
    int before_;
};

}  // namespace test
