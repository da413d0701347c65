// Heap: the global operator new and delete of this program, made to fail and to be measured.
#pragma once

#include <cstddef>

namespace test {

/// While it lives, the n-th allocation from now on fails, n from 0; and with `onwards` all that follow it.
class FailingHeap {
public:
    FailingHeap(long n, bool onwards);
    ~FailingHeap();
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    /// Whether an allocation has been refused.
    static bool HasFailed();
};

/// Measures what is allocated while it lives.
class MeasuredHeap {
public:
    MeasuredHeap();

    /// The most bytes that were in use at once, above those at the beginning.
    static std::size_t GetPeak();
};

}  // namespace test
