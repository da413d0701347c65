// GPS_API: what the field book library exports. Everything else of it stays hidden.
#pragma once

#if defined(_WIN32)
#define GPS_API
#else
#define GPS_API __attribute__((visibility("default")))
#endif
