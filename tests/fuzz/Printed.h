// Runs the tool in this process, and checks that its output is safe for a terminal and a parser.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kc2::fuzz {

struct Printed {
    std::string output;
    std::string errors;  // From standard error.
};

// Runs `work` with both streams in memory.
Printed printedBy(const std::function<void()>& run);

// Checks that the text is UTF-8 and that line feeds are its only control characters: any other byte
// could control a terminal, or look like the tool's own text. A diff repeats a document's tabs and
// the carriage returns at its line ends, so that it can be applied.
enum class TextKind { Plain, Diff };
void requirePlain(std::string_view text, TextKind kind = TextKind::Plain);

// Also checks that the text is one JSON document.
void requireJson(const std::string& text);

}  // namespace kc2::fuzz
