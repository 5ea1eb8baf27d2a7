// What kcodec2_spec explain knows beside documents: names of the library, chips, groups of checks.
#pragma once

#include <string>
#include <string_view>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

// How an explanation is printed: its title, then lines that begin with what they are about.
void printTitle(std::string_view name);
// Prints nothing for an empty text.
void printLine(std::string_view title, std::string_view text);

// Prints which checks report what a device skips for this reason.
void printChecksForReason(std::string_view reason);

// Prints what the name is, or returns false. What the library does is said in the words of its
// headers.
bool explainOtherTopic(const Catalogue& catalogue, const std::string& name);

}  // namespace kc2::tool
