// A text that a finding points into: lines, columns and positions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "targetspec/reading/ParserText.h"

namespace kc2::tool {

using Span = TextRange;

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
    std::string_view textAt(Span span) const {
        return mText.substr(span.start, span.limit - span.start);
    }

    Position positionOf(size_t offset) const;

    // "path:line:column", with the path's bytes as they are.
    std::string placeOf(size_t offset) const;

    // "line:column", for a message that is about this source.
    std::string positionText(size_t offset) const;

    // The place as a message about `other` names it: without the path where that is this source.
    std::string placeSeenFrom(const Source& other, size_t offset) const {
        return this == &other ? positionText(offset) : placeOf(offset);
    }

    // The first line is 1. An offset past the end of the text is at its end.
    size_t lineOf(size_t offset) const;
    size_t startOf(size_t line) const { return mLineStarts[line - 1]; }

    // The line's bytes, without its end.
    Span line(size_t line) const;

private:
    size_t charactersBefore(size_t offset) const;

    std::string mPath;
    std::string_view mText;
    std::vector<size_t> mLineStarts;
    // How many characters are before each block of the text: a document may be one long line.
    std::vector<size_t> mCharactersBeforeBlock;
};

}  // namespace kc2::tool
