// Makes a document's text fit for the JSON parser: without comments, and within the limits.
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

// The offset behind the string whose opening quote is at `quote`; npos when it does not end.
size_t endOfString(std::string_view text, size_t quote);

struct LimitBreach {
    FindingKind kind;
    size_t offset;
};

// Overwrites every comment outside strings with blanks; line ends in it stay, so that offsets and
// lines do, too. The parser has places where it takes no comment, or takes any token behind one.
// What is not a whole comment stays, for the parser to reject: "/*" without "*/", a lone "/".
//
// Returns the first place where the text is beyond the limits: the parser must not see it then.
// Adds where the comments were to `comments`, unless it is null.
std::optional<LimitBreach> makeFitForParser(std::span<char> text,
                                            std::vector<TextRange>* comments = nullptr);

}  // namespace kc2
