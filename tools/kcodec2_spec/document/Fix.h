// What goes with something found in a text: a second place, a change that fixes it.
#pragma once

#include <string>

#include "document/Source.h"

namespace kc2::tool {

// A second place that a finding is about: where the earlier value is, which bracket is open.
struct RelatedPlace {
    const Source* source;
    Span span;
    std::string message;  // What is there.
};

// A change of the text that mends a finding, where only one can be meant.
struct Fix {
    Span span;
    std::string replacement;
    std::string what;  // What the change does, as in "remove the comma".
};

}  // namespace kc2::tool
