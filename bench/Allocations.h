// Counts what the process allocates; for programs that link Allocations.cpp.
#pragma once

#include <cstddef>

namespace kc2::bench {

struct AllocationCount {
    size_t allocations = 0;
    size_t liveBytes = 0;
    size_t peakBytes = 0;  // Since resetPeak().
};

AllocationCount allocationCount();
void resetPeak();

}  // namespace kc2::bench
