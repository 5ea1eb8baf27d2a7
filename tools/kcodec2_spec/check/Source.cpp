// A text that a finding points into: lines, columns, and the line to show.

#include "check/Source.h"

#include <algorithm>

#include "Text.h"
#include "targetspec/Printable.h"

namespace kc2::tool {

namespace {

constexpr size_t kExcerptBytes = 100;
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

size_t Source::lineIndexOf(size_t offset) const {
    const auto next = std::upper_bound(mLineStarts.begin(), mLineStarts.end(), offset);
    return static_cast<size_t>(next - mLineStarts.begin()) - 1;
}

size_t Source::charactersBefore(size_t offset) const {
    const size_t block = offset / kBlockBytes;
    const size_t start = block * kBlockBytes;
    return mCharactersBeforeBlock[block] + charactersIn(mText.substr(start, offset - start));
}

Source::Position Source::positionOf(size_t offset) const {
    offset = std::min(offset, mText.size());
    const size_t line = lineIndexOf(offset);
    return {line + 1, charactersBefore(offset) - charactersBefore(mLineStarts[line]) + 1};
}

std::string Source::placeOf(size_t offset) const {
    const Position position = positionOf(offset);
    return printable(mPath) + ":" + std::to_string(position.line) + ":" +
           std::to_string(position.column);
}

std::string Source::excerpt(Span span) const {
    span.start = std::min(span.start, mText.size());
    const size_t line = lineIndexOf(span.start);
    const size_t lineStart = mLineStarts[line];
    size_t lineLimit = std::min(mText.find('\n', span.start), mText.size());
    if (lineLimit > lineStart && mText[lineLimit - 1] == '\r') {
        --lineLimit;
    }
    size_t shownStart = lineStart;
    if (lineLimit - lineStart > kExcerptBytes && span.start - lineStart > kExcerptBytes / 2) {
        shownStart = span.start - kExcerptBytes / 2;
        while (shownStart < span.start && !isFirstByteOfCharacter(mText[shownStart])) {
            ++shownStart;
        }
    }
    std::string shown(clipped(mText.substr(shownStart, lineLimit - shownStart), kExcerptBytes));
    const size_t shownLimit = shownStart + shown.size();
    for (size_t at = 0; at < shown.size(); ++at) {
        if (const size_t length = printableLength(std::string_view(shown).substr(at))) {
            at += length - 1;
        } else if (shown[at] != '\t') {
            shown[at] = ' ';
        }
    }
    std::string marks;
    for (const char c : shown.substr(0, span.start - shownStart)) {
        if (isFirstByteOfCharacter(c)) {
            marks += c == '\t' ? '\t' : ' ';
        }
    }
    marks += '^';
    const size_t marked = std::min(span.limit, shownLimit);
    if (marked > span.start + 1) {
        marks.append(charactersIn(mText.substr(span.start, marked - span.start)) - 1, '~');
    }
    const std::string number = std::to_string(line + 1);
    const std::string margin(number.size() < 6 ? 6 - number.size() : 0, ' ');
    return margin + number + " | " + shown + "\n" +
           std::string(margin.size() + number.size(), ' ') + " | " + marks + "\n";
}

}  // namespace kc2::tool
