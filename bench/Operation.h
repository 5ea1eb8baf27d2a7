// What is measured: one list of operations that the timing, the instruction count and the
// allocation count share. Each operation is measured beside its floor: the same work without the
// library.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kc2::bench {

struct Operation {
    std::string name;  // A floor has the name of what it is the floor of, and "/floor".
    int repetitions;   // Runs that a count spans.
    std::function<void()> run;
    // Before a run, not measured; a count of such an operation spans one run.
    std::function<void()> prepare = nullptr;
};

using Operations = std::vector<Operation>;

// The first Get() of the process, so these are to be run first, once, and in their order.
Operations firstGetOperations();

// Get() once the store is there, and the queries.
Operations queryOperations();

// Pixel formats and plane offsets.
Operations formatOperations();

// parseJsonData() and what the format's parser takes alone.
Operations loadOperations();

// Other JSON parsers on the same documents.
Operations otherParserOperations();

// All but the first Get().
Operations repeatableOperations();

// Keeps the compiler from leaving out what computes `value`.
template <typename Value>
void keep(const Value& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

}  // namespace kc2::bench
