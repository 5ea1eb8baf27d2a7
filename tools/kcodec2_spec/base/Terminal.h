// The terminal that output goes to, if it is one: its width, its colours, how wide characters are.
#pragma once

#include <cstddef>
#include <string_view>

namespace kc2::tool {

struct Terminal {
    bool isColoured = false;  // Not with NO_COLOR set, nor on one that TERM calls dumb.
    size_t width = 0;         // In columns; 0 when the output goes to a file or a pipe.
};

// What the descriptor is open to.
Terminal terminalOf(int descriptor);

// What switches a terminal's colours; empty where there are none.
struct Colours {
    const char* bold = "";
    const char* faint = "";
    const char* red = "";
    const char* green = "";
    const char* yellow = "";
    const char* magenta = "";
    const char* cyan = "";
    const char* plain = "";
};

Colours coloursOf(const Terminal& terminal);

// How many columns a printable character of UTF-8 has: 2 for most of East Asia's, 0 for a
// combining mark.
size_t columnsOf(std::string_view character);

}  // namespace kc2::tool
