#include "tests/host/project/Heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// Plain data: it is used before any constructor of this program has run.
long untilFailure = -1;  // -1: never
bool failOnwards = false;
bool failed = false;
long long inUse = 0;
long long peak = 0;

void* Allocate(std::size_t size) noexcept {
    if (untilFailure == 0) {
        failed = true;
        if (!failOnwards) untilFailure = -1;
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

FailingHeap::FailingHeap(long n, bool onwards) {
    failed = false;
    failOnwards = onwards;
    untilFailure = n;
}
FailingHeap::~FailingHeap() { untilFailure = -1; }
bool FailingHeap::HasFailed() { return failed; }

MeasuredHeap::MeasuredHeap() {
    inUse = 0;
    peak = 0;
}
std::size_t MeasuredHeap::GetPeak() { return static_cast<std::size_t>(peak); }

}  // namespace test
