// Small pieces of text that several commands print.

#include "base/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace kc2::tool {

std::string hexadecimal(uint32_t value) {
    return fmt::format("0x{:X}", value);
}

std::optional<uint32_t> toWord(const std::string& text) {
    char* end = nullptr;
    const bool isHexadecimal = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
    const long long value = std::strtoll(text.c_str(), &end, isHexadecimal ? 16 : 10);
    if (text.empty() || *end != '\0' || value < INT32_MIN || value > UINT32_MAX) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(value);
}

std::string_view withoutTrailing(std::string_view text, char c) {
    while (text.ends_with(c)) {
        text.remove_suffix(1);
    }
    return text;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (size_t start = 0; start < text.size();) {
        const size_t limit = std::min(text.find(separator, start), text.size());
        if (limit > start) {
            parts.push_back(text.substr(start, limit - start));
        }
        start = limit + 1;
    }
    return parts;
}

std::string digitsOf(std::string_view text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits), isDigit);
    return digits;
}

std::string inSmallLetters(std::string_view text) {
    std::string small(text);
    std::transform(text.begin(), text.end(), small.begin(),
                   [](char c) { return inSmallLetters(c); });
    return small;
}

std::string counted(size_t number, std::string_view what) {
    return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string joined(const std::vector<std::string>& words, std::string_view between) {
    return fmt::format("{}", fmt::join(words, between));
}

}  // namespace kc2::tool
