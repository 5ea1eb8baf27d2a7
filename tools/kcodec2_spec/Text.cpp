// Small pieces of text that several commands print.

#include "Text.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <vector>

namespace kc2::tool {

bool isFirstByteOfCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

std::string hexadecimal(uint32_t value) {
    char text[sizeof("0x12345678")];
    std::snprintf(text, sizeof(text), "0x%X", value);
    return text;
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string_view clipped(std::string_view text, size_t bytes) {
    size_t size = std::min(text.size(), bytes);
    while (size != 0 && size < text.size() && !isFirstByteOfCharacter(text[size])) {
        --size;
    }
    return text.substr(0, size);
}

std::string printable(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7F') {
            char escape[sizeof("\\xNN")];
            std::snprintf(escape, sizeof(escape), "\\x%02X", static_cast<unsigned char>(c));
            result += escape;
        } else {
            result += c;
        }
    }
    return result;
}

size_t editDistance(std::string_view a, std::string_view b) {
    constexpr size_t kLongest = 100;  // The cost is the product of the lengths.
    if (a.size() > kLongest || b.size() > kLongest) {
        return a == b ? 0 : kLongest;
    }
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const bool isSame = std::tolower(static_cast<unsigned char>(a[i - 1])) ==
                                std::tolower(static_cast<unsigned char>(b[j - 1]));
            const size_t replaced = diagonal + (isSame ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

}  // namespace kc2::tool
