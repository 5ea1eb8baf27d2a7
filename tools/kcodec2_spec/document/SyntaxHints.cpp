// What is wrong with a text that the JSON parser rejects, and what to write instead: tables and
// functions, the special before the general.

#include "document/SyntaxHints.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "base/OddCharacters.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// --- What a text starts with that is not a document ---

struct StartRow {
    std::string_view start;
    const char* message;
};

using namespace std::string_view_literals;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

constexpr char kNoXmlComment[] = "<!-- --> is not a comment in JSON: write /* */";
constexpr char kDiff[] = "this is a diff, not a document: apply it to the document";

constexpr StartRow kStarts[] = {
        {"\xFF\xFE"sv,
         "the document is UTF-16 or UTF-32: save it as UTF-8 without byte order mark"},
        {"\xFE\xFF"sv, "the document is UTF-16: save it as UTF-8 without byte order mark"},
        {"\0\0\xFE\xFF"sv, "the document is UTF-32: save it as UTF-8 without byte order mark"},
        {"\x1F\x8B"sv, "the document is compressed with gzip: unpack it"},
        {"version https://git-lfs"sv,
         "this is a Git LFS pointer, not the document: fetch it with \"git lfs pull\""},
        {"<?xml"sv, "this is XML: a system spec document is JSON"},
        {"<!--"sv, kNoXmlComment},
        {"diff --git"sv, kDiff},
        {"--- "sv, kDiff},
        {"@@ -"sv, kDiff},
        {"<!"sv, "this is XML: a system spec document is JSON"},
};

// --- Beginnings of tokens ---

constexpr char kPlaceholder[] = "a placeholder that nothing has replaced: write its value";

constexpr StartRow kTokenStarts[] = {
        {"<<<<<<<"sv, "a merge mark: the merge was not finished; keep one of the two sides"},
        {"======="sv, "a merge mark: the merge was not finished; keep one of the two sides"},
        {">>>>>>>"sv, "a merge mark: the merge was not finished; keep one of the two sides"},
        {"|||||||"sv, "a merge mark: the merge was not finished; keep one of the two sides"},
        {"/*"sv, "the comment never ends: \"*/\" is missing"},
        {"*/"sv, "this ends a comment that nothing opened (comments do not nest)"},
        {"/"sv, "a lone '/': a comment starts with // or /*"},
        {"<!--"sv, kNoXmlComment},
        {"-->"sv, kNoXmlComment},
        {"@@ -"sv, "a line of a diff: remove it"},
        {"$"sv, kPlaceholder},
        {"@"sv, kPlaceholder},
        {"%"sv, kPlaceholder},
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
    bool expectsName() const {
        return misfit.expected == Expected::Name || misfit.expected == Expected::NameOrEnd;
    }
    bool expectsValue() const {
        return misfit.expected == Expected::Value || misfit.expected == Expected::ValueOrEnd;
    }
    // Whether the token is an element of a use case's list of perf words.
    bool isInPerfWords() const {
        const std::vector<OpenBracket>& open = misfit.open;
        return open.size() == 4 && open[1].key == targetSpecRoot &&
               open[2].key == targetSpecPerfResourceValues && open[2].kind == '{' &&
               open[3].kind == '[';
    }
};

using MaybeHint = std::optional<SyntaxHint>;

SyntaxHint withFix(SyntaxHint hint, Fix fix, Recovery recovery) {
    hint.fixes.push_back(std::move(fix));
    hint.recovery = recovery;
    return hint;
}

// The text from `at` to the next blank, mark or quote.
std::string_view runFrom(std::string_view text, size_t at) {
    const auto end =
            std::find_if(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), endsWord);
    return text.substr(at, static_cast<size_t>(end - text.begin()) - at);
}

bool consistsOf(std::string_view text, int (*is)(int)) {
    return std::all_of(text.begin(), text.end(),
                       [is](char c) { return is(static_cast<unsigned char>(c)) != 0; });
}

MaybeHint atToken(const Context& context, std::string message) {
    return SyntaxHint{context.misfit.token.span, std::move(message)};
}

