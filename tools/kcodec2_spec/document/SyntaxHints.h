// What is wrong with a text that the JSON parser rejects, what to write instead, and the fix where
// only one can be meant.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document/Fix.h"
#include "document/Tokens.h"

namespace kc2::tool {

enum class Expected { Value, ValueOrEnd, Name, NameOrEnd, Colon, CommaOrEnd };

struct OpenBracket {
    char kind;
    size_t at;
    std::string_view key;  // Of the member whose value it begins.
};

// A token that does not fit where it is.
struct Misfit {
    const Token& token;
    const Token& previous;  // The one before it; the end of the text when there is none.
    Expected expected;
    const std::vector<OpenBracket>& open;        // The innermost is last.
    const std::optional<OpenBracket>& unclosed;  // The one that the indentation says lacks its end.
};

// How reading goes on after an error: as if its fix were made.
enum class Recovery {
    Stop,         // There is no certain fix.
    SkipStart,    // The start of the text is not there.
    InsertComma,  // A comma is before the token.
    DropComma,    // The comma before the token, an end, is not there.
    AcceptToken,  // The token is a value.
};

struct SyntaxHint {
    Span span;            // From the first character of what is wrong.
    std::string message;  // Empty where only the parser's own words describe it.
    std::vector<RelatedPlace> related = {};
    std::vector<Fix> fixes = {};  // Empty exactly when reading stops here.
    Recovery recovery = Recovery::Stop;
};

// In these, `text` is the source's text as makeFitForParser() leaves it.

// What is wrong from the start of the text: it is empty, or of another format.
std::optional<SyntaxHint> hintOnStart(const Source& source, std::string_view text);

SyntaxHint hintOn(const Source& source, std::string_view text, const Misfit& misfit);

// The strings with a character below U+0020 as it is, which later parsers reject: for each, the
// first such character.
std::vector<Span> rawControlCharacters(std::string_view text);

}  // namespace kc2::tool
