// ConvCoordReply: a coordinate conversion from a reply's fields.
#pragma once

#include "gps/cloud/CGpsBaseCloudTable.h"

/// Reads the 70 fields of a conversion, from `first` on.
CGpsBaseCloudTable::TConvCoordValues ConvCoordFromReply(const vex::String* first);
