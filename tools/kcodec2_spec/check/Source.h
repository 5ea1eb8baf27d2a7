// A text that a finding points into: lines, columns, and the line to show.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kc2::tool {

// Bytes of a text: [start, limit).
struct Span {
    size_t start = 0;
    size_t limit = 0;
};

class Source {
public:
    // 1-based; a column is a character (UTF-8), not a byte.
    struct Position {
        size_t line;
        size_t column;
    };

    // `text` must outlive the source.
    Source(std::string path, std::string_view text);

    const std::string& path() const { return mPath; }
    std::string_view text() const { return mText; }

    Position positionOf(size_t offset) const;

    // "path:line:column".
    std::string placeOf(size_t offset) const;

    // The line that the span starts in, and a caret with tildes under the span, each line indented
    // for a report. A long line is cut around the span.
    std::string excerpt(Span span) const;

private:
    size_t lineIndexOf(size_t offset) const;
    size_t charactersBefore(size_t offset) const;

    std::string mPath;
    std::string_view mText;
    std::vector<size_t> mLineStarts;
    // How many characters stand before each block of the text: a document may be one long line.
    std::vector<size_t> mCharactersBeforeBlock;
};

}  // namespace kc2::tool
