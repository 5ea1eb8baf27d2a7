// Text of unknown bytes, escaped for a log or a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kc2 {

// Whether the byte is a character that is shown unescaped, as almost all are.
constexpr bool isPrintableAscii(char c) {
    return c >= ' ' && c <= '~';
}

// The number of bytes of the first character of `text`; 0 if it is empty or not UTF-8.
size_t utf8Length(std::string_view text);

// The same, but 0 also for a character that must be escaped: a control character, one that is
// invisible, or one that changes the direction of the text.
size_t plainLength(std::string_view text);

// `text` with such bytes written as \xNN: a document, a path or a property may contain any, and a
// line end in a name could pass for the end of a log line.
std::string escaped(std::string_view text);

}  // namespace kc2
