// Fuzz target: any text as a whole document.

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/fuzz/DocumentCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    kc2::fuzz::checkDocument(std::string(data, data + size));
    return 0;
}
