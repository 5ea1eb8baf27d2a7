// Positions in a text as an editor counts them: lines from 0, and UTF-16 units or bytes.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace kc2::tool {

enum class PositionEncoding { Utf16, Utf8 };

struct TextPosition {
    size_t line = 0;
    size_t character = 0;
};

// A line ends with \n, \r\n or \r. That is the editor's rule; for the checker \r ends no line.
class TextLines {
public:
    // The text must outlive this.
    TextLines(std::string_view text, PositionEncoding encoding);

    // A position after the end of its line, or of the text, is at that end.
    size_t offsetOf(TextPosition position) const;
    TextPosition positionOf(size_t offset) const;

private:
    size_t unitsBefore(size_t offset) const;

    std::string_view mText;
    PositionEncoding mEncoding;
    std::vector<size_t> mStarts;  // Of the lines.
    // How many units are before each block, made when it is first needed: a text may be one line.
    mutable std::vector<size_t> mUnitsBeforeBlock;
};

}  // namespace kc2::tool
