// The tokens of a document's text, as the parser reads them.
#pragma once

#include <cstddef>
#include <string_view>

#include "document/Source.h"

namespace kc2::tool {

inline constexpr size_t kNowhere = std::string_view::npos;

struct Token {
    static constexpr char kString = '"';
    static constexpr char kWord = 'w';  // A number, true, or anything else that is not a mark.
    static constexpr char kEnd = '\0';  // Of the text.

    char kind = kEnd;  // One of these, or the mark itself: one of {}[]:,
    Span span;
    bool isWhole = true;  // A string has its closing quote.
};

// Reads the tokens of a text without comments, one after the other.
class Tokenizer {
public:
    explicit Tokenizer(std::string_view text, size_t start = 0) : mText(text), mAt(start) {}

    Token next();

    // Reads a token as the root of a document. The parser reads as much of a word there as is a
    // value, and nothing after it: "null[1]" and "truefalse" are null and true.
    Token nextRoot();

    // Where the next token, or the end of the text, is.
    size_t skipBlanks();

private:
    void readWord(Token* token);

    std::string_view mText;
    size_t mAt;
};

// How many bytes of `word`, from its start, the parser reads as true, false, null or a number.
size_t valueLength(std::string_view word);

// Whether the whole word is one of these.
inline bool isValue(std::string_view word) {
    return !word.empty() && valueLength(word) == word.size();
}

// The size of a number that double can represent only in part. A parser may fail on either kind.
enum class NumberRange { Normal, TooLarge, TooSmall };
NumberRange rangeOf(std::string_view number);

// The first escape in a quoted string that the parser rejects; kNowhere when it accepts all.
size_t badEscapeIn(std::string_view quoted);

// Whether white space of JSON, a mark or a quote: what ends a word.
bool endsWord(char c);

}  // namespace kc2::tool
