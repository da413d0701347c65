// findFile: enumerating the files that match a pattern.
#pragma once

#include "platform/base/PlatformExport.h"

/// What a search found: the name without its folder.
struct WIN32_FIND_DATAA {
    char cFileName[260];
};

using HANDLE = void*;

// NOLINTNEXTLINE(misc-misplaced-const,performance-no-int-to-ptr): its value is what hosts know
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<long long>(-1));

/// Starts a search. The pattern is a folder, a separator ("/" or "\") and a name in which "*" stands for any
/// text and "?" for one character; A to Z match without regard to case. Folders and hidden files match like
/// any other, in the order that the file system gives them. A name too long for cFileName is passed over.
/// INVALID_HANDLE_VALUE when nothing matches; else `found` is the first match, and FindClose is due.
GPS_PLATFORM_API HANDLE FindFirstFileA(const char* pattern, WIN32_FIND_DATAA* found);

/// The next match; false, with `found` unchanged, after the last.
GPS_PLATFORM_API bool FindNextFileA(HANDLE search, WIN32_FIND_DATAA* found);

/// Ends a search.
GPS_PLATFORM_API bool FindClose(HANDLE search);
