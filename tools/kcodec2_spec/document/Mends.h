// The mends that are certain: changes of a document's text after which it says what it meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/Document.h"
#include "document/Fix.h"

namespace kc2::tool {

// What mends something that the reader found; empty when that is not certain. `parserText` is the
// document without its comments.
std::vector<Fix> mendsOf(const KeptFinding& finding, std::string_view parserText);

// Writes the known name `meant` in place of a name, given with its quotes; empty when another one
// may be meant just as well: then the two differ in a digit, or in more than a few letters.
std::vector<Fix> renaming(std::string_view text, Span quotedName, std::string_view meant);

// `text` with the changes made. One that touches an earlier one, or a line end, is left out: a
// mended document has the lines that it had.
std::string withFixes(std::string_view text, std::vector<Fix> fixes);

}  // namespace kc2::tool
