// Text -> SpecDocument, and findings about it. Does not know the store.
#pragma once

#include <span>
#include <vector>

#include "targetspec/reading/Findings.h"
#include "targetspec/reading/ParserText.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2 {

// Reads one document into `document`, which must be empty. Returns false if it is rejected;
// `document` is then still empty.
//
// Blanks the comments in the text, and changes nothing else in it. Adds their places to `comments`,
// unless it is null.
bool readSpecDocument(std::span<char> text, SpecDocument* document, FindingSink& findings,
                      std::vector<TextRange>* comments = nullptr);

}  // namespace kc2
