// Text of unknown bytes, escaped for a page.

#include "report/Html.h"

#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

std::string_view referenceOf(char c) {
    switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&#39;";
        default:
            return "";
    }
}

void appendEscaped(char c, std::string* text) {
    const std::string_view reference = referenceOf(c);
    if (reference.empty()) {
        *text += c;
    } else {
        *text += reference;
    }
}

}  // namespace

std::string html(std::string_view text) {
    std::string result;
    for (const char c : escaped(text)) {
        appendEscaped(c, &result);
    }
    return result;
}

std::string htmlOfName(std::string_view name) {
    constexpr size_t kMostUnbroken = 30;
    const std::string text = escaped(name);
    std::string result;
    size_t unbroken = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        appendEscaped(text[i], &result);
        ++unbroken;
        const bool isEnd = i + 1 == text.size();
        const bool isInside = !isEnd && (static_cast<unsigned char>(text[i + 1]) & 0xC0U) == 0x80U;
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
