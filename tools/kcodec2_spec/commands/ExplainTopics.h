// What kcodec2_spec explain knows about a name.
#pragma once

#include <string>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

// Prints what the name is, or returns false. What the library does is said in the words of its
// headers.
bool explainTopic(const Catalogue& catalogue, const std::string& name);

}  // namespace kc2::tool
