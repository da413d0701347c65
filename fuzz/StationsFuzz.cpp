// Tables of stations: whatever the bytes are, what is read can be written and read again.
#include <cstdlib>
#include <string_view>

#include "fuzz/Fuzz.h"
#include "host/coord/StationTable.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const StationTable table = ReadStationTable({reinterpret_cast<const char*>(data), size});
    const StationTable again = ReadStationTable(WriteStationTable(table.stations));
    if (!again.problems.empty() || again.stations != table.stations) std::abort();
    return 0;
}
