// Lint: what looks wrong in the contents of a book.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CLibGps;

namespace gpsbook {

/// A kind of finding: its name on the command line, and what it tells.
struct LintKind {
    const char* name;
    const char* help;
};

inline constexpr std::array<LintKind, 13> kLintKinds{{
    {"name-twice", "two groups, or two points of a group, of the same name"},
    {"name-empty", "a group or a point without a name"},
    {"text", "a text with ';', a line break or a control character, or that is not UTF-8"},
    {"range", "a value outside what can be, such as a latitude of 95 degrees"},
    {"antenna-zero", "an antenna height of 0"},
    {"antenna-differs", "an antenna height other than that of most points of the group"},
    {"unset", "no position, antenna height or time; a base of which only a part is known"},
    {"conversion", "a group with points that has no usable conversion"},
    {"plane", "plane coordinates that are missing, or do not follow from the fix"},
    {"precision", "hrms or vrms unlike the covariance, or a covariance that cannot be"},
    {"day", "a time on another day than the group's"},
    {"base-name", "a base near a permanent station, under another name"},
    {"base-frame", "a base whose frame contradicts its tag"},
}};

/// Something that looks wrong. Points of a group with the same trouble are one finding.
struct Finding {
    std::string_view kind;
    int group = -1;           // -1: groups of the book
    std::int64_t count = 0;   // of points; of groups when `group` is -1; 0: the group itself
    std::vector<int> places;  // the first few of them, by position
    std::string what;
};

/// Looks through the whole book. Errors: CommandError when the program is asked to end.
std::vector<Finding> LintBook(const CLibGps& book);

}  // namespace gpsbook
