// Prepares a document's text for the JSON parser: without comments, and within the limits.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "targetspec/reading/Findings.h"

namespace kc2 {

// Bytes of a text: [start, limit).
struct TextRange {
    size_t start = 0;
    size_t limit = 0;
};

// The offset after the string whose opening quote is at `quote`; npos if it does not end.
size_t endOfString(std::string_view text, size_t quote);

struct LimitBreach {
    FindingKind kind;
    size_t offset;
};

// Overwrites every comment outside strings with blanks. Line ends in it stay, and so do offsets and
// lines. In some places the parser accepts no comment, or any token after one. What is not a
// complete comment stays, for the parser to reject: "/*" without "*/", a lone "/".
//
// Returns the first place where the text exceeds the limits: the parser must not see it then. Adds
// the comments' places to `comments`, unless it is null.
std::optional<LimitBreach> makeFitForParser(std::span<char> text,
                                            std::vector<TextRange>* comments = nullptr);

}  // namespace kc2
