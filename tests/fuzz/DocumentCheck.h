// One document through the library, and what must be true of any document.
#pragma once

#include <string_view>

namespace kc2::fuzz {

// Ends the process with a line on standard error when the library breaks a promise:
// - it accepts exactly the documents that the parser accepts, without ending the process;
// - a rejected document leaves a store, empty or not, as it was, and writes one error line;
// - an accepted one adds to the store exactly what JsonCpp itself reads in it, by the merge rules,
//   also when it is read twice, and writes one warning for each value left out.
void checkDocument(std::string_view text);

}  // namespace kc2::fuzz
