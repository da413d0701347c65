// FCalcCoord...: plane coordinates of a group or of the whole field book, from the fixes.
#pragma once

#include "gps/GpsExport.h"

class CLibGps;
class VEXNotifySource;

/// Recomputes the plane coordinates of the base of group g and of all its points, in the order of the list.
///
/// Nothing of a group without a valid conversion is touched. Else the base gets coordinates when the group is
/// not coded NE and its four base values are set, and a point when neither the group nor the point is coded
/// NE and its four values are set; in every other case, and when the conversion fails, the coordinates become
/// unset. Intended: a group coded NE clears the coordinates of all its points, whatever their own codes.
/// Messages of the conversion are off meanwhile and on afterwards, and the field book is marked modified in
/// every case. A g outside, or a null field book: nothing at all.
GPS_API void FCalcCoordGrpGps(CLibGps* book, int g);

/// The same for every group, first to last. A field book without groups is not marked modified.
/// `source` is not used: the signature is that of the host's callbacks.
GPS_API void FCalcCoordLibGps(CLibGps* book, VEXNotifySource* source);
