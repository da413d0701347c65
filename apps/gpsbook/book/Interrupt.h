// Interrupt: ends long work in good order when the user or the system asks for it.
#pragma once

namespace gpsbook {

/// From now on SIGINT and SIGTERM are noted, unless they are ignored; the second one ends the program at
/// once.
void WatchForInterrupt();

/// Whether the program has been asked to end: for work that ends well at any time.
bool IsAskedToEnd();

/// To be called again and again during long work.
/// Errors: CommandError (exitFailure) when the program has been asked to end; what is half done is removed on
/// the way out.
void CheckInterrupt();

}  // namespace gpsbook
