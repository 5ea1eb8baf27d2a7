// What is wrong with a text that the JSON parser rejects, and what to do about it: tables from what
// is there to what to write.

#include "document/SyntaxHints.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "base/OddCharacters.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "document/SyntaxWalk.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// --- What a text starts with that is not a document ---

struct StartRow {
    std::string_view start;
    const char* message;
};

using namespace std::string_view_literals;

constexpr StartRow kStarts[] = {
        {"\xEF\xBB\xBF"sv, "the document starts with a byte order mark, which must go"},
        {"\xFF\xFE"sv,
         "the document is UTF-16 or UTF-32: save it as UTF-8 without byte order mark"},
        {"\xFE\xFF"sv, "the document is UTF-16: save it as UTF-8 without byte order mark"},
        {"\0\0\xFE\xFF"sv, "the document is UTF-32: save it as UTF-8 without byte order mark"},
        {"\x1F\x8B"sv, "the document is compressed with gzip: unpack it"},
        {"version https://git-lfs"sv,
         "this is a Git LFS pointer, not the document: fetch it with \"git lfs pull\""},
        {"<?xml"sv, "this is XML: a system spec document is JSON"},
        {"<!"sv, "this is XML: a system spec document is JSON"},
};

// --- Beginnings of tokens ---

constexpr StartRow kTokenStarts[] = {
        {"<<<<<<<"sv, "a merge mark: the merge was not finished; keep one of both sides"},
        {"======="sv, "a merge mark: the merge was not finished; keep one of both sides"},
        {">>>>>>>"sv, "a merge mark: the merge was not finished; keep one of both sides"},
        {"|||||||"sv, "a merge mark: the merge was not finished; keep one of both sides"},
        {"/*"sv, "the comment never ends: \"*/\" is missing"},
        {"*/"sv, "this ends a comment that nothing opened (comments do not nest)"},
        {"/"sv, "a lone '/': a comment starts with // or /*"},
        {"--"sv, "-- does not start a comment: write //"},
        {"#"sv, "# does not start a comment: write //"},
        {"'"sv, "strings must be in double quotes, not in single ones"},
        {"`"sv, "strings must be in double quotes, not in back quotes"},
        {"\\"sv, "a backslash outside a string: remove it"},
        {"..."sv, "... is not JSON: write out what it stands for, or remove it"},
        {"<"sv, "this looks like XML: a system spec document is JSON"},
        {"("sv, "round brackets are not JSON: write { } or [ ]"},
};

// --- Words ---

struct WordRow {
    const char* word;  // In small letters.
    const char* remedy;
};

constexpr char kNoNumber[] = "write a number, or leave the member out";

constexpr WordRow kWords[] = {
        {"true", "write true in small letters"},
        {"false", "write false in small letters"},
        {"null", "write null in small letters"},
        {"yes", "write true"},
        {"on", "write true"},
        {"no", "write false"},
        {"off", "write false"},
        {"none", "write null, or leave the member out"},
        {"nil", "write null, or leave the member out"},
        {"undefined", "write null, or leave the member out"},
        {"nan", kNoNumber},
        {"inf", kNoNumber},
        {"infinity", kNoNumber},
};

// What the rows and functions below look at.
struct Context {
    const Source& source;
    std::string_view text;  // As the parser sees it.
    const Misfit& misfit;

    std::string_view of(Span span) const {
        return text.substr(span.start, span.limit - span.start);
    }
    std::string_view token() const { return of(misfit.token.span); }
    bool follows(size_t at) const { return misfit.previous.span.limit == at; }
    bool isFirst() const { return misfit.previous.kind == Token::kEnd; }
};

using MaybeHint = std::optional<SyntaxHint>;

// "3:17": the file is the finding's own.
std::string positionIn(const Source& source, size_t offset) {
    const Source::Position position = source.positionOf(offset);
    return std::to_string(position.line) + ":" + std::to_string(position.column);
}

std::string shown(std::string_view text) {
    constexpr size_t kLongest = 40;
    const std::string_view start = clipped(text, kLongest);
    return std::string(start) + (start.size() < text.size() ? "..." : "");
}

// The text from `at` to the next blank, mark or quote.
std::string_view runFrom(std::string_view text, size_t at) {
    const auto end =
            std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), endsWord);
    return text.substr(at, static_cast<size_t>(end - text.begin()) - at);
}

