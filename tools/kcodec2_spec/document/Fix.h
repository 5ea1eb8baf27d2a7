// What a finding may have besides its place: related places, and changes that fix it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/Source.h"

namespace kc2::tool {

// A second place that a finding is about: where the earlier value is, which bracket is open.
struct RelatedPlace {
    const Source* source;
    Span span;
    std::string message;  // What is there; empty where the finding's message names the place.
};

// A change of the text that fixes a finding, where only one can be meant.
struct Fix {
    Span span;
    std::string replacement;
    std::string what;  // What the change does, as in "remove the comma".
};

// `text` with the changes made. A change that overlaps an earlier one, or that has a line end, is
// left out: the number of lines stays the same.
std::string withFixes(std::string_view text, std::vector<Fix> fixes);

// Writes the known name `meant` in place of a name, given with its quotes; empty when another one
// may be meant just as well: then the two differ in a digit, or in more than a few letters. A name
// with a line end has none, either.
std::vector<Fix> renaming(std::string_view text, Span quotedName, std::string_view meant);

}  // namespace kc2::tool
