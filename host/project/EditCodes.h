// EditCodes: the kinds of journal entries that this host adds to those of the field book.
#pragma once

namespace gpsproject {

// The field book's own entries overwrite an item or delete it, and append what is missing. What else happens
// to a book is told by these; docs/formats/journal.md shows their payloads. 9000 is the writer's own
// (kEditGivenUp).
inline constexpr int kGroupInserted = 9001;  // in front of another one; the group's record follows
inline constexpr int kPointInserted = 9002;  // in front of another one; the point's record follows
inline constexpr int kGroupsSwapped = 9003;
inline constexpr int kPointsSwapped = 9004;
inline constexpr int kOptionsChanged = 9005;
inline constexpr int kMapChanged = 9006;
inline constexpr int kSettingsChanged = 9007;
inline constexpr int kVersionChanged = 9008;
inline constexpr int kCommitBegun = 9009;     // of a shared project, with its text
inline constexpr int kCommitAnswered = 9010;  // with the answer
inline constexpr int kPageTaken = 9011;       // with what others changed
inline constexpr int kConflictDropped = 9012;

}  // namespace gpsproject
