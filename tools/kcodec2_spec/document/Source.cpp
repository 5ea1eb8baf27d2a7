// A text that a finding points into: lines, columns and positions.

#include "document/Source.h"

#include <algorithm>

#include "base/Spelling.h"
#include "base/Utf8.h"

namespace kc2::tool {

namespace {

constexpr size_t kBlockBytes = 256;

size_t charactersIn(std::string_view text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), isFirstByteOfCharacter));
}

}  // namespace

Source::Source(std::string path, std::string_view text) : mPath(std::move(path)), mText(text) {
    mLineStarts.push_back(0);
    for (size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos;) {
        mLineStarts.push_back(++at);
    }
    size_t characters = 0;
    for (size_t at = 0; at <= text.size(); at += kBlockBytes) {
        mCharactersBeforeBlock.push_back(characters);
        characters += charactersIn(text.substr(at, kBlockBytes));
    }
}

size_t Source::lineOf(size_t offset) const {
    const auto next = std::upper_bound(mLineStarts.begin(), mLineStarts.end(), offset);
    return static_cast<size_t>(next - mLineStarts.begin());
}

Span Source::line(size_t line) const {
    const size_t start = startOf(line);
    size_t limit = line < mLineStarts.size() ? mLineStarts[line] - 1 : mText.size();
    if (limit > start && mText[limit - 1] == '\r') {
        --limit;
    }
    return {start, limit};
}

size_t Source::charactersBefore(size_t offset) const {
    const size_t block = offset / kBlockBytes;
    const size_t start = block * kBlockBytes;
    return mCharactersBeforeBlock[block] + charactersIn(mText.substr(start, offset - start));
}

Source::Position Source::positionOf(size_t offset) const {
    offset = std::min(offset, mText.size());
    const size_t line = lineOf(offset);
    return {line, charactersBefore(offset) - charactersBefore(startOf(line)) + 1};
}

std::string Source::positionText(size_t offset) const {
    const Position position = positionOf(offset);
    return std::to_string(position.line) + ":" + std::to_string(position.column);
}

std::string Source::placeOf(size_t offset) const {
    return mPath + ":" + positionText(offset);
}

}  // namespace kc2::tool
