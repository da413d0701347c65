// VEXNotifyObject: root of everything that takes part in notifications.
#pragma once

#include "platform/base/PlatformExport.h"

/// What sources of notifications have in common: they can be destroyed through it.
class GPS_PLATFORM_API VEXNotifyObject {
public:
    /// Base of what a notification may carry. The receiver looks at it during the call only.
    class GPS_PLATFORM_API CNotifyData {
    public:
        CNotifyData() = default;
        CNotifyData(const CNotifyData&) = default;
        CNotifyData& operator=(const CNotifyData&) = default;
        virtual ~CNotifyData();
    };

    VEXNotifyObject() = default;
    VEXNotifyObject(const VEXNotifyObject&) = default;
    VEXNotifyObject& operator=(const VEXNotifyObject&) = default;
    virtual ~VEXNotifyObject();
};
