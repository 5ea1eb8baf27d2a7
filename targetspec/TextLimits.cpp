// What a document's text may hold before it is handed to the JSON parser.

#include "targetspec/TextLimits.h"

namespace kc2 {

namespace {

constexpr size_t kNone = std::string_view::npos;

// The three functions below take the offset of a token's first character and return the offset of
// its last one, or kNone when the token does not end: the parser then rejects the text by itself.

size_t lastOfString(std::string_view text, size_t at) {
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\') {
            ++at;
        }
    }
    return at < text.size() ? at : kNone;
}

size_t lastOfComment(std::string_view text, size_t at) {
    switch (at + 1 < text.size() ? text[at + 1] : '\0') {
        case '/':
            return text.find_first_of("\r\n", at + 2);
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

}  // namespace

std::optional<LimitBreach> findLimitBreach(std::string_view text) {
    if (text.size() > kMaxTextBytes) {
        return LimitBreach{FindingKind::TextTooLong, kMaxTextBytes};
    }
    size_t depth = 0;
    size_t values = 1;
    for (size_t at = 0; at < text.size(); ++at) {
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
                at = lastOfString(text, at);
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