MaybeHint atToken(const Context& context, std::string message) {
    return SyntaxHint{context.misfit.token.span, std::move(message), {}};
}

MaybeHint startOfDocument(const Source& source, std::string_view parserText) {
    const std::string_view text = source.text();
    if (parserText.find_first_not_of(kJsonBlanks) == kNowhere) {
        return SyntaxHint{{text.size(), text.size()}, "the document is empty", {}};
    }
    for (const StartRow& row : kStarts) {
        if (text.substr(0, row.start.size()) == row.start) {
            return SyntaxHint{{0, row.start.size()}, row.message, {}};
        }
    }
    if (text.size() > 1 && (text[0] == '\0' || text[1] == '\0')) {
        return SyntaxHint{{0, 1}, "the document is UTF-16: save it as UTF-8", {}};
    }
    return std::nullopt;
}

// A comment in a comment: the first end ends both, and the rest of the outer one is left.
MaybeHint nestedComment(const Context& context) {
    const std::string_view text = context.source.text();
    const size_t start = context.misfit.previous.span.limit;
    const std::string_view between = text.substr(start, context.misfit.token.span.start - start);
    const size_t end = between.rfind("*/");
    const size_t inner = end == kNowhere ? kNowhere : between.rfind("/*", end);
    const size_t outer =
            inner == kNowhere || inner == 0 ? kNowhere : between.rfind("/*", inner - 1);
    if (outer == kNowhere || between.find("*/", outer + 2) != end) {
        return std::nullopt;
    }
    return SyntaxHint{context.misfit.token.span,
                      "comments do not nest: the one that opens at " +
                              positionIn(context.source, start + outer) +
                              " ends at the first \"*/\"",
                      {{&context.source, {start + outer, start + outer + 2}, "the outer comment"}}};
}

MaybeHint stringOverLines(const Context& context, const Token& string) {
    return SyntaxHint{{string.span.start, string.span.start + 1},
                      "the string that opens at " + positionIn(context.source, string.span.start) +
                              " runs over the end of its line: its closing quote is missing",
                      {}};
}

MaybeHint stringItself(const Context& context) {
    const Token& token = context.misfit.token;
    if (token.kind != Token::kString) {
        return std::nullopt;
    }
    if (!token.isWhole) {
        if (context.token().find_first_of("\r\n") != kNowhere) {
            return stringOverLines(context, token);
        }
        return atToken(context, "the string that opens at " +
                                        positionIn(context.source, token.span.start) +
                                        " never ends: its closing quote is missing");
    }
    if (token.flaw != kNowhere) {
        const std::string_view escape = clipped(context.text.substr(token.flaw), 2);
        return SyntaxHint{{token.flaw, token.flaw + escape.size()},
                          std::string(escape) +
                                  (escape == "\\u" ? " needs four hexadecimal digits behind it"
                                                   : " is not an escape that JSON knows: write a "
                                                     "backslash as \\\\"),
                          {}};
    }
    return std::nullopt;
}

// A string that swallowed the start of the next one, and what then follows it.
MaybeHint stringBefore(const Context& context) {
    const Token& string = context.misfit.previous;
    if (string.kind != Token::kString || context.misfit.token.kind == Token::kEnd ||
        !context.follows(context.misfit.token.span.start) ||
        context.misfit.token.kind != Token::kWord) {
        return std::nullopt;
    }
    if (context.of(string.span).find_first_of("\r\n") != kNowhere) {
        return stringOverLines(context, string);
    }
    const char first = context.token()[0];
    if (first == '\\' || std::isalnum(static_cast<unsigned char>(first)) != 0 || first == '_') {
        return SyntaxHint{context.misfit.token.span,
                          "the string that opens at " +
                                  positionIn(context.source, string.span.start) +
                                  " ends before this: a quote is missing, or one inside it must be "
                                  "written as \\\"",
                          {{&context.source, string.span, "the string"}}};
    }
    return std::nullopt;
}

MaybeHint lookAlike(const Context& context) {
    constexpr uint32_t kFullWidthFirst = 0xFF01;
    constexpr uint32_t kFullWidthLast = 0xFF5E;
    if (context.misfit.token.kind != Token::kWord) {
        return std::nullopt;
    }
    const std::string_view token = context.token();
    const uint32_t code = utf8Length(token) == token.size() ? codePointOf(token) : 0;
    char number[16];
    std::snprintf(number, sizeof(number), "U+%04X", code);
    if (code >= kFullWidthFirst && code <= kFullWidthLast) {
        const char plain = static_cast<char>(code - kFullWidthFirst + '!');
        return atToken(context, std::string("a full-width '") + plain + "' (" + number +
                                        "): write the plain one");
    }
    if (const OddCharacter* const odd = oddCharacter(code)) {
        return atToken(context, std::string(odd->name) + " (" + number + "): " + odd->remedy);
    }
    return std::nullopt;
}

