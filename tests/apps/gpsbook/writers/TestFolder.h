// What the tests of writers need: a folder of their own, files that cannot grow, and rows to write.
#pragma once

#include <sys/resource.h>

#include <csignal>
#include <string>

#include "apps/gpsbook/writers/PointRow.h"
#include "tests/TempFolder.h"

namespace gpsbook {

using TestFolder = ::test::TempFolder;

/// While it lives no file can grow beyond `bytes`: writing fails as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

inline std::string ReadFile(const std::string& path) { return ::test::FileBytes(path); }
inline void WriteFile(const std::string& path, const std::string& text) {
    ::test::WriteFileBytes(path, text);
}

/// A row with a value in every column.
inline PointRow FullRow() {
    PointRow row;
    row.group = "Grüppe 1";
    row.name = "P\"1\" ß漢";
    row.code = "čep,x";
    row.year = 2018;
    row.month = 10;
    row.day = 4;
    row.todMs = 45471123;  // 12:37:51.123
    row.lat = 45.123456789;
    row.lon = 11.987654321;
    row.h = 123.4567;
    row.antenna = 2.0;
    row.east = 733000.1234;
    row.north = 5001000.9876;
    row.height = 80.4321;
    row.quality = 4;
    row.gps = 8;
    row.glonass = 5;
    row.pdop = 1.25;
    row.hrms = 0.0123;
    row.vrms = 0.0456;
    return row;
}

/// A row with a name and nothing else.
inline PointRow BareRow() {
    PointRow row;
    row.name = "bare";
    return row;
}

}  // namespace gpsbook
