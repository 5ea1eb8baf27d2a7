// Finds the first token of a text that does not fit where it is, and what was open there.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "document/Source.h"

namespace kc2::tool {

inline constexpr size_t kNowhere = std::string_view::npos;

struct Token {
    static constexpr char kString = '"';
    static constexpr char kWord = 'w';  // A number, true, or whatever else is not a mark.
    static constexpr char kEnd = '\0';  // Of the text.

    char kind = kEnd;  // One of these, or the mark itself: one of {}[]:,
    Span span;
    size_t flaw = kNowhere;  // Of a string: the escape that the parser does not take.
    bool isWhole = true;     // A string has its closing quote.
};

enum class Expected { Value, ValueOrEnd, Name, NameOrEnd, Colon, CommaOrEnd };

struct OpenBracket {
    char kind;
    size_t at;
    size_t indent;  // Of its line.
};

struct Misfit {
    Token token;     // The one that does not fit.
    Token previous;  // The one before it; the end of the text when there is none.
    Expected expected;
    std::vector<OpenBracket> open;        // The innermost is last.
    std::optional<OpenBracket> unclosed;  // The one that the indentation tells was not closed.
};

// `text` is as makeFitForParser() leaves it. Nothing is found in what the parser would accept; it
// may reject more than this knows, such as a number out of every range.
std::optional<Misfit> findMisfit(std::string_view text);

// Whether the parser takes the word: true, false, null, or a number.
bool isWordOfJson(std::string_view word);

// Whether white space of JSON, a mark or a quote: what ends a word.
bool endsWord(char c);

}  // namespace kc2::tool
