// Loads a component, lets it use the library, and unloads both, a thousand times: nothing is left.

#include <dlfcn.h>
#include <malloc.h>

#include <cstddef>
#include <string>

#include "hostplatform/HostPlatform.h"
#include "tests/binary/Check.h"

namespace {

constexpr char kLibrary[] = "libkcodec2_platform.so";
constexpr int kRounds = 1000;
constexpr int kWarmUpRounds = 100;  // After these the loader allocates no more.
constexpr size_t kSmallestBlock = 16;

bool isLoaded(const char* name) {
    return dlopen(name, RTLD_NOW | RTLD_NOLOAD) != nullptr;
}

void loadAndUse() {
    void* const component = dlopen(COMPONENT, RTLD_NOW | RTLD_LOCAL);
    if (component == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
    const auto useLibrary = reinterpret_cast<void (*)()>(dlsym(component, "useLibrary"));
    CHECK(useLibrary != nullptr);
    useLibrary();
    CHECK(dlclose(component) == 0);
}

// Includes the format table's content: a table that is not destroyed adds to it in every round.
size_t allocatedBytes() {
    return mallinfo2().uordblks;
}

}  // namespace

int main() {
    kc2::host::setLogSink([](int, const char*, const char*) {});
    kc2::host::setProperty("vendor.media.target_variant", "_brel");
    kc2::host::mapDirectory("/", "/nonexistent");

    size_t allocatedAtFirst = 0;
    for (int round = 0; round < kRounds; ++round) {
        loadAndUse();
        CHECK(!isLoaded(COMPONENT));
        CHECK(!isLoaded(kLibrary));
        if (round == kWarmUpRounds) {
            allocatedAtFirst = allocatedBytes();
        }
    }
    // The C library's own caches add some hundred bytes, once. A leak adds a block in every round.
    const size_t allocatedAtLast = allocatedBytes();
    CHECK(allocatedAtLast < allocatedAtFirst + kSmallestBlock * (kRounds - kWarmUpRounds));
    std::printf("%d rounds: unloaded in each, %zu bytes allocated at the start, %zu at the end\n",
                kRounds, allocatedAtFirst, allocatedAtLast);
}
