#include "apps/gpsbook/stations/UsedStations.h"

#include <iostream>

#include "apps/gpsbook/commands/ConvertSummary.h"

namespace gpsbook {

const StationsInUse& UsedStations() {
    static bool told = false;
    const StationsInUse& used = GetStationsInUse();
    for (const StationFile& file : used.set.files) {
        if (told || file.problems.empty()) continue;
        std::cerr << "note: " << file.path << ": "
                  << Counted(static_cast<std::int64_t>(file.problems.size()), "line")
                  << " cannot be used; gpsbook stations check tells why\n";
    }
    told = true;
    return used;
}

}  // namespace gpsbook
