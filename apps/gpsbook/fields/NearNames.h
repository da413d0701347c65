// NearNames: what somebody may have meant by a name that does not exist.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gpsbook {

/// Collects those of many names that are most like a wanted one.
class NearNames {
public:
    explicit NearNames(std::string_view wanted) : wanted_(wanted) {}

    void Consider(const std::string& name);

    /// At most three, the nearest first; none when nothing is like it.
    std::vector<std::string> Names() const;

    /// "; is it A, B or C?", or nothing.
    std::string Question() const;

private:
    struct Found {
        int distance;
        std::string name;
    };

    std::string_view wanted_;
    std::vector<Found> found_;
};

}  // namespace gpsbook
