// What a document's text may hold before it is handed to the JSON parser.

#include "targetspec/TextLimits.h"

#include <algorithm>
#include <array>

namespace kc2 {

namespace {

constexpr size_t kNone = std::string_view::npos;

// The functions below take the offset of a token's first character and return the offset of its
// last one, or kNone when the token does not end: the parser then rejects the text by itself.

// `escape` is where the last search for a backslash has stopped; most texts hold none at all.
size_t lastOfString(std::string_view text, size_t at, size_t& escape) {
    size_t quote = text.find('"', ++at);
    for (;;) {
        if (escape < at) {
            escape = text.find('\\', at);
        }
        if (escape >= quote) {
            return quote;
        }
        at = escape + 2;
        if (at > quote) {  // It was escaped.
            quote = text.find('"', at);
        }
    }
}

size_t lastOfComment(std::string_view text, size_t at) {
    switch (at + 1 < text.size() ? text[at + 1] : '\0') {
        case '/':
            for (at += 2; at < text.size(); ++at) {
                if (text[at] == '\n' || text[at] == '\r') {
                    return at;
                }
            }
            return kNone;
        case '*': {
            const size_t star = text.find("*/", at + 2);
            return star == kNone ? kNone : star + 1;
        }
        default:
            return kNone;
    }
}

// A container that closes at once. The parser looks past comments here in objects only.
size_t lastOfEmptyContainer(std::string_view text, size_t at) {
    const bool isObject = text[at] == '{';
    for (++at; at < text.size(); ++at) {
        switch (text[at]) {
            case ' ':
            case '\t':
            case '\r':
            case '\n':
                continue;
            case '/':
                at = isObject ? lastOfComment(text, at) : kNone;
                if (at == kNone) {
                    return kNone;
                }
                continue;
            default:
                return text[at] == (isObject ? '}' : ']') ? at : kNone;
        }
    }
    return kNone;
}

// The characters at which the closer look stops, as a table: most characters of a text are others.
using Marks = std::array<bool, 256>;

constexpr Marks marksOf(std::string_view characters) {
    Marks marks = {};
    for (const char mark : characters) {
        marks[static_cast<unsigned char>(mark)] = true;
    }
    return marks;
}

constexpr Marks kMarksOfNesting = marksOf("[]{}\"/n");
constexpr Marks kMarksOfValues = marksOf("[]{}\"/n,");

size_t nextMark(std::string_view text, size_t at, const Marks& marks) {
    const auto isMark = [&](char c) { return marks[static_cast<unsigned char>(c)]; };
    const auto mark = std::find_if(text.begin() + std::min(at, text.size()), text.end(), isMark);
    return static_cast<size_t>(mark - text.begin());
}

// Each value takes a byte.
bool canHoldTooManyValues(std::string_view text) {
    return text.size() > kMaxValues;
}

// Whether `text` holds as many opening brackets as the limit, wherever they stand. Hardly any
// document does, and this costs a fraction of what the closer look takes.
bool canNestTooDeep(std::string_view text) {
    if (text.size() < kMaxNesting) {
        return false;
    }
    size_t brackets = 0;
    for (const char bracket : {'{', '['}) {
        for (size_t at = text.find(bracket); at != kNone; at = text.find(bracket, at + 1)) {
            if (++brackets == kMaxNesting) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

std::optional<LimitBreach> findLimitBreach(std::string_view text) {
    if (text.size() > kMaxTextBytes) {
        return LimitBreach{FindingKind::TextTooLong, kMaxTextBytes};
    }
    const bool countsValues = canHoldTooManyValues(text);
    if (!countsValues && !canNestTooDeep(text)) {
        return std::nullopt;
    }
    const Marks& marks = countsValues ? kMarksOfValues : kMarksOfNesting;
    size_t depth = 0;
    size_t values = 1;
    size_t escape = 0;
    for (size_t at = nextMark(text, 0, marks); at < text.size();
         at = nextMark(text, at + 1, marks)) {
        switch (text[at]) {
            case '[':
            case '{':
                ++values;
                if (++depth == kMaxNesting) {
                    const size_t last = lastOfEmptyContainer(text, at);
                    if (last == kNone) {
                        return LimitBreach{FindingKind::NestingTooDeep, at};
                    }
                    at = last;
                    --depth;
                }
                break;
            case ']':
            case '}':
                if (depth <= 1) {
                    return std::nullopt;  // The root has ended.
                }
                --depth;
                break;
            case ',':
                if (++values > kMaxValues) {
                    return LimitBreach{FindingKind::TooManyValues, at};
                }
                break;
            case '"':
                at = lastOfString(text, at, escape);
                break;
            case '/':
                at = lastOfComment(text, at);
                break;
            case 'n':
                if (depth == 0) {
                    return std::nullopt;  // A null root; it holds nothing.
                }
                break;
            default:
                break;
        }
        if (at == kNone) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace kc2
