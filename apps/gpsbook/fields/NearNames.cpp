#include "apps/gpsbook/fields/NearNames.h"

#include <algorithm>
#include <cstddef>

namespace gpsbook {

namespace {

constexpr std::size_t kMost = 3;
constexpr std::size_t kLongest = 64;  // bytes; names that long are not mistyped, they are copied

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Bytes to insert, remove, replace or exchange with their neighbour, case aside.
int Distance(std::string_view a, std::string_view b) {
    int rows[3][kLongest + 1];
    for (std::size_t j = 0; j <= b.size(); ++j) rows[0][j] = static_cast<int>(j);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        int* row = rows[i % 3];
        const int* last = rows[(i + 2) % 3];
        const int* lastButOne = rows[(i + 1) % 3];
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = Lower(a[i - 1]) == Lower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            const bool exchanged =
                i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) && Lower(a[i - 2]) == Lower(b[j - 1]);
            if (exchanged) row[j] = std::min(row[j], lastButOne[j - 2] + 1);
        }
    }
    return rows[a.size() % 3][b.size()];
}

}  // namespace

void NearNames::Consider(const std::string& name) {
    if (name.empty() || name.size() > kLongest || wanted_.size() > kLongest) return;
    const int distance = Distance(wanted_, name);
    const int most = static_cast<int>(std::max<std::size_t>(1, std::min(wanted_.size(), name.size()) / 3));
    if (distance > most) return;
    for (const Found& found : found_)
        if (found.name == name) return;
    const auto before = [](const Found& x, const Found& y) { return x.distance < y.distance; };
    const Found found{distance, name};
    found_.insert(std::upper_bound(found_.begin(), found_.end(), found, before), found);
    if (found_.size() > kMost) found_.pop_back();
}

std::vector<std::string> NearNames::Names() const {
    std::vector<std::string> names;
    for (const Found& found : found_) names.push_back(found.name);
    return names;
}

std::string NearNames::Question() const {
    std::string text;
    for (std::size_t i = 0; i < found_.size(); ++i) {
        const bool last = i + 1 == found_.size();
        text += (i == 0 ? "; is it " : last ? " or " : ", ") + found_[i].name;
    }
    return text.empty() ? text : text + "?";
}

}  // namespace gpsbook
