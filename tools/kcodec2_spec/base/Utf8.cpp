// The tool's decoder of UTF-8.

#include "base/Utf8.h"

#include <algorithm>

namespace kc2::tool {

char32_t nextCharacter(std::string_view text, size_t* at) {
    const auto first = static_cast<unsigned char>(text[(*at)++]);
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
    char32_t character = first & (more == 0 ? 0xFF : 0x3F >> more);
    for (int i = 0; i < more && *at < text.size() && !isFirstByteOfCharacter(text[*at]); ++i) {
        character = character << 6 | (static_cast<unsigned char>(text[(*at)++]) & 0x3F);
    }
    return character;
}

char32_t codePointOf(std::string_view character) {
    size_t at = 0;
    return nextCharacter(character, &at);
}

std::string_view clipped(std::string_view text, size_t bytes) {
    size_t size = std::min(text.size(), bytes);
    while (size != 0 && size < text.size() && !isFirstByteOfCharacter(text[size])) {
        --size;
    }
    return text.substr(0, size);
}

std::string shortened(std::string_view text) {
    constexpr size_t kLongest = 40;
    const std::string_view start = clipped(text, kLongest);
    return std::string(start) + (start.size() < text.size() ? "..." : "");
}

}  // namespace kc2::tool
