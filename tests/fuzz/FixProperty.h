// What must be true of "check --fix" with any text.
#pragma once

#include <string>

#include "catalogue/KnownSettings.h"

namespace kc2::fuzz {

// What is wrong with `after`, which --fix made of `before`; empty when nothing is. A fixed text is
// accepted. It differs only where the report has a fix, in commas, quotes, plus signs, the byte
// order mark, and names: each word that it has anew is a known one.
std::string whyUnsafe(const std::string& before, const std::string& after,
                      const tool::KnownSettings& known);

}  // namespace kc2::fuzz
