// COriData: the orientation data of a project. Opaque to the field book, which only hands it on.
#pragma once

#include "platform/base/PlatformExport.h"

/// Nobody but the host looks into it; the open host has no orientation data, so it is empty here.
class GPS_PLATFORM_API COriData {};
