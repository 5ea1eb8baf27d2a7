// Small pieces of text that several commands print.
#pragma once

#include <json/value.h>
#include <json/writer.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kc2::tool {

// What JSON takes for white space. The comparisons are much faster than a search.
inline constexpr std::string_view kJsonBlanks = " \t\r\n";
constexpr bool isJsonBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// "0x40800000".
std::string hexadecimal(uint32_t value);

// The word that a person has typed: hexadecimal after 0x, else decimal. A log may show one as a
// negative number.
std::optional<uint32_t> toWord(const std::string& text);

// Prints JSON for scripts, and a line end.
void print(const Json::Value& json);

// Prints JSON on one line, without its end; for those who print many.
class JsonPrinter {
public:
    JsonPrinter();
    void print(const Json::Value& json) const;

private:
    std::unique_ptr<Json::StreamWriter> mWriter;
};

// Whether a character begins with this byte of UTF-8. Here, so that a count over a whole document
// is a loop that compilers vectorise.
constexpr bool isFirstByteOfCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

// The code point of a whole character of UTF-8.
char32_t codePointOf(std::string_view character);

// `text` without any `c` at its end.
std::string_view withoutTrailing(std::string_view text, char c);

// In every locale alike.
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

// The start of `text`, of at most `bytes` bytes and of whole characters (UTF-8).
std::string_view clipped(std::string_view text, size_t bytes);

// The words with `between` between two of them.
std::string joined(const std::vector<std::string>& words, std::string_view between);

// How many letters must be inserted, removed or replaced to make `a` out of `b`; case costs
// nothing. Something above `limit` where it is more than that.
size_t editDistance(std::string_view a, std::string_view b, size_t limit);

// How many letters both have, in the same order.
size_t commonLetters(std::string_view a, std::string_view b);

// The one of `names` that someone who wrote `word` may have meant, by at most `mostEdits` mistakes;
// empty when none is near. Of several as near it is the one with most of the word's letters.
template <typename Names>
std::string nearest(std::string_view word, const Names& names, size_t mostEdits) {
    std::string best;
    for (const std::string_view name : names) {
        const size_t distance = editDistance(word, name, mostEdits);
        if (distance <= mostEdits && distance < name.size() &&
            (best.empty() || distance < mostEdits ||
             commonLetters(word, name) > commonLetters(word, best))) {
            mostEdits = distance;
            best = name;
        }
    }
    return best;
}

// The same for a short word: beyond a third of its letters it is another one.
template <typename Names>
std::string nearest(std::string_view word, const Names& names) {
    return nearest(word, names, word.size() / 3 + 1);
}

}  // namespace kc2::tool
