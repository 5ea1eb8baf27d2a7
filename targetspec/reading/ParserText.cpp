// Prepares a document's text for the JSON parser.

#include "targetspec/reading/ParserText.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "targetspec/reading/Limits.h"

namespace kc2 {

namespace {

constexpr size_t kNone = std::string_view::npos;

// Blanks comments from the start of a text to its end. Each search remembers its result, so that no
// part of the text is searched twice for the same thing.
class CommentBlanker {
public:
    CommentBlanker(std::span<char> bytes, std::vector<TextRange>* comments)
        : mBytes(bytes), mText(bytes.data(), bytes.size()), mComments(comments) {}

    void run() {
        size_t slash = mText.find('/');
        size_t quote = slash != kNone ? mText.find('"') : kNone;
        while (slash != kNone) {
            const size_t end = quote < slash ? endOfString(mText, quote) : blankComment(slash);
            if (end == kNone) {
                return;
            }
            quote = quote < end ? mText.find('"', end) : quote;
            slash = slash < end ? mText.find('/', end) : slash;
        }
    }

private:
    // The offset after the comment that begins at `slash`; kNone if there is no complete one. The
    // parser then rejects the text there, unless the root has ended before.
    size_t blankComment(size_t slash) {
        size_t end = kNone;
        switch (slash + 1 < mText.size() ? mText[slash + 1] : '\0') {
            case '/':
                end = endOfLine(slash);
                for (char& c : mBytes.subspan(slash, end - slash)) {
                    c = ' ';
                }
                break;
            case '*':
                end = mText.find("*/", slash + 2);
                if (end == kNone) {
                    return kNone;
                }
                end += 2;
                for (char& c : mBytes.subspan(slash, end - slash)) {
                    c = c == '\n' || c == '\r' ? c : ' ';  // A store each: compilers vectorise it.
                }
                break;
            default:
                return kNone;
        }
        if (mComments != nullptr) {
            mComments->push_back({slash, end});
        }
        return end;
    }

    size_t endOfLine(size_t at) {
        if (mLineFeed <= at) {
            mLineFeed = std::min(mText.find('\n', at), mText.size());
        }
        return std::min(mText.substr(0, mLineFeed).find('\r', at), mLineFeed);
    }

    const std::span<char> mBytes;
    const std::string_view mText;
    std::vector<TextRange>* const mComments;
    size_t mLineFeed = 0;  // The first one after the last comment.
};

// Whether the text is so large, or has so many brackets anywhere, that it must be examined
// completely. Hardly any document is, and this test costs a fraction of the examination.
bool mayBreakLimit(std::string_view text) {
    if (text.size() > kMaxValues) {  // Each value needs a byte.
        return true;
    }
    size_t brackets = 0;
    for (const char bracket : {'{', '['}) {
        for (size_t at = text.find(bracket); at != kNone; at = text.find(bracket, at + 1)) {
            if (++brackets > kMaxNesting) {
                return true;
            }
        }
    }
    return false;
}

constexpr std::array<bool, 256> kIsMark = [] {
    std::array<bool, 256> marks = {};
    for (const char mark : std::string_view("[]{}\",")) {
        marks[static_cast<unsigned char>(mark)] = true;
    }
    return marks;
}();

size_t nextMark(std::string_view text, size_t at) {
    const auto isMark = [](char c) { return kIsMark[static_cast<unsigned char>(c)]; };
    return static_cast<size_t>(std::find_if(text.begin() + at, text.end(), isMark) - text.begin());
}

// Ignores what follows the root, as the parser does, and what is in a string.
std::optional<LimitBreach> findLimitBreach(std::string_view text) {
    const size_t root = text.find_first_not_of(" \t\r\n");
    if (root == kNone || (text[root] != '{' && text[root] != '[')) {
        return std::nullopt;  // It contains no values.
    }
    size_t depth = 0;
    size_t values = 1;
    for (size_t at = root; at < text.size(); at = nextMark(text, at)) {
        switch (text[at]) {
            case '"':
                at = endOfString(text, at);
                if (at == kNone) {
                    return std::nullopt;  // The parser rejects it.
                }
                continue;
            case ']':
            case '}':
                if (--depth == 0) {
                    return std::nullopt;
                }
                break;
            case ',':
                ++values;
                break;
            default:
                ++values;
                if (++depth > kMaxNesting) {
                    return LimitBreach{FindingKind::NestingTooDeep, at};
                }
                break;
        }
        if (values > kMaxValues) {
            return LimitBreach{FindingKind::TooManyValues, at};
        }
        ++at;
    }
    return std::nullopt;
}

}  // namespace

size_t endOfString(std::string_view text, size_t quote) {
    for (size_t end = text.find('"', quote + 1); end != kNone; end = text.find('"', end + 1)) {
        const size_t backslashes = end - 1 - text.find_last_not_of('\\', end - 1);
        if (backslashes % 2 == 0) {  // The quote is not escaped.
            return end + 1;
        }
    }
    return kNone;
}

std::optional<LimitBreach> makeFitForParser(std::span<char> text,
                                            std::vector<TextRange>* comments) {
    if (text.size() > kMaxTextBytes) {
        return LimitBreach{FindingKind::TextTooLong, kMaxTextBytes};
    }
    CommentBlanker(text, comments).run();
    const std::string_view fit(text.data(), text.size());
    return mayBreakLimit(fit) ? findLimitBreach(fit) : std::nullopt;
}

}  // namespace kc2
