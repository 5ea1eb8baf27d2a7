// What a fuzz target asserts.
#pragma once

namespace kc2::fuzz {

// Ends the process when the promise is not kept; the fuzzer then reports the input.
void require(bool isKept, const char* promise);

}  // namespace kc2::fuzz
