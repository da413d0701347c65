// CNotifyDataGPS: a payload for notifications about GPS data.
#pragma once

#include <cstdint>

#include "gps/GpsExport.h"
#include "platform/base/VEXNotifyObject.h"

/// Two numbers whose meaning is the host's: the library's own notification carries no payload.
class GPS_API CNotifyDataGPS : public VEXNotifyObject::CNotifyData {
public:
    CNotifyDataGPS(std::int32_t data1, std::int32_t data2) : nData1(data1), nData2(data2) {}
    CNotifyDataGPS(const CNotifyDataGPS&) = default;
    CNotifyDataGPS& operator=(const CNotifyDataGPS&) = default;
    ~CNotifyDataGPS() override;

    std::int32_t nData1;
    std::int32_t nData2;
};
