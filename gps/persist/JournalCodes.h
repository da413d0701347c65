// JournalCodes: the kinds of journal entries that the field book writes.
#pragma once

inline constexpr int kTmpGrpGps = 3001;  // changed group
inline constexpr int kTmpPunGps = 3002;  // changed point
inline constexpr int kDelGrpGps = 3011;  // deleted group
inline constexpr int kDelPunGps = 3012;  // deleted point
