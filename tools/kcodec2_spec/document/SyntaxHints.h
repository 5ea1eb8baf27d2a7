// What is wrong with a text that the JSON parser rejects, and what to do about it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "document/Fix.h"
#include "document/Source.h"

namespace kc2::tool {

struct SyntaxHint {
    Span span;            // From the first character of what is wrong.
    std::string message;  // Empty when nothing is known beyond the parser's words.
    std::vector<RelatedPlace> related;
};

// `parserText` is the source's text as makeFitForParser() leaves it; `offset` is where the parser
// rejects it, or the end of the text when the parser gave no reason, as in builds without
// exceptions. The parser notices a mistake later than a person sees it, so a hint may be before
// `offset`, but never behind it.
SyntaxHint syntaxHint(const Source& source, std::string_view parserText, size_t offset);

// The strings that hold a character below U+0020 as it is, which later parsers reject: for each,
// the first such character.
std::vector<Span> rawControlCharacters(std::string_view parserText);

}  // namespace kc2::tool
