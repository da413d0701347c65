// KeptItem: a group or point that is taken out of the book, and can be put in again.
#pragma once

#include <string>

#include "gps/model/CLibGps.h"

class CDrawingsMapper;

namespace gpsproject {

// Bytes: version (16 bits), number of groups (32), each with its record and its points, or 0 and the record
// of one point. They hold no cloud id: what is put in again is new.

std::string KeepGroup(CLibGps& book, int g);
std::string KeepPoint(CLibGps& book, int g, int p);

/// A kept group is appended to the book, with its points. False: the bytes are damaged, nothing is added.
bool PutGroupBack(CLibGps& book, const std::string& kept, CDrawingsMapper& drawings);

/// A kept point is appended to group g.
bool PutPointBack(CLibGps& book, int g, const std::string& kept);

}  // namespace gpsproject
