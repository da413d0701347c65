// OrNull: a group or point that memory does not suffice for.
#pragma once

#include <new>

/// What `make` makes, or null when there is no memory for it: a loader goes on without it.
template <class Make>
auto OrNull(Make make) -> decltype(make()) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