// A line that was copied from a diff, with its mark. The parser may have read a minus as a number.
MaybeHint lineOfDiff(const Context& context) {
    for (const Token* const token : {&context.misfit.previous, &context.misfit.token}) {
        const size_t start = token->span.start;
        const std::string_view mark = context.of(token->span);
        if ((mark == "+" || mark == "-") && (start == 0 || context.text[start - 1] == '\n')) {
            return SyntaxHint{token->span,
                              mark == "+" ? "the '+' is the mark of a line in a diff: remove it"
                                          : "the '-' is the mark of a line in a diff: remove the "
                                            "line"};
        }
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
                      fmt::format("comments do not nest: the one that opens at {} ends at the "
                                  "first \"*/\"",
                                  context.source.positionText(start + outer)),
                      {{&context.source, {start + outer, start + outer + 2}, "the outer comment"}}};
}

MaybeHint stringOverLines(const Context& context, const Token& string) {
    return SyntaxHint{{string.span.start, string.span.start + 1},
                      fmt::format("the string that opens at {} runs past the end of its line: its "
                                  "closing quote is missing",
                                  context.source.positionText(string.span.start))};
}

constexpr char kExtraQuote[] = "there are two quotes in a row: remove one";

// The closing quote is there twice, so that the second one opens a string of what follows.
MaybeHint extraQuote(const Context& context) {
    const Misfit& misfit = context.misfit;
    const bool isBeside = misfit.token.kind == Token::kString &&
                          misfit.previous.kind == Token::kString &&
                          context.follows(misfit.token.span.start);
    const size_t quote = misfit.token.span.start;
    if (!isBeside || context.text.find_first_of(" \t\r\n,:]}", quote + 1) != quote + 1) {
        return std::nullopt;
    }
    return SyntaxHint{{quote, quote + 1}, kExtraQuote};
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
        return atToken(context, fmt::format("the string that opens at {} never ends: its closing "
                                            "quote is missing",
                                            context.source.positionText(token.span.start)));
    }
    const size_t bad = badEscapeIn(context.token());
    if (bad == kNowhere) {
        return std::nullopt;
    }
    const std::string_view escape = clipped(context.token().substr(bad), 2);
    const size_t at = token.span.start + bad;
    const std::string_view digits = context.token().substr(bad + escape.size()).substr(0, 4);
    const bool isHalf = escape == "\\u" && digits.size() == 4 && consistsOf(digits, std::isxdigit);
    return SyntaxHint{{at, at + escape.size()},
                      fmt::format("{} {}", escape,
                                  isHalf            ? "begins a pair: a second \\u must follow"
                                  : escape == "\\u" ? "needs four hexadecimal digits after it"
                                                    : "is not an escape that JSON knows: write a "
                                                      "backslash as \\\\")};
}

