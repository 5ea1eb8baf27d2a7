// What a fuzz target asserts.
#pragma once

namespace kc2::fuzz {

// Ends the process, which the fuzzer takes for a find, when the promise is not kept.
void require(bool isKept, const char* promise);

}  // namespace kc2::fuzz
