// Times every operation and its floor in one run.

#include <benchmark/benchmark.h>

#include "bench/Documents.h"
#include "bench/Operation.h"

namespace {

void time(benchmark::State& state, const kc2::bench::Operation& operation) {
    while (state.KeepRunning()) {
        if (operation.prepare != nullptr) {
            state.PauseTiming();
            operation.prepare();
            state.ResumeTiming();
        }
        operation.run();
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    kc2::bench::setUpDevice();
    const kc2::bench::Operations operations = kc2::bench::repeatableOperations();
    for (const kc2::bench::Operation& operation : operations) {
        benchmark::RegisterBenchmark(operation.name.c_str(), [&operation](benchmark::State& state) {
            time(state, operation);
        });
    }
    benchmark::RunSpecifiedBenchmarks();
    kc2::bench::tearDownDevice();
    return 0;
}