// A string that swallowed the start of the next one, and what then follows it.
MaybeHint stringBefore(const Context& context) {
    const Token& string = context.misfit.previous;
    if (string.kind != Token::kString || context.misfit.token.kind != Token::kWord ||
        !context.follows(context.misfit.token.span.start)) {
        return std::nullopt;
    }
    if (context.of(string.span).find_first_of("\r\n") != kNowhere) {
        return stringOverLines(context, string);
    }
    const char first = context.token()[0];
    if (context.of(string.span) == "\"\"") {
        return SyntaxHint{string.span, kExtraQuote};
    }
    if (first == '\\' || std::isalnum(static_cast<unsigned char>(first)) != 0 || first == '_') {
        return SyntaxHint{context.misfit.token.span,
                          fmt::format("the string that opens at {} ends before this: a quote is "
                                      "missing, or one inside it must be written as \\\"",
                                      context.source.positionText(string.span.start)),
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
    if (code >= kFullWidthFirst && code <= kFullWidthLast) {
        return atToken(context, fmt::format("a full-width '{}' (U+{:04X}): write the plain one",
                                            static_cast<char>(code - kFullWidthFirst + '!'), code));
    }
    if (const OddCharacter* const odd = oddCharacter(code)) {
        return atToken(context, fmt::format("{} (U+{:04X}): {}", odd->name, code, odd->remedy));
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
        if (rest.starts_with(row.start)) {
            return SyntaxHint{{at, at + row.start.size()}, row.message};
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

// A number that is written with separators of thousands, as "1,958,400", "1 000 000" and the like:
// the whole of it, as far as it is on one line, and the number without them.
struct GroupedNumber {
    Span span;
    std::string digits;
};

// The groups around `at`, which is in one of them; nothing where it is no such number.
std::optional<GroupedNumber> groupedNumberAt(std::string_view text, size_t at) {
    constexpr size_t kGroup = 3;
    constexpr std::string_view kSeparators = ", .'_";
    const auto isSeparator = [&](size_t place) {
        return place > 0 && place + 1 < text.size() && kSeparators.find(text[place]) != kNowhere &&
               isDigit(text[place - 1]) && isDigit(text[place + 1]);
    };
    size_t start = at;
    while (start > 0 && (isDigit(text[start - 1]) || isSeparator(start - 1))) {
        --start;
    }
    GroupedNumber number = {{start, start}, ""};
    char separator = '\0';
    size_t group = 0;
    size_t& end = number.span.limit;
    for (; end < text.size() && (isDigit(text[end]) || isSeparator(end)); ++end) {
        if (isDigit(text[end])) {
            number.digits += text[end];
            ++group;
            continue;
        }
        const bool isFirst = separator == '\0';
        if (group > kGroup || (!isFirst && (group != kGroup || separator != text[end]))) {
            return std::nullopt;
        }
        separator = text[end];
        group = 0;
    }
    const bool isGrouped = separator != '\0' && group == kGroup;
    return isGrouped ? std::optional(number) : std::nullopt;
}

bool isNumberToken(const Context& context, const Token& token) {
    const std::string_view text = context.of(token.span);
    return token.kind == Token::kWord && (isDigit(text[0]) || text[0] == '-');
}

// The parser may read the separator as the end of the member or element.
MaybeHint thousands(const Context& context) {
    const Misfit& misfit = context.misfit;
    if (misfit.token.kind != Token::kWord ||
        (!isDigit(context.token()[0]) && context.token()[0] != '\'')) {
        return std::nullopt;
    }
    const bool isInList = !misfit.open.empty() && misfit.open.back().kind == '[';
    const auto number = groupedNumberAt(context.text, misfit.token.span.start);
    // In a list, a comma between two numbers is what belongs there.
    const bool isMisfit =
            number &&
            (number->span.start < misfit.token.span.start ||
             (number->span.start == misfit.token.span.start && !isValue(context.token())));
    if (!isMisfit || (isInList && context.of(number->span).find(',') != kNowhere)) {
        return std::nullopt;
    }
    return SyntaxHint{number->span,
                      fmt::format("JSON numbers have no thousands separators: write {}",
                                  shortened(number->digits))};
}

// A comma or a digit may be missing: nobody can say which.
MaybeHint twoNumbers(const Context& context) {
    const Misfit& misfit = context.misfit;
    const Span between = {misfit.previous.span.limit, misfit.token.span.start};
    if (misfit.expected != Expected::CommaOrEnd || misfit.open.back().kind != '[' ||
        !isNumberToken(context, misfit.previous) || !isNumberToken(context, misfit.token) ||
        between.start == between.limit || context.of(between).find_first_of("\r\n") != kNowhere) {
        return std::nullopt;
    }
    const std::string before(context.of(misfit.previous.span));
    const std::string_view after = runFrom(context.text, misfit.token.span.start);
    return SyntaxHint{
            {misfit.previous.span.start, misfit.token.span.start + after.size()},
            after[0] == '-'
                    ? fmt::format("a comma is missing, or there is a space next to a minus sign: "
                                  "write {}, {} or what is meant",
                                  shortened(before), shortened(after))
            : before == "-"
                    ? fmt::format("there is a space after the minus sign: write -{}",
                                  shortened(after))
                    : fmt::format("a comma is missing, or there is a space inside a number: "
                                  "write {}, {} or {}",
                                  shortened(before), shortened(after),
                                  shortened(before + std::string(after)))};
}

// A perf word without its quotes: "0x" says how it is meant.
bool isHexadecimalWord(std::string_view word) {
    constexpr size_t kMostDigits = 8;
    return word.size() > 2 && word.size() <= 2 + kMostDigits && word[0] == '0' &&
           (word[1] == 'x' || word[1] == 'X') && consistsOf(word.substr(2), std::isxdigit);
}

std::string hexadecimalHint(std::string_view digits, std::string_view sign) {
    const std::string text(digits.substr(0, 16));
    const bool isNumber =
            !digits.empty() && digits.size() <= 16 && consistsOf(digits, std::isxdigit);
    return fmt::format(
            "JSON has no hexadecimal numbers: write {}, or put a perf word in double quotes",
            isNumber ? fmt::format("{}{}", sign, std::strtoull(text.c_str(), nullptr, 16))
                     : std::string("it in decimal"));
}

std::string numberHint(std::string_view number) {
    const size_t digits = number[0] == '-' || number[0] == '+' ? 1 : 0;
    const std::string_view magnitude = number.substr(digits);
    if (magnitude.substr(0, 2) == "0x" || magnitude.substr(0, 2) == "0X") {
        return hexadecimalHint(magnitude.substr(2), number[0] == '-' ? "-" : "");
    }
    constexpr size_t kPerfWordDigits = 8;
    if (number.size() == kPerfWordDigits && consistsOf(number, std::isxdigit)) {
        return hexadecimalHint(number, "");
    }
    if (number[0] == '+') {
        return fmt::format("JSON numbers have no plus sign: write {}", shortened(magnitude));
    }
    if (number[0] == '.') {
        return fmt::format("JSON numbers need a digit before the point: write 0{}",
                           shortened(number));
    }
    if (magnitude.find('_') != kNowhere) {
        std::string plain(number);
        plain.erase(std::remove(plain.begin(), plain.end(), '_'), plain.end());
        return fmt::format("JSON numbers have no '_' between their digits: write {}",
                           shortened(plain));
    }
    const size_t end = std::min(magnitude.find_first_not_of("0123456789."), magnitude.size());
    if (end < magnitude.size() && consistsOf(magnitude.substr(end), std::isalpha) &&
        inSmallLetters(magnitude[end]) != 'e') {
        return fmt::format(
                "JSON numbers have no unit or suffix: write {}, or a string in double quotes",
                shortened(number.substr(0, digits + end)));
    }
    return fmt::format("{} is not a JSON number", shortened(number));
}

bool beginsNumber(std::string_view word) {
    const size_t digit = word.find_first_not_of("+-.");
    return digit <= 2 && std::isdigit(static_cast<unsigned char>(word[digit])) != 0;
}

MaybeHint numberForm(const Context& context) {
    const Token& token = context.misfit.token;
    if (token.kind != Token::kWord) {
        return std::nullopt;
    }
    if (MaybeHint hint = twoNumbers(context)) {
        return hint;
    }
    const std::string_view run = runFrom(context.text, token.span.start);
    const Span whole = {token.span.start, token.span.start + run.size()};
    if (context.misfit.previous.kind == Token::kWord && context.follows(token.span.start)) {
        return SyntaxHint{whole, fmt::format("this follows {} without a blank or a comma: JSON "
                                             "numbers have no unit or suffix",
                                             shortened(context.of(context.misfit.previous.span)))};
    }
    if (!context.expectsValue() || !beginsNumber(context.token())) {
        return std::nullopt;
    }
    SyntaxHint hint = {whole, numberHint(run)};
    if (run[0] == '+' && isDigit(run[1]) && isValue(run.substr(1))) {
        return withFix(std::move(hint),
                       {{whole.start, whole.start + 1}, "", "remove the plus sign"},
                       Recovery::AcceptToken);
    }
    if (isHexadecimalWord(run) && context.isInPerfWords()) {
        return withFix(std::move(hint), {whole, fmt::format("\"{}\"", run), "add the quotes"},
                       Recovery::AcceptToken);
    }
    return hint;
}

std::optional<std::string> wordHint(std::string_view word) {
    const std::string small =
            inSmallLetters(word.substr(word.find_first_not_of("+-") == 1 ? 1 : 0));
    for (const WordRow& row : kWords) {
        if (small == row.word) {
            return fmt::format("{} is not a JSON value: {}", word, row.remedy);
        }
    }
    return std::nullopt;
}

// A word where a string belongs, or one that JSON does not know.
MaybeHint unquoted(const Context& context) {
    const Token& token = context.misfit.token;
    if (token.kind != Token::kWord || !(context.expectsName() || context.expectsValue())) {
        return std::nullopt;
    }
    const std::string_view run = runFrom(context.text, token.span.start);
    const Span whole = {token.span.start, token.span.start + run.size()};
    if (whole.limit < context.text.size() && context.text[whole.limit] == '"') {
        return SyntaxHint{whole,
                          fmt::format("the opening quote of \"{}\" is missing", shortened(run))};
    }
    if (static_cast<unsigned char>(run[0]) < ' ' || run[0] == '\x7F') {
        return SyntaxHint{whole, "a control character: remove it"};
    }
    if (context.expectsName()) {
        return SyntaxHint{whole,
                          fmt::format("a name must be in double quotes: \"{}\"", shortened(run))};
    }
    if (const auto hint = wordHint(run)) {
        return SyntaxHint{whole, *hint};
    }
    return SyntaxHint{
            whole, context.isFirst()
                           ? fmt::format("a document starts with '{{', not with {}", shortened(run))
                           : fmt::format("text must be in double quotes: \"{}\"", shortened(run))};
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
    const std::string name = fmt::format("the '{}' that opens at {}", bracket.kind,
                                         context.source.positionText(bracket.at));
    const char end = bracket.kind == '{' ? '}' : ']';
    SyntaxHint hint = {misfit.token.span,
                       "",
                       {{&context.source, {bracket.at, bracket.at + 1}, "it opens here"}}};
    if (kind == Token::kEnd) {
        hint.span = {misfit.previous.span.limit, misfit.previous.span.limit};
        hint.message =
                fmt::format("the text ends here, but {} is still open: its '{}' is missing{}", name,
                            end, misfit.unclosed ? ", as the indentation shows" : "");
        return hint;
    }
    const char wanted = kind == '}' ? '{' : '[';
    const bool isMeantForOuter =
            std::any_of(misfit.open.begin(), misfit.open.end(),
                        [wanted](const OpenBracket& one) { return one.kind == wanted; });
    hint.message =
            isMeantForOuter
                    ? fmt::format("{} is still open: its '{}' is missing before this '{}'", name,
                                  end, kind)
                    : fmt::format("write '{}' here, not '{}': it closes {}", end, kind, name);
    return hint;
}

// A comma too many.
MaybeHint strayComma(const Context& context) {
    const Misfit& misfit = context.misfit;
    const char kind = misfit.token.kind;
    const bool isAfterComma = misfit.previous.kind == ',';
    const char end = misfit.open.empty() ? '\0' : misfit.open.back().kind == '{' ? '}' : ']';
    if (isAfterComma && kind != Token::kEnd && kind == end) {
        return withFix({misfit.previous.span,
                        fmt::format("there is an extra comma before the '{}': remove it", kind)},
                       {misfit.previous.span, "", "remove the comma before the bracket"},
                       Recovery::DropComma);
    }
    if (kind == ',' &&
        (isAfterComma || misfit.previous.kind == '{' || misfit.previous.kind == '[')) {
        return atToken(context, isAfterComma ? "two commas in a row: remove one"
                                             : "there is nothing before this comma: remove it");
    }
    return std::nullopt;
}

// Whether a comma is all that is missing between the value before and this token. A minus without
// digits, which the parser reads as 0, is no value that somebody meant.
bool beginsNext(const Context& context) {
    const Token& token = context.misfit.token;
    if (context.of(context.misfit.previous.span) == "-") {
        return false;
    }
    if (token.kind == Token::kString) {
        return token.isWhole;
    }
    const bool isValueHere = token.kind == '{' || token.kind == '[' ||
                             (token.kind == Token::kWord && isValue(context.token()));
    return isValueHere && context.misfit.open.back().kind == '[';
}

MaybeHint missingComma(const Context& context) {
    const Misfit& misfit = context.misfit;
    if (misfit.expected != Expected::CommaOrEnd) {
        return std::nullopt;
    }
    if (misfit.token.kind == ':') {
        return atToken(context,
                       misfit.open.back().kind == '['
                               ? fmt::format("a name with a value belongs in {{ }}, not in the "
                                             "list that opens at {}",
                                             context.source.positionText(misfit.open.back().at))
                               : "a second ':': a ',' or a '{' is missing before it");
    }
    const size_t end = misfit.previous.span.limit;
    SyntaxHint hint = {misfit.token.span,
                       fmt::format("a comma is missing: write it after the value that ends at {}",
                                   context.source.positionText(end - 1))};
    return beginsNext(context)
                   ? withFix(std::move(hint), {{end, end}, ",", "add the missing comma"},
                             Recovery::InsertComma)
                   : hint;
}

MaybeHint missingPart(const Context& context) {
    const Misfit& misfit = context.misfit;
    const bool isMark = misfit.token.kind == ',' || misfit.token.kind == '}' ||
                        misfit.token.kind == ']' || misfit.token.kind == Token::kEnd;
    switch (misfit.expected) {
        case Expected::Colon:
            return atToken(context,
                           isMark ? fmt::format("{} has no value: write ':' and the value after it",
                                                shortened(context.of(misfit.previous.span)))
                                  : "a ':' is missing between the name and its value");
        case Expected::Name:
        case Expected::NameOrEnd:
            return atToken(context, misfit.token.kind == '{' && misfit.previous.kind == '{' &&
                                                    context.follows(misfit.token.span.start)
                                            ? "\"{{\" is a placeholder that nothing has replaced, "
                                              "or there is one '{' too many"
                                            : "a name in double quotes is missing before this");
        case Expected::Value:
        case Expected::ValueOrEnd:
            return atToken(context, context.isFirst() ? "a document starts with '{'"
                                                      : "a value is missing before this");
        case Expected::CommaOrEnd:
            break;
    }
    return std::nullopt;
}

// In this order: the special before the general.
constexpr MaybeHint (*kHints[])(const Context& context) = {
        lineOfDiff, nestedComment, extraQuote,   stringItself, stringBefore,
        lookAlike,  thousands,     startOfToken, numberForm,   unquoted,
        strayComma, openBracket,   missingComma, missingPart,
};

}  // namespace

std::optional<SyntaxHint> hintOnStart(const Source& source, std::string_view text) {
    const std::string_view whole = source.text();
    if (whole.starts_with(kByteOrderMark)) {
        const Span mark = {0, kByteOrderMark.size()};
        return withFix({mark, "the document starts with a byte order mark: remove it"},
                       {mark, "", "remove the byte order mark"}, Recovery::SkipStart);
    }
    if (text.find_first_not_of(kJsonBlanks) == kNowhere) {
        return SyntaxHint{{whole.size(), whole.size()}, "the document is empty"};
    }
    for (const StartRow& row : kStarts) {
        if (whole.starts_with(row.start)) {
            return SyntaxHint{{0, row.start.size()}, row.message};
        }
    }
    if (whole.size() > 1 && (whole[0] == '\0' || whole[1] == '\0')) {
        return SyntaxHint{{0, 1}, "the document is UTF-16: save it as UTF-8"};
    }
    return std::nullopt;
}

SyntaxHint hintOn(const Source& source, std::string_view text, const Misfit& misfit) {
    for (const auto& make : kHints) {
        if (MaybeHint hint = make({source, text, misfit})) {
            return *std::move(hint);
        }
    }
    return {misfit.token.span, ""};
}

std::vector<Span> rawControlCharacters(std::string_view text) {
    const auto isRaw = [](unsigned char c) { return c < ' '; };
    std::vector<Span> found;
    size_t quote = text.find('"');
    while (quote != kNowhere) {
        const size_t end = std::min(endOfString(text, quote), text.size());
        const std::string_view quoted = text.substr(quote, end - quote);
        const auto raw = std::find_if(quoted.begin(), quoted.end(), isRaw);
        if (raw != quoted.end()) {
            const size_t at = quote + static_cast<size_t>(raw - quoted.begin());
            found.push_back({at, at + 1});
        }
        quote = text.find('"', end);
    }
    return found;
}

}  // namespace kc2::tool
