#include "tests/Heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <vector>

namespace {

constexpr std::size_t kFreedMax = 64;

// Plain data: it is used before any constructor of this program has run.
long untilFailure = -1;  // -1: never
long failuresLeft = 0;
std::size_t failingSize = 0;  // 0: none
long untilSizeFails = 0;
bool failed = false;
std::size_t sizeLimit = std::numeric_limits<std::size_t>::max();
const void* wanted[kFreedMax];
std::size_t wantedCount = 0;
const void* freed[kFreedMax];
std::size_t freedCount = 0;
long long inUse = 0;
long long peak = 0;

void* Allocate(std::size_t size) noexcept {
    const bool turn = untilFailure == 0 && failuresLeft-- > 0;
    const bool sizeTurn = failingSize != 0 && size == failingSize && untilSizeFails-- == 0;
    if (turn || sizeTurn || size > sizeLimit) {
        failed = true;
        return nullptr;
    }
    if (untilFailure > 0) --untilFailure;
    void* const at = std::malloc(size == 0 ? 1 : size);
    if (at) {
        inUse += static_cast<long long>(malloc_usable_size(at));
        peak = std::max(peak, inUse);
    }
    return at;
}

void Free(void* at) noexcept {
    if (wantedCount > 0 && freedCount < kFreedMax &&
        std::find(wanted, wanted + wantedCount, at) != wanted + wantedCount)
        freed[freedCount++] = at;
    if (at) inUse -= static_cast<long long>(malloc_usable_size(at));
    std::free(at);
}

}  // namespace

void* operator new(std::size_t size) {
    if (void* at = Allocate(size)) return at;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* at) noexcept { Free(at); }
void operator delete[](void* at) noexcept { Free(at); }
void operator delete(void* at, std::size_t) noexcept { Free(at); }
void operator delete[](void* at, std::size_t) noexcept { Free(at); }
void operator delete(void* at, const std::nothrow_t&) noexcept { Free(at); }
void operator delete[](void* at, const std::nothrow_t&) noexcept { Free(at); }

namespace test {

FailingHeap::FailingHeap(long n, long times) {
    failed = false;
    failuresLeft = times;
    untilFailure = n;
}
FailingHeap::~FailingHeap() { untilFailure = -1; }
bool FailingHeap::HasFailed() { return failed; }

FailingSize::FailingSize(std::size_t size, long n) {
    failed = false;
    untilSizeFails = n;
    failingSize = size;
}
FailingSize::~FailingSize() { failingSize = 0; }

SmallHeap::SmallHeap(std::size_t limit) {
    failed = false;
    sizeLimit = limit;
}
SmallHeap::~SmallHeap() { sizeLimit = std::numeric_limits<std::size_t>::max(); }

MeasuredHeap::MeasuredHeap() {
    inUse = 0;
    peak = 0;
}
std::size_t MeasuredHeap::GetPeak() { return static_cast<std::size_t>(peak); }

FreedWatch::FreedWatch(std::vector<const void*> addresses) {
    freedCount = 0;
    wantedCount = std::min(addresses.size(), kFreedMax);
    std::copy_n(addresses.begin(), wantedCount, wanted);
}
FreedWatch::~FreedWatch() { wantedCount = 0; }
std::vector<const void*> FreedWatch::Freed() const {
    return std::vector<const void*>(freed, freed + freedCount);  // not a list of two pointers
}

}  // namespace test
