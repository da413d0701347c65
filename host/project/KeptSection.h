// KeptSection: a section that this program does not know, and saves as it was.
#pragma once

#include <cstdint>
#include <string>

namespace gpsproject {

struct KeptSection {
    std::string name;
    short version = 0;
    std::int64_t items = 0;
    std::string content;
};

}  // namespace gpsproject
