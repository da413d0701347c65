// StringResources: the texts that the library itself shows.
#pragma once

/// The name of the list of GPS display options, "Entità GPS".
inline constexpr unsigned kStrOpzListGps = 10300;

/// Copies a text of the library, Italian, in UTF-8, into a buffer of `size` bytes, always with a terminator
/// (unless size < 1), and returns its length without it. A text that is too long is cut between characters.
/// An unknown id gives the empty text and 0.
int LoadStringGps(unsigned id, char* buffer, int size);
