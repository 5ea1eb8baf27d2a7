// Text of unknown bytes, made fit for a log or a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kc2 {

// How many bytes the character takes that `text` begins with; 0 when its first byte must not be
// shown as it is: a control character, or no UTF-8.
size_t plainLength(std::string_view text);

// `text` with such bytes written as \xNN: a document, a path or a property may hold any, and a line
// end in a name could pass for the end of a log line.
std::string escaped(std::string_view text);

}  // namespace kc2
