// Small pieces of text that several commands print.

#include "base/Text.h"

#include <json/writer.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <sstream>

namespace kc2::tool {

void print(const Json::Value& json) {
    Json::StreamWriterBuilder writer;
    writer["indentation"] = "  ";
    std::puts(Json::writeString(writer, json).c_str());
}

JsonPrinter::JsonPrinter() {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    mWriter.reset(builder.newStreamWriter());
}

void JsonPrinter::print(const Json::Value& json) const {
    std::ostringstream text;
    mWriter->write(json, &text);
    std::fputs(text.str().c_str(), stdout);
}

char32_t codePointOf(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    char32_t code = character.size() == 1 ? first : first & (0xFFU >> (character.size() + 1));
    for (const char c : character.substr(1)) {
        code = code << 6 | (static_cast<unsigned char>(c) & 0x3FU);
    }
    return code;
}

std::string hexadecimal(uint32_t value) {
    char text[sizeof("0x12345678")];
    std::snprintf(text, sizeof(text), "0x%X", value);
    return text;
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
    return std::to_string(number).append(" ").append(what).append(number == 1 ? "" : "s");
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

size_t editDistance(std::string_view a, std::string_view b, size_t limit) {
    constexpr size_t kLongest = 100;  // The cost is the product of the lengths.
    const auto isSame = [](char left, char right) {
        return inSmallLetters(left) == inSmallLetters(right);
    };
    if (std::max(a.size(), b.size()) > kLongest ||
        std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > limit) {
        return a == b ? 0 : limit + 1;
    }
    while (!a.empty() && !b.empty() && isSame(a.front(), b.front())) {
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    while (!a.empty() && !b.empty() && isSame(a.back(), b.back())) {
        a.remove_suffix(1);
        b.remove_suffix(1);
    }
    std::array<size_t, kLongest + 1> row = {};
    const auto limitOfRow = row.begin() + b.size() + 1;
    std::iota(row.begin(), limitOfRow, size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t replaced = diagonal + (isSame(a[i - 1], b[j - 1]) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
        if (*std::min_element(row.begin(), limitOfRow) > limit) {
            return limit + 1;
        }
    }
    return row[b.size()];
}

size_t commonLetters(std::string_view a, std::string_view b) {
    constexpr size_t kLongest = 100;  // As above.
    std::array<size_t, kLongest + 1> row = {};
    b = b.substr(0, kLongest);
    for (const char left : a.substr(0, kLongest)) {
        size_t diagonal = 0;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = left == b[j - 1] ? diagonal + 1 : std::max(row[j], row[j - 1]);
            diagonal = above;
        }
    }
    return row[b.size()];
}

std::string joined(const std::vector<std::string>& words, std::string_view between) {
    std::string text;
    for (const std::string& word : words) {
        text.append(&word == &words.front() ? std::string_view() : between).append(word);
    }
    return text;
}

}  // namespace kc2::tool
