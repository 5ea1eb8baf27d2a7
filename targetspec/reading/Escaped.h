// Text of unknown bytes, made fit for a log or a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kc2 {

// Whether the byte is a character that is shown as it is, as almost all are.
constexpr bool isPrintableAscii(char c) {
    return c >= ' ' && c <= '~';
}

// How many bytes the character takes that `text` begins with; 0 when it is empty or not UTF-8.
size_t utf8Length(std::string_view text);

// The same, and 0 for what must not be shown as it is, too: control characters, and marks that are
// not seen, or that turn the text around them.
size_t plainLength(std::string_view text);

// `text` with such bytes written as \xNN: a document, a path or a property may hold any, and a line
// end in a name could pass for the end of a log line.
std::string escaped(std::string_view text);

}  // namespace kc2
