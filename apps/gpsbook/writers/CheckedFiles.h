// CheckedFiles: files that GDAL writes through us, so that no failed write goes unnoticed.
#pragma once

#include <cstdint>
#include <string>

namespace gpsbook {

/// Some of GDAL's drivers do not look at what becomes of their writes: on a full disk they leave a cut file
/// and report success. Names under this file system reach the real file, and failures are counted.
class CheckedFiles {
public:
    /// The name under which GDAL opens the file `path`.
    static std::string NameOf(const std::string& path);

    /// How many writes have failed in this program so far, to any of these files.
    static std::int64_t Failures();
};

}  // namespace gpsbook
