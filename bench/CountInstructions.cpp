// Counts instructions: under callgrind each operation leaves a dump of its name, with the runs
// behind a colon. scripts/check-performance.py runs this and reads the dumps.

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <cstdlib>
#include <string>

#include "bench/Documents.h"
#include "bench/Initialisers.h"
#include "bench/Operation.h"

namespace {

using kc2::bench::keep;
using kc2::bench::Operation;
using kc2::bench::Operations;

// Takes every hole that the set-up has left in the heap, and lets the heap have room at its end:
// what an allocation costs depends on both, and an operation and its floor would meet other ones.
void fillHoles() {
    void* const room = std::malloc(size_t{100} << 10);
    keep(room);
    std::free(room);  // Joins the small blocks that the C library keeps apart, too.
    constexpr size_t kLargestCached = 1032;  // Of each size, the thread has a cache of seven.
    for (size_t size = 24; size <= kLargestCached; size += 16) {
        for (int block = 0; block < 7; ++block) {
            keep(std::malloc(size));
        }
    }
    while (mallinfo2().ordblks > 1) {  // One is the heap's end.
        keep(std::malloc(24));
    }
}

void count(const Operation& operation) {
    if (operation.prepare != nullptr) {
        operation.prepare();
    } else {
        operation.run();  // What only a first run does is not what is asked for.
    }
    const std::string dump = operation.name + ":" + std::to_string(operation.repetitions);
    fillHoles();
    CALLGRIND_ZERO_STATS;
    for (int run = 0; run < operation.repetitions; ++run) {
        operation.run();
    }
    CALLGRIND_DUMP_STATS_AT(dump.c_str());
}

// Each operation in a separate process: it finds the heap as every other one finds it, and the
// C library's allocator costs more or less with what has been freed before.
void countApart(const Operations& operations) {
    for (const Operation& operation : operations) {
        const pid_t child = fork();
        if (child == 0) {
            count(operation);
            std::_Exit(0);
        }
        int status = 0;
        if (waitpid(child, &status, 0) != child || status != 0) {
            std::abort();
        }
    }
}

}  // namespace

int main() {
    // A service that loads its first document has a young heap. Here, no large block of the set-up
    // leaves a hole in it, and afterwards the threshold is the C library's own initial one.
    mallopt(M_MMAP_THRESHOLD, 4096);
    kc2::bench::setUpDevice();
    const Operations firstGet = kc2::bench::firstGetOperations();
    const Operations repeatable = kc2::bench::repeatableOperations();
    const Operations initialisers = kc2::bench::initialiserOperations();
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);

    countApart({{"nothing 1", 1, [] {}}, {"nothing 1000", 1000, [] {}}});
    countApart(firstGet);
    countApart(repeatable);
    countApart(initialisers);
    kc2::bench::tearDownDevice();
    return 0;
}
