// What a fuzz target asserts.

#include "tests/fuzz/Require.h"

#include <cstdio>
#include <cstdlib>

namespace kc2::fuzz {

void require(bool isKept, const char* promise) {
    if (!isKept) {
        std::fprintf(stderr, "Broken promise: %s\n", promise);
        std::abort();
    }
}

}  // namespace kc2::fuzz
