// Measures each operation in its own process: kcodec2_bench DIRECTORY DOCUMENT...
//
// Under callgrind it counts instructions: each operation leaves a dump of its name, with the runs
// after a colon. With libkcodec2_allocations.so preloaded it counts allocations: a line for each,
// "name <tab> allocations of one run <tab> peak bytes". Otherwise it prints nanoseconds. DIRECTORY
// becomes the device's root; Bench.h says what the documents are.

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "bench/Bench.h"
#include "bench/Floors.h"
#include "hostplatform/HostPlatform.h"

extern "C" [[gnu::weak]] kc2::bench::AllocationCount* kc2AllocationCount();

namespace {

using kc2::bench::keep;
using kc2::bench::Operation;

// Fills every hole that the set-up has left in the heap, and leaves room at the heap's end: the
// cost of an allocation depends on both, and would differ between an operation and its floor.
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

void countInstructions(const Operation& operation) {
    const std::string dump = operation.name + ":" + std::to_string(operation.repetitions);
    fillHoles();
    CALLGRIND_ZERO_STATS;
    for (int run = 0; run < operation.repetitions; ++run) {
        operation.run();
    }
    CALLGRIND_DUMP_STATS_AT(dump.c_str());
}

void countAllocations(const Operation& operation) {
    kc2::bench::AllocationCount& count = *kc2AllocationCount();
    count.peakBytes = count.liveBytes;
    const kc2::bench::AllocationCount before = count;
    operation.run();
    const kc2::bench::AllocationCount after = count;
    std::printf("%s\t%zu\t%zu\n", operation.name.c_str(), after.allocations - before.allocations,
                after.peakBytes - before.liveBytes);
}

void time(const Operation& operation) {
    const auto start = std::chrono::steady_clock::now();
    for (int run = 0; run < operation.repetitions; ++run) {
        operation.run();
    }
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
    std::printf("%14.1f  %s\n", time.count() / operation.repetitions, operation.name.c_str());
}

void measure(const Operation& operation) {
    if (operation.prepare != nullptr) {
        operation.prepare();
    } else {
        operation.run();  // A first run may do more than the others; it is not measured.
    }
    if (RUNNING_ON_VALGRIND != 0) {
        countInstructions(operation);
    } else if (kc2AllocationCount != nullptr) {
        countAllocations(operation);
    } else {
        time(operation);
    }
    std::fflush(stdout);
    // Without exit handlers: those of the load-time initialisers may be registered twice.
    std::_Exit(0);
}

// In a separate process each operation starts with the same heap; the cost of the C library's
// allocator depends on what has been freed before.
void measureApart(const Operation& operation) {
    const pid_t child = fork();
    if (child == 0) {
        measure(operation);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0) {
        std::abort();
    }
}

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) {
        std::fputs("usage: kcodec2_bench DIRECTORY DOCUMENT DOCUMENT DOCUMENT...\n", stderr);
        return 2;
    }
    // A service that loads its first document has a fresh heap. Here, no large block of the set-up
    // leaves a hole in it, and afterwards the threshold is the C library's initial one again.
    mallopt(M_MMAP_THRESHOLD, 4096);
    std::vector<kc2::bench::Document> documents;
    for (int file = 2; file < argc; ++file) {
        documents.push_back({argv[file], kc2::bench::floors::readFile(argv[file])});
    }
    const std::string root = argv[1];
    writeFile(root + "/vendor/etc/media_brel/video_system_specs.json", documents[0].text);
    writeFile(root + "/data/vendor/media/video_private_configs.json", documents[1].text);
    kc2::host::setProperty("vendor.media.target_variant", "_brel");
    kc2::host::setLogSink([](int, const char*, const char*) {});
    const std::vector<Operation> operations = kc2::bench::operations(documents, root);
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);

    measureApart({"nothing 1", 1, [] {}});
    measureApart({"nothing 1000", 1000, [] {}});
    // A count that does not see what a library allocates would find no allocation anywhere.
    measureApart({"one allocation of 1000 bytes", 1, [] { keep(std::string(999, ' ')); }});
    for (const Operation& operation : operations) {
        measureApart(operation);
    }
    return 0;
}
