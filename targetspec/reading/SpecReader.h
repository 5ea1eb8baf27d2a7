// Text -> SpecDocument, and what was found on the way. Knows JSON, knows no store.
#pragma once

#include <span>
#include <vector>

#include "targetspec/reading/Findings.h"
#include "targetspec/reading/ParserText.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2 {

// Reads one document into `document`, which holds nothing yet. Returns false when it is rejected;
// `document` then still holds nothing.
//
// Blanks the comments in the text, and changes nothing else. Adds where they were to `comments`,
// unless it is null.
bool readSpecDocument(std::span<char> text, SpecDocument* document, FindingSink& findings,
                      std::vector<TextRange>* comments = nullptr);

}  // namespace kc2
