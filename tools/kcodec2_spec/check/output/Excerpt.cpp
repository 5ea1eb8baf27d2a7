// The line that a finding is in, with a mark under what is wrong.

#include "check/output/Excerpt.h"

#include <algorithm>
#include <string_view>

#include "base/Terminal.h"
#include "base/Utf8.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr size_t kLeastColumns = 20;  // Of a line's text, however narrow the terminal is.
constexpr size_t kTabColumns = 8;
// Combining marks, which have no column, must not make a line endless.
constexpr size_t kMostBytesPerColumn = 8;

// How many printable characters of a byte and a column `text` begins with: a line may be shown for
// each of a million findings.
size_t plainBytes(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isPrintableAscii);
    return static_cast<size_t>(end - text.begin());
}

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
    if (isPrintableAscii(text[0])) {
        return {text.substr(0, 1), text.substr(0, 1), 1};
    }
    if (text[0] == '\t') {
        const size_t columns = kTabColumns - column % kTabColumns;
        return {text.substr(0, 1), kBlanks.substr(0, columns), columns};
    }
    const std::string_view character = text.substr(0, std::max<size_t>(utf8Length(text), 1));
    if (plainLength(text) == 0) {
        return {character, kBlanks.substr(0, 1), 1};
    }
    return {character, character, columnsOf(character)};
}

// How many bytes of `text` fit into so many columns.
size_t fittingBytes(std::string_view text, size_t columns) {
    const size_t most = columns * kMostBytesPerColumn;
    size_t at = 0;
    for (size_t column = 0; at < text.size() && at < most;) {
        const size_t plain = plainBytes(text.substr(at, std::min(columns - column, most - at)));
        if (plain != 0) {
            at += plain;
            column += plain;
            continue;
        }
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

// Adds `text` to the line that is shown, which is `column` columns so far.
void draw(std::string_view text, std::string* shown, size_t* column) {
    while (!text.empty()) {
        const size_t plain = plainBytes(text);
        shown->append(text.substr(0, plain));
        *column += plain;
        text.remove_prefix(plain);
        if (!text.empty()) {
            const Cell cell = firstCell(text, *column);
            shown->append(cell.shown);
            *column += cell.columns;
            text.remove_prefix(cell.bytes.size());
        }
    }
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
    const size_t fitting = fittingBytes(line, columns);
    const size_t start = fitting == line.size() ? 0 : cutBefore(line, offset, columns);
    const size_t size = start == 0 ? fitting : fittingBytes(line.substr(start), columns);

    // What is before the mark, above it, and after it.
    const size_t markStart = std::min(offset, start + size);
    const size_t markLimit = std::min(marked, start + size);
    std::string shown;
    size_t column = 0;
    draw(line.substr(start, markStart - start), &shown, &column);
    const size_t before = column;
    draw(line.substr(markStart, markLimit - markStart), &shown, &column);
    // The caret is in the first column of its character, or in one more where that has none.
    const size_t first =
            markStart < markLimit ? firstCell(line.substr(markStart), before).columns : 0;
    const size_t more = column - before - std::min<size_t>(first, 1);
    draw(line.substr(markLimit, start + size - markLimit), &shown, &column);
    const std::string marks = std::string(before, ' ') + "^" + std::string(more, '~');
    return std::string(margin - number.size(), ' ') + number + std::string(kBar) + shown + "\n" +
           std::string(margin, ' ') + std::string(kBar) + marks + "\n";
}

}  // namespace kc2::tool
