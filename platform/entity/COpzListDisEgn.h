// COpzListDisEgn: the host's list of display options. Opaque to the field book so far.
#pragma once

#include "platform/base/PlatformExport.h"

/// Handed to the field book at construction. The open host draws nothing, so it is empty here.
class GPS_PLATFORM_API COpzListDisEgn {};
