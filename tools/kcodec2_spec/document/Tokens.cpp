// The tokens of a document's text, as the parser reads them.

#include "document/Tokens.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "base/Spelling.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "targetspec/reading/ParserText.h"

namespace kc2::tool {

namespace {

enum CharacterClass : unsigned char {
    kInWord = 0,
    kBlank = 1,
    kMark = 2,
    kQuote = 4,
    kAlone = 8,  // Begins no word of JSON, so it is a token by itself: what follows may be correct.
};

constexpr std::array<unsigned char, 256> kClasses = [] {
    std::array<unsigned char, 256> classes = {};
    const auto set = [&](std::string_view characters, CharacterClass to) {
        for (const char c : characters) {
            classes[static_cast<unsigned char>(c)] = to;
        }
    };
    std::fill(classes.begin() + 0x80, classes.end(), static_cast<unsigned char>(kAlone));
    set(kJsonBlanks, kBlank);
    set("{}[]:,", kMark);
    set("\"", kQuote);
    set(";=#'`", kAlone);
    return classes;
}();

constexpr unsigned char classOf(char c) {
    return kClasses[static_cast<unsigned char>(c)];
}

size_t skipDigits(std::string_view word, size_t at) {
    while (at < word.size() && isDigit(word[at])) {
        ++at;
    }
    return at;
}

// As the parser reads a number: it requires a digit only after an exponent.
size_t numberLength(std::string_view word) {
    size_t at = skipDigits(word, 1);
    if (at < word.size() && word[at] == '.') {
        at = skipDigits(word, at + 1);
    }
    if (at < word.size() && (word[at] == 'e' || word[at] == 'E')) {
        size_t digits = at + 1;
        digits += digits < word.size() && (word[digits] == '+' || word[digits] == '-') ? 1 : 0;
        const size_t end = skipDigits(word, digits);
        return end == digits ? 0 : end;
    }
    return at;
}

bool areHexadecimal(std::string_view digits, size_t count) {
    return digits.size() >= count &&
           std::all_of(digits.begin(), digits.begin() + static_cast<std::ptrdiff_t>(count),
                       [](unsigned char c) { return std::isxdigit(c) != 0; });
}

// The length of the escape that `text` begins with; 0 when the parser rejects it. The first half
// of a surrogate pair must have a second one after it.
size_t escapeLength(std::string_view text) {
    constexpr std::string_view kShort = "\"\\/bfnrt";
    constexpr size_t kUnicode = 6;
    if (text.size() > 1 && kShort.find(text[1]) != kNowhere) {
        return 2;
    }
    if (text.substr(0, 2) != "\\u" || !areHexadecimal(text.substr(2), 4)) {
        return 0;
    }
    const bool isFirstHalf = (text[2] == 'd' || text[2] == 'D') &&
                             std::string_view("89abAB").find(text[3]) != kNowhere;
    if (!isFirstHalf) {
        return kUnicode;
    }
    const std::string_view second = text.substr(kUnicode);
    return second.substr(0, 2) == "\\u" && areHexadecimal(second.substr(2), 4) ? 2 * kUnicode : 0;
}

}  // namespace

size_t Tokenizer::skipBlanks() {
    while (mAt < mText.size() && isJsonBlank(mText[mAt])) {
        ++mAt;
    }
    return mAt;
}

Token Tokenizer::next() {
    Token token;
    token.span.start = skipBlanks();
    if (mAt < mText.size()) {
        switch (classOf(mText[mAt])) {
            case kMark:
                token.kind = mText[mAt++];
                break;
            case kQuote: {
                const size_t end = endOfString(mText, mAt);
                token.kind = Token::kString;
                token.isWhole = end != kNowhere;
                mAt = std::min(end, mText.size());
                break;
            }
            default:
                readWord(&token);
        }
    }
    token.span.limit = mAt;
    return token;
}

Token Tokenizer::nextRoot() {
    Token token = next();
    if (token.kind == Token::kWord) {
        const size_t start = token.span.start;
        if (const size_t length = valueLength(mText.substr(start, mAt - start))) {
            mAt = start + length;
            token.span.limit = mAt;
        }
    }
    return token;
}

void Tokenizer::readWord(Token* token) {
    token->kind = Token::kWord;
    if (classOf(mText[mAt]) == kAlone) {
        do {
            ++mAt;
        } while (mAt < mText.size() && !isFirstByteOfCharacter(mText[mAt]));
        return;
    }
    while (mAt < mText.size() && classOf(mText[mAt]) == kInWord) {
        ++mAt;
    }
}

size_t valueLength(std::string_view word) {
    for (const std::string_view name : {"true", "false", "null"}) {
        if (word.starts_with(name)) {
            return name.size();
        }
    }
    return !word.empty() && (isDigit(word[0]) || word[0] == '-') ? numberLength(word) : 0;
}

NumberRange rangeOf(std::string_view number) {
    const auto isExponent = [](char c) { return c == 'e' || c == 'E'; };
    const auto exponent = std::find_if(number.begin(), number.end(), isExponent);
    if (exponent == number.end() && number.size() <= std::numeric_limits<double>::max_exponent10) {
        return NumberRange::Normal;  // As nearly all.
    }
    const double value = std::abs(std::strtod(std::string(number).c_str(), nullptr));
    const bool isNotZero =
            std::any_of(number.begin(), exponent, [](char c) { return c >= '1' && c <= '9'; });
    return std::isinf(value)                                         ? NumberRange::TooLarge
           : value < std::numeric_limits<double>::min() && isNotZero ? NumberRange::TooSmall
                                                                     : NumberRange::Normal;
}

size_t badEscapeIn(std::string_view quoted) {
    size_t at = quoted.find('\\');
    while (at != kNowhere) {
        const size_t length = escapeLength(quoted.substr(at));
        if (length == 0) {
            return at;
        }
        at = quoted.find('\\', at + length);
    }
    return kNowhere;
}

bool endsWord(char c) {
    return (classOf(c) & (kBlank | kMark | kQuote)) != 0;
}

}  // namespace kc2::tool
