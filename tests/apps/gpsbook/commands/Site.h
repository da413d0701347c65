// Site: a small book on disk for the tests of commands, and what a command made of it.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <string>

#include "host/project/Project.h"
#include "tests/apps/gpsbook/commands/Gpsbook.h"

namespace gpsbook::test {

/// A workplace with `site.gpsbook`: group Quay, in UTM zone 33, with points P1 to P4, one metre apart in
/// height from 63 m, antenna 2 m, quality 4, 4, 5, 4; group Pier, without a conversion, with points A and B.
class Site : public Workplace {
public:
    Site();

    /// The same with something else done to the book before it is saved.
    explicit Site(const std::function<void(gpsproject::Project&)>& alter);

    std::string Book() const { return Path("site.gpsbook"); }
    std::string Bytes() const { return Text("site.gpsbook"); }

    /// What `gpsbook show --json` tells of an address.
    nlohmann::json Show(const std::string& address) const;

    /// A field of it.
    nlohmann::json Field(const std::string& address, const std::string& field) const;

    /// Names of the groups and of the points of one, separated by blanks.
    std::string Groups() const;
    std::string Points(const std::string& group) const;

    /// Runs a command that has to fail with this exit code, say so with these words, print no result, and
    /// leave the book and its folder as they were.
    void ExpectRefused(const std::vector<std::string>& arguments, int exitCode,
                       const std::string& words) const;
};

/// The JSON that a run printed. The run has to succeed.
nlohmann::json JsonOf(const Outcome& outcome);

}  // namespace gpsbook::test
