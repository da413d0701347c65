// FindFromHint: the place of a pointer in a list, looked for around where it was last.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

/// Position of `item` in `list`, -1 when it is not there. The search starts at `hint` and goes outward, so it
/// costs as many steps as the item has moved since. An item stands in a list once at most, so that the answer
/// is that of a scan from 0. Only pointers are compared: `item` may be a dangling one.
template <class T>
int FindFromHint(const std::vector<T*>& list, const T* item, int hint) {
    const auto size = static_cast<std::ptrdiff_t>(list.size());
    if (size == 0) return -1;
    std::ptrdiff_t up = std::clamp<std::ptrdiff_t>(hint, 0, size - 1);
    if (list[static_cast<std::size_t>(up)] == item) return static_cast<int>(up);
    std::ptrdiff_t down = up - 1;
    ++up;
    while (up < size && down >= 0) {
        if (list[static_cast<std::size_t>(up)] == item) return static_cast<int>(up);
        if (list[static_cast<std::size_t>(down)] == item) return static_cast<int>(down);
        ++up;
        --down;
    }
    for (; up < size; ++up)
        if (list[static_cast<std::size_t>(up)] == item) return static_cast<int>(up);
    for (; down >= 0; --down)
        if (list[static_cast<std::size_t>(down)] == item) return static_cast<int>(down);
    return -1;
}
