// Text of unknown bytes, escaped for a page.

#include "report/Html.h"

#include "base/Utf8.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

// Appends the character, or the reference that stands for it where it is markup.
void append(char c, std::string* text) {
    switch (c) {
        case '&':
            text->append("&amp;");
            break;
        case '<':
            text->append("&lt;");
            break;
        case '>':
            text->append("&gt;");
            break;
        case '"':
            text->append("&quot;");
            break;
        case '\'':
            text->append("&#39;");
            break;
        default:
            text->push_back(c);
    }
}

}  // namespace

std::string html(std::string_view text) {
    std::string result;
    for (const char c : escaped(text)) {
        append(c, &result);
    }
    return result;
}

std::string htmlOfName(std::string_view name) {
    constexpr size_t kMostUnbroken = 30;
    const std::string text = escaped(name);
    std::string result;
    size_t unbroken = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        append(text[i], &result);
        ++unbroken;
        const bool isEnd = i + 1 == text.size();
        const bool isInside = !isEnd && !isFirstByteOfCharacter(text[i + 1]);
        const bool isInPath = text[i] == '/' && i != 0 && text[i - 1] != ' ';
        const bool isMark = text[i] == '_' || isInPath;
        const bool isBreak = isMark && !isEnd && text[i + 1] != text[i];
        if (isBreak || (unbroken >= kMostUnbroken && !isEnd && !isInside)) {
            result += "<wbr>";
            unbroken = 0;
        }
    }
    return result;
}

}  // namespace kc2::tool
