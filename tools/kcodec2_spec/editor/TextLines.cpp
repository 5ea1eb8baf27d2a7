// Positions in a text as an editor counts them: lines from 0, and UTF-16 units or bytes.

#include "editor/TextLines.h"

#include <algorithm>

#include "base/Utf8.h"

namespace kc2::tool {

namespace {

constexpr size_t kUnitBlockBytes = 256;

// Units of UTF-16 in a text of UTF-8. A character of four bytes has two.
size_t unitsIn(std::string_view text) {
    constexpr unsigned char kFirstOfFour = 0xF0;
    size_t units = 0;
    for (const char c : text) {
        units += isFirstByteOfCharacter(c) ? 1 : 0;
        units += static_cast<unsigned char>(c) >= kFirstOfFour ? 1 : 0;
    }
    return units;
}

}  // namespace

TextLines::TextLines(std::string_view text, PositionEncoding encoding)
    : mText(text), mEncoding(encoding), mStarts({0}) {
    const bool hasReturns = text.find('\r') != std::string_view::npos;
    const std::string_view ends = hasReturns ? "\r\n" : "\n";
    for (size_t at = 0; (at = text.find_first_of(ends, at)) != std::string_view::npos;) {
        at += text.substr(at, 2) == "\r\n" ? 2 : 1;
        mStarts.push_back(at);
    }
}

size_t TextLines::offsetOf(TextPosition position) const {
    if (position.line >= mStarts.size()) {
        return mText.size();
    }
    const size_t start = mStarts[position.line];
    size_t end = position.line + 1 < mStarts.size() ? mStarts[position.line + 1] : mText.size();
    while (end > start && (mText[end - 1] == '\n' || mText[end - 1] == '\r')) {
        --end;
    }
    if (mEncoding == PositionEncoding::Utf8) {
        return start + std::min(position.character, end - start);
    }
    size_t at = start;
    for (size_t units = 0; at < end; ++at) {
        if (isFirstByteOfCharacter(mText[at]) && units >= position.character) {
            break;
        }
        units += unitsIn(mText.substr(at, 1));
    }
    return at;
}

TextPosition TextLines::positionOf(size_t offset) const {
    offset = std::min(offset, mText.size());
    const auto next = std::upper_bound(mStarts.begin(), mStarts.end(), offset);
    const size_t start = *std::prev(next);
    return {static_cast<size_t>(next - mStarts.begin()) - 1,
            mEncoding == PositionEncoding::Utf8 ? offset - start
                                                : unitsBefore(offset) - unitsBefore(start)};
}

size_t TextLines::unitsBefore(size_t offset) const {
    if (mUnitsBeforeBlock.empty()) {
        size_t units = 0;
        for (size_t at = 0; at <= mText.size(); at += kUnitBlockBytes) {
            mUnitsBeforeBlock.push_back(units);
            units += unitsIn(mText.substr(at, kUnitBlockBytes));
        }
    }
    const size_t block = offset / kUnitBlockBytes;
    const size_t start = block * kUnitBlockBytes;
    return mUnitsBeforeBlock[block] + unitsIn(mText.substr(start, offset - start));
}

}  // namespace kc2::tool
