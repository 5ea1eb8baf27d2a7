// The tool's decoder of UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kc2::tool {

// Whether a character begins with this byte. Inline, so that a count over a whole document is a
// loop that compilers vectorise.
constexpr bool isFirstByteOfCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

// The code point that starts at `*at`, which must be in the text; moves `*at` to the next one. A
// byte that starts no character is returned as its value; a character that the text cuts off is
// returned as the bits that are there.
char32_t nextCharacter(std::string_view text, size_t* at);

// The code point of a whole character.
char32_t codePointOf(std::string_view character);

// The start of `text`, of at most `bytes` bytes and of whole characters.
std::string_view clipped(std::string_view text, size_t bytes);

// `text` as a message shows it: at most 40 bytes of it, and "..." where it is cut.
std::string shortened(std::string_view text);

}  // namespace kc2::tool
