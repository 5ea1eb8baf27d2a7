// Text of unknown bytes, escaped for a log or a terminal.

#include "targetspec/reading/Escaped.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace kc2 {

size_t utf8Length(std::string_view text) {
    const auto byte = [text](size_t at) {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
    };
    const unsigned first = byte(0);
    if (first < 0x80) {
        return text.empty() ? 0 : 1;
    }
    if (first < 0xC2 || first > 0xF4) {
        return 0;
    }
    if ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xF0 && byte(1) < 0x90) ||
        (first == 0xED && byte(1) > 0x9F) || (first == 0xF4 && byte(1) > 0x8F)) {
        return 0;  // An overlong form, half of a UTF-16 pair, or beyond Unicode.
    }
    const size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    for (size_t at = 1; at < length; ++at) {
        if ((byte(at) & 0xC0) != 0x80) {
            return 0;
        }
    }
    return length;
}

namespace {

// A control character, a line end of Unicode, or a character without width, which may change the
// direction of the text around it, so that a name looks like another one.
bool isInvisible(std::string_view character) {
    constexpr std::pair<std::string_view, std::string_view> kRanges[] = {
            {std::string_view("\0", 1), "\x1F"},
            {"\x7F", "\x7F"},
            {"\xC2\x80", "\xC2\x9F"},
            {"\xC2\xAD", "\xC2\xAD"},
            {"\xD8\x9C", "\xD8\x9C"},
            {"\xE2\x80\x8B", "\xE2\x80\x8F"},
            {"\xE2\x80\xA8", "\xE2\x80\xAE"},
            {"\xE2\x81\xA0", "\xE2\x81\xAF"},
            {"\xEF\xBB\xBF", "\xEF\xBB\xBF"},
    };
    return std::any_of(std::begin(kRanges), std::end(kRanges), [character](const auto& range) {
        return range.first <= character && character <= range.second;
    });
}

}  // namespace

size_t plainLength(std::string_view text) {
    const size_t length = utf8Length(text);
    return isInvisible(text.substr(0, length)) ? 0 : length;
}

std::string escaped(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isPrintableAscii)) {  // As almost every text is.
        return std::string(text);
    }
    std::string result;
    while (!text.empty()) {
        size_t length = plainLength(text);
        if (length != 0) {
            result += text.substr(0, length);
        } else {
            char escape[sizeof("\\xNN")];
            std::snprintf(escape, sizeof(escape), "\\x%02X", static_cast<unsigned char>(text[0]));
            result += escape;
            length = 1;
        }
        text.remove_prefix(length);
    }
    return result;
}

}  // namespace kc2
