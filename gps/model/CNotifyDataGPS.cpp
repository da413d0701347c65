#include "gps/model/CNotifyDataGPS.h"

CNotifyDataGPS::~CNotifyDataGPS() = default;
