// Options whose values are checked, with messages that say what is accepted.

#include "base/OptionValues.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstddef>

#include "base/Spelling.h"
#include "base/Text.h"

namespace kc2::tool {

std::string whyNotOneOf(const std::vector<std::string>& words, const std::string& value) {
    if (std::find(words.begin(), words.end(), value) != words.end()) {
        return std::string();
    }
    const size_t mostMistakes = std::max<size_t>(1, value.size() / 3);
    const std::string near = nearest(value, words, mostMistakes);
    return fmt::format("must be {} or {}, not \"{}\"{}",
                       joined({words.begin(), words.end() - 1}, ", "), words.back(), value,
                       near.empty() ? "" : fmt::format(". Did you mean {}?", near));
}

std::string whyNotCount(const std::string& value) {
    size_t count = 0;
    const char* const end = value.data() + value.size();
    const auto [last, error] = std::from_chars(value.data(), end, count);
    if (error == std::errc::result_out_of_range) {
        return fmt::format("{} is too large", value);
    }
    return error == std::errc() && last == end
                   ? std::string()
                   : fmt::format("must be a whole number from 0, not \"{}\"", value);
}

}  // namespace kc2::tool
