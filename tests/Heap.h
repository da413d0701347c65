// Heap: the global operator new and delete of this program, made to fail, to be measured and to
// be listened to.
#pragma once

#include <climits>
#include <cstddef>
#include <vector>

namespace test {

/// While it lives, the n-th allocation from now on fails, and every one after it, up to so many; n from 0.
class FailingHeap {
public:
    explicit FailingHeap(long n, long times = LONG_MAX);
    ~FailingHeap();
    FailingHeap(const FailingHeap&) = delete;
    FailingHeap& operator=(const FailingHeap&) = delete;

    /// Whether an allocation has been refused.
    static bool HasFailed();
};

/// While it lives, the n-th allocation of exactly so many bytes fails, that one only; n from 0.
class FailingSize {
public:
    FailingSize(std::size_t size, long n);
    ~FailingSize();
    FailingSize(const FailingSize&) = delete;
    FailingSize& operator=(const FailingSize&) = delete;
};

/// While it lives, single allocations of more than so many bytes fail.
class SmallHeap {
public:
    explicit SmallHeap(std::size_t limit);
    ~SmallHeap();
    SmallHeap(const SmallHeap&) = delete;
    SmallHeap& operator=(const SmallHeap&) = delete;
};

/// Measures what is allocated while it lives.
class MeasuredHeap {
public:
    MeasuredHeap();

    /// The most bytes that were in use at once, above those at the beginning.
    static std::size_t GetPeak();
};

/// While it lives, writes down the addresses of what is freed, as long as it was told to look for them.
class FreedWatch {
public:
    explicit FreedWatch(std::vector<const void*> wanted);
    ~FreedWatch();
    FreedWatch(const FreedWatch&) = delete;
    FreedWatch& operator=(const FreedWatch&) = delete;

    /// The wanted addresses in the order in which they were freed.
    std::vector<const void*> Freed() const;
};

}  // namespace test
