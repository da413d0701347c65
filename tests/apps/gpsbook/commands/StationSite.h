// StationSite: a book whose bases stand at stations, with a catalogue and settings of its own.
#pragma once

#include "tests/apps/gpsbook/commands/Site.h"

namespace gpsbook::test {

/// Group Quay 3 m beside the station Udine, which has coordinates in three frames; group Pier far from any.
class StationSite : public Site {
public:
    StationSite();

    /// With the site's catalogue and settings.
    Outcome Run(const std::vector<std::string>& arguments) const;

    /// As Site has it, and the book is the only thing that is looked at.
    void ExpectRefused(const std::vector<std::string>& arguments, int exitCode,
                       const std::string& words) const;

private:
    Surroundings around_;
};

}  // namespace gpsbook::test
