// Counters in front of the C library's allocator, for LD_PRELOAD. operator new uses it, too;
// nothing that is counted requests an alignment.

#include <malloc.h>

#include <algorithm>

#include "bench/Bench.h"

namespace {

kc2::bench::AllocationCount sCount;  // Of the one thread that there is.

void* counted(void* block) {
    ++sCount.allocations;
    sCount.liveBytes += malloc_usable_size(block);
    sCount.peakBytes = std::max(sCount.peakBytes, sCount.liveBytes);
    return block;
}

}  // namespace

#pragma GCC visibility push(default)

extern "C" {

kc2::bench::AllocationCount* kc2AllocationCount() {
    return &sCount;
}

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void __libc_free(void* block);

void* malloc(size_t size) {
    return counted(__libc_malloc(size));
}

void* calloc(size_t count, size_t size) {
    return counted(__libc_calloc(count, size));
}

void free(void* block) {
    sCount.liveBytes -= malloc_usable_size(block);
    __libc_free(block);
}

}  // extern "C"