MaybeHint startOfToken(const Context& context) {
    if (context.misfit.token.kind != Token::kWord) {
        return std::nullopt;
    }
    const size_t at = context.misfit.token.span.start;
    const std::string_view rest = context.text.substr(at);
    for (const StartRow& row : kTokenStarts) {
        if (rest.substr(0, row.start.size()) == row.start) {
            return SyntaxHint{{at, at + row.start.size()}, row.message, {}};
        }
    }
    if (rest[0] == '=') {
        return atToken(context, context.misfit.expected == Expected::Colon
                                        ? "write ':' between a name and its value, not '='"
                                        : "'=' is not JSON: names and values are \"name\": value");
    }
    if (rest[0] == ';') {
        return atToken(context, context.misfit.expected == Expected::CommaOrEnd
                                        ? "write ',' between values, not ';'"
                                        : "';' is not JSON: remove it");
    }
    return std::nullopt;
}

bool consistsOf(std::string_view text, int (*is)(int)) {
    return std::all_of(text.begin(), text.end(),
                       [is](char c) { return is(static_cast<unsigned char>(c)) != 0; });
}

// "1,000" in an object: the parser takes the comma for the end of the member.
MaybeHint thousands(const Context& context) {
    const Misfit& misfit = context.misfit;
    const size_t comma = misfit.previous.span.start;
    const std::string_view digits = context.token();
    if (misfit.expected != Expected::Name || !context.follows(misfit.token.span.start) ||
        digits.size() != 3 || !consistsOf(digits, std::isdigit) || comma == 0) {
        return std::nullopt;
    }
    size_t start = comma;
    while (start > 0 && std::isdigit(static_cast<unsigned char>(context.text[start - 1])) != 0) {
        --start;
    }
    if (start == comma) {
        return std::nullopt;
    }
    return SyntaxHint{{start, misfit.token.span.limit},
                      "a number has no thousands separator: write " +
                              shown(context.of({start, comma})) + std::string(digits),
                      {}};
}

std::string hexadecimalHint(std::string_view digits) {
    const std::string text(digits.substr(0, 16));
    const bool isNumber =
            !digits.empty() && digits.size() <= 16 && consistsOf(digits, std::isxdigit);
    return "JSON has no hexadecimal numbers: " +
           (isNumber ? "write " + std::to_string(std::strtoull(text.c_str(), nullptr, 16))
                     : std::string("write it in decimal")) +
           ", or put a perf word in double quotes";
}

std::string numberHint(std::string_view number) {
    const size_t digits = number[0] == '-' || number[0] == '+' ? 1 : 0;
    const std::string_view magnitude = number.substr(digits);
    if (magnitude.substr(0, 2) == "0x" || magnitude.substr(0, 2) == "0X") {
        return hexadecimalHint(magnitude.substr(2));
    }
    constexpr size_t kPerfWordDigits = 8;
    if (number.size() == kPerfWordDigits && consistsOf(number, std::isxdigit)) {
        return hexadecimalHint(number);
    }
    if (number[0] == '+') {
        return "a number has no plus sign: write " + shown(magnitude);
    }
    if (number[0] == '.') {
        return "a number needs a digit before its point: write 0" + shown(number);
    }
    if (magnitude.find('_') != kNowhere) {
        std::string plain(number);
        plain.erase(std::remove(plain.begin(), plain.end(), '_'), plain.end());
        return "a number has no '_' between its digits: write " + shown(plain);
    }
    const size_t end = std::min(magnitude.find_first_not_of("0123456789."), magnitude.size());
    if (end < magnitude.size() && consistsOf(magnitude.substr(end), std::isalpha) &&
        inSmallLetters(magnitude[end]) != 'e') {
        return "a number has no unit or suffix: write " + shown(number.substr(0, digits + end)) +
               ", or a string in double quotes";
    }
    return shown(number) + " is not a number of JSON";
}

