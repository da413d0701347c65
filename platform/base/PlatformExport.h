// Marks what a host's libraries export: everything else of them stays hidden.
#pragma once

#if defined(_WIN32)
#define GPS_PLATFORM_API
#else
#define GPS_PLATFORM_API __attribute__((visibility("default")))
#endif
