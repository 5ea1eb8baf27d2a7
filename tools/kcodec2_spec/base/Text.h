// Small pieces of text that several commands print.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kc2::tool {

// JSON's white space. The comparisons are much faster than a search.
inline constexpr std::string_view kJsonBlanks = " \t\r\n";
constexpr bool isJsonBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// "0x40800000".
std::string hexadecimal(uint32_t value);

// The word that a person typed: hexadecimal after 0x, else decimal. A log may show one as a
// negative number.
std::optional<uint32_t> toWord(const std::string& text);

// `text` without any `c` at its end.
std::string_view withoutTrailing(std::string_view text, char c);

// The parts of `text` that are not empty.
std::vector<std::string_view> split(std::string_view text, char separator);

// Independent of the locale.
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string digitsOf(std::string_view text);

// ASCII letters only.
constexpr char inSmallLetters(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string inSmallLetters(std::string_view text);

// "1 place", "2 places".
std::string counted(size_t number, std::string_view what);

// `text` with blanks on the right, up to `width` bytes.
std::string padded(std::string text, size_t width);

// The words with `between` between two of them.
std::string joined(const std::vector<std::string>& words, std::string_view between);

}  // namespace kc2::tool
