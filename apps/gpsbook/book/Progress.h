// Progress: a bar on a terminal while a long file is read.
#pragma once

#include <cstdint>
#include <string>

namespace gpsbook {

/// Draws on standard error, and only when that is a terminal and the file is long enough to wait for.
/// The line is cleared at the end.
class Progress {
public:
    /// `total` in bytes; 0: not known, nothing is drawn.
    Progress(std::string what, std::int64_t total, bool wanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(std::int64_t done);

    /// The bar as it is drawn: name, 30 cells, percent.
    static std::string Bar(const std::string& what, std::int64_t done, std::int64_t total);

private:
    std::string what_;
    std::int64_t total_;
    bool on_;
    std::int64_t shown_ = -1;  // percent
};

}  // namespace gpsbook
