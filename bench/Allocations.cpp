// Puts counters in front of the C library's allocator, which operator new stands on too.

#include "bench/Allocations.h"

#include <malloc.h>

#include <algorithm>
#include <cerrno>

namespace {

kc2::bench::AllocationCount sCount;  // Of the one thread that there is.

void* counted(void* block) {
    ++sCount.allocations;
    sCount.liveBytes += malloc_usable_size(block);
    sCount.peakBytes = std::max(sCount.peakBytes, sCount.liveBytes);
    return block;
}

}  // namespace

kc2::bench::AllocationCount kc2::bench::allocationCount() {
    return sCount;
}

void kc2::bench::resetPeak() {
    sCount.peakBytes = sCount.liveBytes;
}

// Visible to the shared libraries, or they would go on with the C library's.
#pragma GCC visibility push(default)

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

void* malloc(size_t size) {
    return counted(__libc_malloc(size));
}

void* calloc(size_t count, size_t size) {
    return counted(__libc_calloc(count, size));
}

void* realloc(void* block, size_t size) {
    sCount.liveBytes -= malloc_usable_size(block);
    return counted(__libc_realloc(block, size));
}

void* aligned_alloc(size_t alignment, size_t size) {
    return counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    *block = aligned_alloc(alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

void free(void* block) {
    sCount.liveBytes -= malloc_usable_size(block);
    __libc_free(block);
}

}  // extern "C"

#pragma GCC visibility pop
