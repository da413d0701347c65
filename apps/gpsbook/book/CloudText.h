// CloudText: what a book and its shared project differ in, for people.
#pragma once

#include <cstddef>
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

/// What the two values of a conflict about a field are now.
struct ConflictValues {
    bool here = false;  // the item is in the book; else `mine` is the value that it had
    bool same = false;  // both are
    TwoValues words;
};
ConflictValues ValuesOf(gpsproject::Project& project, const gpsproject::CloudConflict& conflict);

/// What a conflict is about: its place in the book, or what it was called: "Quay/P1".
std::string ConflictItem(gpsproject::Project& project, const gpsproject::CloudConflict& conflict);

/// A conflict in one line, which begins with its number and ends with a line break. "Here" is what stands in
/// the book now.
std::string ConflictLine(gpsproject::Project& project, const gpsproject::CloudConflict& conflict);

/// The first lines of a list, and how many there are besides; `line` tells one item, without line break.
template <class Items, class Line>
std::string FirstLines(const Items& items, const Line& line) {
    constexpr std::size_t most = 20;
    std::string text;
    std::size_t told = 0;
    for (const auto& item : items) {
        if (told++ == most) break;
        text += "    " + line(item) + '\n';
    }
    if (items.size() > most)
        text += "    ... and " + std::to_string(items.size() - most) + " more; --json tells all\n";
    return text;
}

/// A record that was refused: "point P1", "group Quay (id 4)", "group (id 4)".
std::string RefusedItem(const gpsproject::CloudRefusal& refusal);

}  // namespace gpsbook
