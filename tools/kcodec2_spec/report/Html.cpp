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

}  // namespace

std::string html(std::string_view text) {
    std::string result;
    for (const char c : escaped(text)) {
        const std::string_view reference = referenceOf(c);
        if (reference.empty()) {
            result += c;
        } else {
            result += reference;
        }
    }
    return result;
}

}  // namespace kc2::tool
