// What the tool prints, run in this process, and that it is fit for a terminal and for a parser.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kc2::fuzz {

struct Printed {
    std::string output;
    std::string errors;  // What goes to standard error.
};

// Runs it with both streams kept in memory.
Printed printedBy(const std::function<void()>& run);

// That the text is UTF-8 and holds no control character but line feeds: any other byte could make a
// terminal do something, or pass for the tool's own words. A diff repeats a document's tabs and the
// carriage returns at its line ends, so that it can be applied.
enum class TextKind { Plain, Diff };
void requirePlain(std::string_view text, TextKind kind = TextKind::Plain);

// That it is all this, and one JSON document.
void requireJson(const std::string& text);

}  // namespace kc2::fuzz
