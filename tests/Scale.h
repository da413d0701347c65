// How much work a property test does: all of it with `scripts/test --full`, a tenth otherwise.
#pragma once

#include <cstdlib>

/// `full` when the environment variable GPS_TEST_FULL is set, else a tenth of it.
inline long Scaled(long full) { return std::getenv("GPS_TEST_FULL") ? full : full / 10; }

/// The same for tests that simulate whole sessions: under the address sanitizer, which makes them several
/// times slower, a fifth of the tenth.
inline long ScaledSessions(long full) {
#ifdef __SANITIZE_ADDRESS__
    return std::getenv("GPS_TEST_FULL") ? full : full / 50;
#else
    return Scaled(full);
#endif
}
