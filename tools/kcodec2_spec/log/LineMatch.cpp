// Which line of the library a text is: a whole line, a cut one, an entry of the dump, or words.

#include "log/LineMatch.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>

#include "base/Text.h"
#include "log/Logcat.h"

namespace kc2::tool {

namespace {

// The words that may name a document in a line, as the library writes them.
constexpr std::string_view kDocumentWords[] = {"system spec", "private file", "built-in document"};

// The width that a row pads its first value to: 25 in "%-25s".
size_t widthOf(LineId id) {
    const std::string_view format = logLine(id).text;
    return static_cast<size_t>(std::atoi(format.data() + format.find("%-") + 2));
}

// The row with the longest text of those that `fits` is true for: of two that match a line the
// longer one is meant ("... Exit!"). Null when there is none.
template <typename Fits>
const LogLine* longestRow(const Fits& fits) {
    const LogLine* best = nullptr;
    for (const LogLine& line : logLines()) {
        const std::string_view text = line.text;
        if ((best == nullptr || text.size() > std::string_view(best->text).size()) && fits(line)) {
            best = &line;
        }
    }
    return best;
}

}  // namespace

std::optional<SkippedText> matchSkipped(std::string_view text) {
    if (const std::optional<LineValues> values = match(logLine(LineId::Skipped).text, text)) {
        const std::string_view document = (*values)[1];
        const bool isName = std::any_of(std::begin(kDocumentWords), std::end(kDocumentWords),
                                        [&](std::string_view words) {
                                            return document.find(words) != std::string_view::npos;
                                        });
        if (isName) {
            return SkippedText{(*values)[0], (*values)[2], document};
        }
    }
    if (const std::optional<LineValues> values = match(logLine(LineId::SkippedByCall).text, text)) {
        return SkippedText{(*values)[0], (*values)[1], {}};
    }
    return std::nullopt;
}

const LogLine* rowOf(std::string_view tag, std::string_view text) {
    const std::optional<SkippedText> skipped = matchSkipped(text);
    if (skipped && (tag.empty() || tag == logLine(LineId::Skipped).tag)) {
        return &logLine(skipped->document.empty() ? LineId::SkippedByCall : LineId::Skipped);
    }
    return longestRow([&](const LogLine& line) {
        // Of the dump every entry is read as that of a list first.
        return (tag.empty() || tag == line.tag) && line.id != LineId::Feature &&
               line.id != LineId::Preset && line.id != LineId::Skipped &&
               line.id != LineId::SkippedByCall && match(line.text, text);
    });
}

namespace {

bool isStartOf(const LogLine& line, std::string_view text) {
    const std::vector<std::string_view> literals = literalsOf(line.text);
    const std::string_view literal = literals.front();
    if (literal.empty()) {
        const size_t end = text.find(' ');
        return end != std::string_view::npos && literals[1].starts_with(text.substr(end));
    }
    return literal.starts_with(text) || (literal.front() != ' ' && text.starts_with(literal));
}

}  // namespace

CutText matchCut(std::string_view tag, char priority, std::string_view text) {
    CutText cut = {.isCut = false, .isFault = true};
    for (const LogLine& line : logLines()) {
        if (tag != line.tag || priority != letterOf(line.priority) || !isStartOf(line, text)) {
            continue;
        }
        const std::vector<std::string_view> literals = literalsOf(line.text);
        const bool needsNoValue = literals.size() == 1 || line.step == std::string_view("location");
        const bool isSame = cut.row != nullptr && literalsOf(cut.row->text).front() == literals[0];
        if (!isSame) {
            cut.row = !cut.isCut && needsNoValue ? &line : nullptr;
        }
        cut.isFault &= line.priority >= ANDROID_LOG_WARN;
        cut.isCut = true;
    }
    cut.isFault &= cut.isCut;
    return cut;
}

bool mentionsTag(std::string_view text) {
    return std::any_of(logLines().begin(), logLines().end(), [&](const LogLine& line) {
        return text.find(line.tag) != std::string_view::npos;
    });
}

bool mentionsLibrary(std::string_view text) {
    constexpr size_t kEnough = 18;  // Shorter texts are other libraries', too.
    return mentionsTag(text) ||
           std::any_of(logLines().begin(), logLines().end(), [&](const LogLine& line) {
               const std::string_view literal = literalsOf(line.text).front();
               return literal.size() >= kEnough && text.find(literal) != std::string_view::npos;
           });
}

std::optional<NamedEntry> matchNamed(std::string_view entry) {
    const size_t colon = entry.rfind(" : ");
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view value = entry.substr(colon + 3);
    if (value.starts_with("-0")) {
        return std::nullopt;  // No number is logged so, and libc++ wraps around zero for it.
    }
    int32_t number = 0;
    const auto read = std::from_chars(value.data(), value.data() + value.size(), number);
    if (read.ec != std::errc() || read.ptr != value.data() + value.size()) {
        return std::nullopt;
    }
    return NamedEntry{withoutTrailing(entry.substr(0, colon), ' '), value, colon};
}

bool fits(const NamedEntry& entry, LineId id) {
    return entry.width == std::max(widthOf(id), entry.name.size());
}

namespace {

// The rows of which `text` is a part.
std::vector<const LogLine*> rowsWith(std::string_view text) {
    constexpr size_t kEnough = 4;  // Fewer letters are in many lines.
    std::vector<const LogLine*> rows;
    for (const LogLine& line : logLines()) {
        if (text.size() >= kEnough &&
            std::string_view(line.text).find(text) != std::string_view::npos) {
            rows.push_back(&line);
        }
    }
    return rows;
}

// The row of a line that `text` ends with, after a header of an unknown format.
const LogLine* rowAtEndOf(std::string_view text) {
    return longestRow([&](const LogLine& line) {
        const std::string_view first = literalsOf(line.text).front();
        const size_t start = text.find(first);
        // Where a line begins with a value, any text might be it.
        return first.find_first_not_of(' ') != std::string_view::npos &&
               start != std::string_view::npos && match(line.text, text.substr(start));
    });
}

// A whole line, without its header.
AskedText askedLine(std::string_view tag, std::string_view text) {
    const std::string_view blanks = literalsOf(logLine(LineId::Entry).text).front();
    const bool isEntry = text.starts_with(blanks);
    const std::optional<NamedEntry> named = matchNamed(isEntry ? text.substr(blanks.size()) : text);
    for (const LineId id : {LineId::Feature, LineId::Preset}) {
        if (named && fits(*named, id)) {
            return {{&logLine(id)},
                    {std::string(named->name), std::string(named->value)},
                    std::string(named->name)};
        }
    }
    const LogLine* const row = rowOf(tag, text);
    if (row == nullptr) {  // Perhaps an entry of the dump that has lost its blanks.
        return {{}, {}, named ? std::string(named->name) : ""};
    }
    if (const std::optional<SkippedText> skipped = matchSkipped(text)) {
        return {{row}, {std::string(skipped->place), std::string(skipped->reason)}, ""};
    }
    const LineValues values = match(row->text, text).value_or(LineValues());
    return {{row}, {values.begin(), values.end()}, ""};
}

}  // namespace

AskedText matchAsked(const std::string& text) {
    LogcatParser parser;
    const std::optional<LogEntry> entry = parser.parse(text);
    const bool hasHeader = entry && parser.knownLines() != 0;
    AskedText asked = hasHeader ? askedLine(entry->tag, entry->text) : AskedText();
    if (asked.rows.empty()) {
        asked = askedLine("", text);
    }
    if (asked.rows.empty()) {
        asked.rows = rowsWith(text);
    }
    if (asked.rows.empty()) {
        asked.rows = {rowAtEndOf(text)};
        std::erase(asked.rows, nullptr);
    }
    return asked;
}

}  // namespace kc2::tool