bool beginsNumber(std::string_view word) {
    const size_t digit = word.find_first_not_of("+-.");
    return digit <= 2 && std::isdigit(static_cast<unsigned char>(word[digit])) != 0;
}

MaybeHint numberForm(const Context& context) {
    if (context.misfit.token.kind != Token::kWord) {
        return std::nullopt;
    }
    const Span whole = {context.misfit.token.span.start,
                        context.misfit.token.span.start +
                                runFrom(context.text, context.misfit.token.span.start).size()};
    if (MaybeHint hint = thousands(context)) {
        return hint;
    }
    if (context.misfit.previous.kind == Token::kWord &&
        context.follows(context.misfit.token.span.start)) {
        return SyntaxHint{whole,
                          "this follows " + shown(context.of(context.misfit.previous.span)) +
                                  " without a blank or a comma: a number has no unit or suffix",
                          {}};
    }
    const bool isValue = context.misfit.expected == Expected::Value ||
                         context.misfit.expected == Expected::ValueOrEnd;
    if (!isValue || !beginsNumber(context.token())) {
        return std::nullopt;
    }
    return SyntaxHint{whole, numberHint(context.of(whole)), {}};
}

std::optional<std::string> wordHint(std::string_view word) {
    const std::string small =
            inSmallLetters(word.substr(word.find_first_not_of("+-") == 1 ? 1 : 0));
    for (const WordRow& row : kWords) {
        if (small == row.word) {
            return std::string(word) + " is not a value of JSON: " + row.remedy;
        }
    }
    return std::nullopt;
}

// A word where a string belongs, or one that JSON does not know.
MaybeHint unquoted(const Context& context) {
    const Token& token = context.misfit.token;
    const bool isName = context.misfit.expected == Expected::Name ||
                        context.misfit.expected == Expected::NameOrEnd;
    const bool isValue = context.misfit.expected == Expected::Value ||
                         context.misfit.expected == Expected::ValueOrEnd;
    if (token.kind != Token::kWord || (!isName && !isValue)) {
        return std::nullopt;
    }
    const std::string_view run = runFrom(context.text, token.span.start);
    const Span whole = {token.span.start, token.span.start + run.size()};
    if (whole.limit < context.text.size() && context.text[whole.limit] == '"') {
        return SyntaxHint{whole, "the opening quote of \"" + shown(run) + "\" is missing", {}};
    }
    if (static_cast<unsigned char>(run[0]) < ' ' || run[0] == '\x7F') {
        return SyntaxHint{whole, "a control character: remove it", {}};
    }
    if (isName) {
        return SyntaxHint{whole, "a name must be in double quotes: \"" + shown(run) + "\"", {}};
    }
    if (const auto hint = wordHint(run)) {
        return SyntaxHint{whole, *hint, {}};
    }
    return SyntaxHint{whole,
                      context.isFirst() ? "a document starts with '{', not with " + shown(run)
                                        : "text must be in double quotes: \"" + shown(run) + "\"",
                      {}};
}

// --- Marks: commas, colons, brackets ---

// Which bracket lacks its end, for a text that ends or a bracket of the other kind.
MaybeHint openBracket(const Context& context) {
    const Misfit& misfit = context.misfit;
    const char kind = misfit.token.kind;
    if (misfit.open.empty() || (kind != Token::kEnd && kind != '}' && kind != ']')) {
        return std::nullopt;
    }
    const OpenBracket& innermost = misfit.open.back();
    if (kind == (innermost.kind == '{' ? '}' : ']')) {
        return std::nullopt;  // It is the right one, but comes too early.
    }
    const OpenBracket& bracket = misfit.unclosed ? *misfit.unclosed : innermost;
    const std::string name = std::string("the '") + bracket.kind + "' that opens at " +
                             positionIn(context.source, bracket.at);
    const std::string end(1, bracket.kind == '{' ? '}' : ']');
    SyntaxHint hint = {misfit.token.span, "", {}};
    hint.related.push_back({&context.source, {bracket.at, bracket.at + 1}, "it opens here"});
    if (kind == Token::kEnd) {
        hint.span = {misfit.previous.span.limit, misfit.previous.span.limit};
        hint.message = "the text ends here, but " + name + " is still open: its '" + end +
                       "' is missing" + (misfit.unclosed ? ", as the indentation tells" : "");
        return hint;
    }
    const char wanted = kind == '}' ? '{' : '[';
    const bool isMeantForOuter =
            std::any_of(misfit.open.begin(), misfit.open.end(),
                        [wanted](const OpenBracket& bracket) { return bracket.kind == wanted; });
    hint.message = isMeantForOuter
                           ? name + " is still open: its '" + end + "' is missing before this '" +
                                     kind + "'"
                           : "write '" + end + "' here, not '" + kind + "': it closes " + name;
    return hint;
}

