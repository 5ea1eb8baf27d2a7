// Output by {fmt}. The standard streams remember that a write has failed; main() checks them once,
// at the end. fmt::print() would throw in the middle of a report.
#pragma once

#include <fmt/core.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace kc2::tool {

inline void writeOut(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

// Formats to standard output.
template <typename... Values>
void printOut(fmt::format_string<Values...> format, Values&&... values) {
    writeOut(fmt::vformat(format, fmt::make_format_args(values...)));
}

inline void writeError(std::string_view text) {
    const std::string line = fmt::format("kcodec2_spec: {}\n", text);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

// Formats a line to standard error, with the name of the tool in front.
template <typename... Values>
void printError(fmt::format_string<Values...> format, Values&&... values) {
    writeError(fmt::vformat(format, fmt::make_format_args(values...)));
}

}  // namespace kc2::tool
