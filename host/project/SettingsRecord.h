// SettingsRecord: the texts of a project, as they stand in its section.
#pragma once

#include <map>
#include <string>

class ifpstream;
class ofpstream;

namespace gpsproject {

void WriteSettings(ofpstream& out, const std::map<std::string, std::string>& settings);

/// Adds to `settings`; what a damaged stream does not hold is left out.
void ReadSettings(ifpstream& in, std::map<std::string, std::string>& settings);

}  // namespace gpsproject
