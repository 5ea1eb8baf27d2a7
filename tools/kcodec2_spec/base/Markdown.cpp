// Text of unknown bytes in Markdown, in a table or outside of one.

#include "base/Markdown.h"

#include <fmt/format.h>

#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

std::string markdownCode(std::string_view text) {
    const std::string plain = escaped(text);
    if (plain.empty()) {
        return "(empty)";  // There is no empty code span.
    }
    std::string code;
    for (size_t i = 0; i < plain.size(); ++i) {
        const char c = plain[i];
        // A renderer drops a blank at both ends, and of a row that is only blanks it makes one.
        const bool isOuterBlank = c == ' ' && (i == 0 || i + 1 == plain.size());
        code += c == '|' || c == '`' || isOuterBlank
                        ? fmt::format("\\x{:02X}", static_cast<unsigned char>(c))
                        : std::string(1, c);
    }
    return fmt::format("`{}`", code);
}

std::string markdownText(std::string_view text) {
    constexpr std::string_view kMarkup = "\\`*_{}[]<>#!|&~@$^";
    std::string result;
    for (const char c : escaped(text)) {
        result += kMarkup.find(c) != std::string_view::npos
                          ? fmt::format("&#{};", static_cast<unsigned char>(c))
                          : std::string(1, c);
    }
    return result;
}

}  // namespace kc2::tool
