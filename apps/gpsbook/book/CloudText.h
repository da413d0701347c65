// CloudText: what a book and its shared project differ in, for people.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/project/Project.h"

namespace gpsbook {

/// "group", "point"
const char* KindText(gpsproject::CloudKind kind);

/// Names of the fields whose change bits are in a mask, in the order of bits.
std::vector<std::string> FieldNames(gpsproject::CloudKind kind, std::uint32_t mask);

/// Two values of the fields of one change bit.
struct TwoValues {
    std::string mine, theirs;
};

/// Values as records hold them, joined by ';', in words: times as times, covariances in square metres, what
/// has no value as "unset". Of several fields those that differ, each with its name.
TwoValues InWords(gpsproject::CloudKind kind, std::uint32_t bit, const TwoValues& values);

/// What a conflict is about: its place in the book, or what it was called: "Quay/P1".
std::string ConflictItem(gpsproject::Project& project, const gpsproject::CloudConflict& conflict);

/// A conflict in one line, which begins with its number and ends with a line break.
std::string ConflictLine(gpsproject::Project& project, const gpsproject::CloudConflict& conflict);

/// A record that was refused: "point P1", "group (id 4)".
std::string RefusedItem(const gpsproject::CloudRefusal& refusal);

}  // namespace gpsbook
