// What an editor shows of a document, and what it may do to it.
#pragma once

#include <json/value.h>

#include <string>

#include "check/Check.h"
#include "editor/OpenDocument.h"

namespace kc2::tool {

// The CodeActions for what is found in a range of a checked document, of the kinds in `only`, or of
// all kinds when that is no array: each fix, "suppress here", and all fixes together.
Json::Value codeActions(const OpenDocument& document, Span range, const Json::Value& only,
                        const CheckOptions& options);

// The DocumentSymbols of a checked document: its sections, and what is in them. `isFlat`: as
// SymbolInformation, for editors that know no other.
Json::Value documentSymbols(const OpenDocument& document, bool isFlat);

}  // namespace kc2::tool
