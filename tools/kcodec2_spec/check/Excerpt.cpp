// The line that a finding is in, with a mark under what is wrong.

#include "check/Excerpt.h"

#include <algorithm>
#include <string_view>

#include "Terminal.h"
#include "Text.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr size_t kLeastColumns = 20;  // Of a line's text, however narrow the terminal is.
constexpr size_t kTabColumns = 8;
// Marks that take no column must not make a line endless.
constexpr size_t kMostBytesPerColumn = 8;

// A character of a line, as it is shown.
struct Cell {
    std::string_view bytes;
    std::string_view shown;
    size_t columns;
};

// The cell that `text` begins with, which a tab makes end at a tab stop.
Cell firstCell(std::string_view text, size_t column) {
    constexpr std::string_view kBlanks = "        ";
    static_assert(kBlanks.size() == kTabColumns);
    if (text[0] == '\t') {
        const size_t columns = kTabColumns - column % kTabColumns;
        return {text.substr(0, 1), kBlanks.substr(0, columns), columns};
    }
    const size_t length = plainLength(text);
    if (length == 0) {
        return {text.substr(0, 1), kBlanks.substr(0, 1), 1};
    }
    const std::string_view character = text.substr(0, length);
    return {character, character, columnsOf(character)};
}

// How many bytes of `text` fit into so many columns.
size_t fittingBytes(std::string_view text, size_t columns) {
    size_t at = 0;
    for (size_t column = 0; at < text.size() && at < columns * kMostBytesPerColumn;) {
        const Cell cell = firstCell(text.substr(at), column);
        column += cell.columns;
        if (column > columns) {
            break;
        }
        at += cell.bytes.size();
    }
    return at;
}

// Where a line that is too long is shown from: half of the columns are for what is before `offset`.
size_t cutBefore(std::string_view line, size_t offset, size_t columns) {
    if (fittingBytes(line, columns / 2) >= offset) {
        return 0;
    }
    size_t start = offset;
    for (size_t used = 0; start != 0 && offset - start < columns * kMostBytesPerColumn;) {
        size_t previous = start - 1;
        while (previous != 0 && start - previous < 4 && !isFirstByteOfCharacter(line[previous])) {
            --previous;
        }
        used += line[previous] == '\t' ? kTabColumns : firstCell(line.substr(previous), 0).columns;
        if (used > columns / 2) {
            break;
        }
        start = previous;
    }
    return start;
}

}  // namespace

std::string excerptOf(const Source& source, Span span, size_t width) {
    constexpr std::string_view kBar = " | ";
    constexpr size_t kNumberColumns = 6;
    span.start = std::min(span.start, source.text().size());
    const size_t lineNumber = source.lineOf(span.start);
    const Span place = source.line(lineNumber);
    const std::string_view line = source.textAt(place);
    const size_t offset = std::min(span.start, place.limit) - place.start;
    const size_t marked = std::min(std::max(span.limit, span.start), place.limit) - place.start;

    const std::string number = std::to_string(lineNumber);
    const size_t margin = std::max(number.size(), kNumberColumns);
    const size_t columns =
            std::max(width, margin + kBar.size() + kLeastColumns) - margin - kBar.size();
    const bool isWhole = fittingBytes(line, columns) == line.size();
    const size_t start = isWhole ? 0 : cutBefore(line, offset, columns);
    const std::string_view cut = line.substr(start, fittingBytes(line.substr(start), columns));

    std::string shown;
    std::string marks;
    size_t column = 0;
    for (size_t at = 0; at < cut.size();) {
        const Cell cell = firstCell(cut.substr(at), column);
        const size_t byte = start + at;
        shown += cell.shown;
        if (byte < offset) {
            marks.append(cell.columns, ' ');
        } else if (byte == offset) {
            marks.append("^").append(cell.columns > 1 && marked > byte ? cell.columns - 1 : 0, '~');
        } else if (byte < marked) {
            marks.append(cell.columns, '~');
        }
        column += cell.columns;
        at += cell.bytes.size();
    }
    marks += offset >= start + cut.size() ? "^" : "";  // At the end of the line.
    return std::string(margin - number.size(), ' ') + number + std::string(kBar) + shown + "\n" +
           std::string(margin, ' ') + std::string(kBar) + marks + "\n";
}

}  // namespace kc2::tool
