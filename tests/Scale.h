// How much work a property test does: all of it with `scripts/test --full`, a tenth otherwise.
#pragma once

#include <cstdlib>

/// `full` when the environment variable GPS_TEST_FULL is set, else a tenth of it.
inline long Scaled(long full) { return std::getenv("GPS_TEST_FULL") ? full : full / 10; }
