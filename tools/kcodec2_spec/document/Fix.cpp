// Changes of a text that fix what was found in it.

#include "document/Fix.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/Spelling.h"
#include "base/Text.h"

namespace kc2::tool {

std::string withFixes(std::string_view text, std::vector<Fix> fixes) {
    std::stable_sort(fixes.begin(), fixes.end(),
                     [](const Fix& a, const Fix& b) { return a.span.start < b.span.start; });
    std::string result;
    size_t at = 0;
    for (const Fix& fix : fixes) {
        const std::string_view replaced =
                text.substr(fix.span.start, fix.span.limit - fix.span.start);
        if (fix.span.start < at || replaced.find('\n') != std::string_view::npos ||
            fix.replacement.find('\n') != std::string::npos) {
            continue;
        }
        result.append(text, at, fix.span.start - at).append(fix.replacement);
        at = fix.span.limit;
    }
    return result.append(text, at, std::string_view::npos);
}

std::vector<Fix> renaming(std::string_view text, Span quotedName, std::string_view meant) {
    constexpr size_t kMostMistakes = 2;
    if (quotedName.limit < quotedName.start + 2) {
        return {};
    }
    const std::string_view name =
            text.substr(quotedName.start + 1, quotedName.limit - quotedName.start - 2);
    if (digitsOf(name) != digitsOf(meant) || name.find('\n') != std::string_view::npos ||
        editDistance(name, meant, kMostMistakes) > kMostMistakes) {
        return {};
    }
    return {{quotedName, fmt::format("\"{}\"", meant), fmt::format("write \"{}\"", meant)}};
}

}  // namespace kc2::tool
