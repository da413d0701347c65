// VirtualSlot: which place of the virtual table a virtual operation has.
#pragma once

#include <cstddef>
#include <cstring>

/// Place of a virtual member function in the virtual table of its class, from 0; -1 for one that is not
/// virtual. A destructor has two places. Source: the C++ ABI of GCC and Clang, "Member Function Pointers":
/// 1 + offset in the table, except on ARM, where the mark is in the second word.
template <class Member>
int VirtualSlot(Member member) {
    struct {
        std::ptrdiff_t ptr;
        std::ptrdiff_t adj;
    } words;
    static_assert(sizeof words == sizeof member);
    std::memcpy(&words, &member, sizeof words);
    constexpr auto size = static_cast<std::ptrdiff_t>(sizeof(void*));
#if defined(__arm__) || defined(__aarch64__)
    return words.adj & 1 ? static_cast<int>(words.ptr / size) : -1;
#else
    return words.ptr & 1 ? static_cast<int>((words.ptr - 1) / size) : -1;
#endif
}
