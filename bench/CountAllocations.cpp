// Counts allocations: one line per operation, "name <tab> allocations per run <tab> peak bytes".

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/Allocations.h"
#include "bench/Documents.h"
#include "bench/Floors.h"
#include "bench/Initialisers.h"
#include "bench/Operation.h"

namespace {

using kc2::bench::allocationCount;
using kc2::bench::Operation;

void count(const Operation& operation) {
    if (operation.prepare != nullptr) {
        operation.prepare();
    }
    kc2::bench::resetPeak();
    const kc2::bench::AllocationCount before = allocationCount();
    operation.run();
    const kc2::bench::AllocationCount after = allocationCount();
    std::printf("%s\t%zu\t%zu\n", operation.name.c_str(), after.allocations - before.allocations,
                after.peakBytes - before.liveBytes);
}

}  // namespace

int main() {
    kc2::bench::setUpDevice();
    // A count that does not see what a library allocates would find no allocation anywhere.
    const std::vector<uint32_t> words(250);
    count({"one allocation of 1000 bytes", 1, [&] { kc2::bench::floors::copyWords(words); }});
    for (const Operation& operation : kc2::bench::firstGetOperations()) {
        count(operation);
    }
    for (const Operation& operation : kc2::bench::repeatableOperations()) {
        count(operation);
    }
    for (const Operation& operation : kc2::bench::initialiserOperations()) {
        count(operation);
    }
    kc2::bench::tearDownDevice();
    std::fflush(stdout);
    std::_Exit(0);  // Before the format table is destroyed a second time.
}