// A comma too many.
MaybeHint strayComma(const Context& context) {
    const Misfit& misfit = context.misfit;
    const char kind = misfit.token.kind;
    const bool isAfterComma = misfit.previous.kind == ',';
    const char end = misfit.open.empty() ? '\0' : misfit.open.back().kind == '{' ? '}' : ']';
    if (isAfterComma && kind != Token::kEnd && kind == end) {
        return SyntaxHint{misfit.previous.span,
                          std::string("a comma is left over before the '") + kind + "': remove it",
                          {}};
    }
    if (kind == ',' &&
        (isAfterComma || misfit.previous.kind == '{' || misfit.previous.kind == '[')) {
        return atToken(context, isAfterComma ? "two commas in a row: remove one"
                                             : "nothing is before this comma: remove it");
    }
    return std::nullopt;
}

MaybeHint missingComma(const Context& context) {
    const Misfit& misfit = context.misfit;
    if (misfit.expected != Expected::CommaOrEnd) {
        return std::nullopt;
    }
    if (misfit.token.kind == ':') {
        return misfit.open.back().kind == '['
                       ? atToken(context,
                                 "a name with a value belongs into { }, not into the "
                                 "list that opens at " +
                                         positionIn(context.source, misfit.open.back().at))
                       : atToken(context, "a second ':': a ',' or a '{' is missing before it");
    }
    return SyntaxHint{misfit.token.span,
                      "a comma is missing: write it behind the value that ends at " +
                              positionIn(context.source, misfit.previous.span.limit - 1),
                      {}};
}

MaybeHint missingPart(const Context& context) {
    const Misfit& misfit = context.misfit;
    const bool isMark = misfit.token.kind == ',' || misfit.token.kind == '}' ||
                        misfit.token.kind == ']' || misfit.token.kind == Token::kEnd;
    switch (misfit.expected) {
        case Expected::Colon:
            return isMark ? atToken(context, shown(context.of(misfit.previous.span)) +
                                                     " has no value: write ':' and the value "
                                                     "behind it")
                          : atToken(context, "a ':' is missing between the name and its value");
        case Expected::Name:
        case Expected::NameOrEnd:
            return atToken(context, "a name in double quotes is missing before this");
        case Expected::Value:
        case Expected::ValueOrEnd:
            return context.isFirst() ? atToken(context, "a document starts with '{'")
                                     : atToken(context, "a value is missing before this");
        case Expected::CommaOrEnd:
            break;
    }
    return std::nullopt;
}

// In this order: the special before the general.
constexpr MaybeHint (*kHints[])(const Context& context) = {
        nestedComment, stringItself, stringBefore, lookAlike,    startOfToken, numberForm,
        unquoted,      strayComma,   openBracket,  missingComma, missingPart,
};

}  // namespace

SyntaxHint syntaxHint(const Source& source, std::string_view parserText, size_t offset) {
    if (MaybeHint hint = startOfDocument(source, parserText)) {
        return *hint;
    }
    const std::optional<Misfit> misfit = findMisfit(parserText);
    if (misfit && misfit->token.span.start <= offset) {
        for (const auto& make : kHints) {
            if (MaybeHint hint = make({source, parserText, *misfit})) {
                return *hint;
            }
        }
    }
    return {};
}

std::vector<Span> rawControlCharacters(std::string_view parserText) {
    const auto isRaw = [](unsigned char c) { return c < ' '; };
    std::vector<Span> found;
    size_t quote = parserText.find('"');
    while (quote != kNowhere) {
        const size_t end = std::min(endOfString(parserText, quote), parserText.size());
        const std::string_view quoted = parserText.substr(quote, end - quote);
        const auto raw = std::find_if(quoted.begin(), quoted.end(), isRaw);
        if (raw != quoted.end()) {
            const size_t at = quote + static_cast<size_t>(raw - quoted.begin());
            found.push_back({at, at + 1});
        }
        quote = parserText.find('"', end);
    }
    return found;
}

}  // namespace kc2::tool
