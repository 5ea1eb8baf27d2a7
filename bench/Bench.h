// What is measured: one list of operations, each with its floor, the same work without the library.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kc2::bench {

struct Document {
    std::string path;  // A file of this machine with the text.
    std::string text;
};

struct Operation {
    std::string name;  // A floor has the name of what it is the floor of, and "/floor".
    int repetitions;   // Runs that a count spans.
    std::function<void()> run;
    // Before a run, not measured; a count of such an operation spans one run.
    std::function<void()> prepare = nullptr;
};

// The first document is the device's system spec file and the second its private configuration
// file; the third has content for every query.
std::vector<Operation> operations(const std::vector<Document>& documents, const std::string& root);

struct AllocationCount {
    size_t allocations = 0;
    size_t liveBytes = 0;
    size_t peakBytes = 0;
};

// Keeps the compiler from leaving out what computes `value`.
template <typename Value>
void keep(const Value& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace kc2::bench
