// CCloudManager: what this installation is in the cloud.
#pragma once

#include "platform/base/PlatformExport.h"

/// One for the whole process.
class GPS_PLATFORM_API CCloudManager {
public:
    static CCloudManager* GetInstance();

    /// Id of this device: positive, one per installation. Default: 1 until the host sets it.
    int GetDevId();
    void SetDevId(int devId) { devId_ = devId; }

    /// How often the id was asked for: for tests of the open host.
    int GetDevIdCalls() const { return calls_; }

private:
    int devId_ = 1;
    int calls_ = 0;
};
