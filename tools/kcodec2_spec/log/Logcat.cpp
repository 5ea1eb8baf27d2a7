// What `logcat` prints, line by line, whatever its format.

#include "log/Logcat.h"

#include <algorithm>
#include <charconv>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kPriorities = "VDIWEFS";
constexpr std::string_view kDigits = "0123456789";

// Takes pieces from the front of a text, and notes whether one was missing.
class Scanner {
public:
    explicit Scanner(std::string_view text) : mRest(text) {}

    std::string_view rest() const { return mRest; }

    void skipBlanks() { mRest.remove_prefix(std::min(mRest.find_first_not_of(' '), mRest.size())); }

    bool take(char c) {
        if (mRest.empty() || mRest.front() != c) {
            return false;
        }
        mRest.remove_prefix(1);
        return true;
    }

    // What stands before the first of `ends`, which is not taken.
    std::string_view takeUntil(std::string_view ends) {
        const std::string_view piece = mRest.substr(0, mRest.find_first_of(ends));
        mRest.remove_prefix(piece.size());
        return piece;
    }

    std::optional<int> takeNumber() {
        int number = 0;
        const std::from_chars_result read =
                std::from_chars(mRest.data(), mRest.data() + mRest.size(), number);
        if (read.ec != std::errc() || number < 0) {
            return std::nullopt;
        }
        mRest.remove_prefix(static_cast<size_t>(read.ptr - mRest.data()));
        return number;
    }

    bool takePriority() {
        if (mRest.empty() || kPriorities.find(mRest.front()) == std::string_view::npos) {
            return false;
        }
        mRest.remove_prefix(1);
        return true;
    }

private:
    std::string_view mRest;
};

bool isDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of(kDigits) == std::string_view::npos;
}

// Whether a word has digits at both ends and only digits and `marks` between, as "11-25" has.
bool isDigitsWith(std::string_view word, std::string_view marks) {
    return word.size() > 2 && isDigit(word.front()) && isDigit(word.back()) &&
           word.find_first_of(marks) != std::string_view::npos &&
           std::all_of(word.begin(), word.end(), [&](char c) {
               return isDigit(c) || marks.find(c) != std::string_view::npos;
           });
}

// "11-25 08:11:21.123", with a year before and a zone behind, or seconds since 1970 or the start.
// Empty, and nothing taken, when there is none.
std::string_view takeTime(Scanner* scanner) {
    Scanner ahead = *scanner;
    ahead.skipBlanks();
    const char* const start = ahead.rest().data();
    const std::string_view first = ahead.takeUntil(" ");
    const char* limit = first.data() + first.size();
    if (isDigitsWith(first, "-")) {
        ahead.skipBlanks();
        const std::string_view clock = ahead.takeUntil(" ");
        if (!isDigitsWith(clock, ":.")) {
            return std::string_view();
        }
        limit = clock.data() + clock.size();
    } else if (!isDigitsWith(first, ".")) {
        return std::string_view();
    }
    *scanner = ahead;
    ahead.skipBlanks();
    const std::string_view zone = ahead.takeUntil(" ");
    if (zone.size() == 5 && (zone[0] == '+' || zone[0] == '-') && isDigits(zone.substr(1))) {
        limit = zone.data() + zone.size();
        *scanner = ahead;
    }
    return {start, static_cast<size_t>(limit - start)};
}

// "(  123)", or "( media:  123)" with the user before it, or "(  123:0x7b)" with the thread behind.
std::optional<int> takeProcessInBrackets(Scanner* scanner) {
    if (!scanner->take('(')) {
        return std::nullopt;
    }
    const std::string_view inside = scanner->takeUntil(")");
    if (!scanner->take(')')) {
        return std::nullopt;
    }
    Scanner words(inside);
    words.skipBlanks();
    std::optional<int> process = words.takeNumber();
    if (!words.rest().empty() && words.rest().find("0x") == std::string_view::npos) {
        words.takeUntil(":");  // That was the user's number, or its name is there.
        words.take(':');
        words.skipBlanks();
        const std::optional<int> second = words.takeNumber();
        process = second ? second : process;
    }
    return process;
}

// The end of a head: ": " and then the text; a text without a blank at its start was cut.
bool takeColon(Scanner* scanner) {
    if (!scanner->take(':')) {
        return false;
    }
    scanner->take(' ');
    return true;
}

// brief and time: "E/Tag     (  123): text"; tag: "E/Tag     : text".
std::optional<LogEntry> parseSlashed(Scanner scanner, std::string_view time) {
    LogEntry entry = {.time = time};
    if (!scanner.takePriority() || !scanner.take('/')) {
        return std::nullopt;
    }
    entry.tag = withoutTrailing(scanner.takeUntil("(:"), ' ');
    if (const std::optional<int> process = takeProcessInBrackets(&scanner)) {
        entry.process = *process;
    }
    if (!takeColon(&scanner)) {
        return std::nullopt;
    }
    entry.text = scanner.rest();
    return entry;
}

// process and thread: "E(  123) text  (Tag)", "E(  123:  124) text".
std::optional<LogEntry> parseProcess(Scanner scanner) {
    LogEntry entry;
    if (!scanner.takePriority() || !scanner.take('(')) {
        return std::nullopt;
    }
    scanner.skipBlanks();
    const std::optional<int> process = scanner.takeNumber();
    const bool hasThread = scanner.take(':');
    scanner.takeUntil(")");
    if (!process || !scanner.take(')') || !scanner.take(' ')) {
        return std::nullopt;
    }
    entry.process = *process;
    entry.text = scanner.rest();
    const size_t bracket = entry.text.rfind("  (");
    if (!hasThread && bracket != std::string_view::npos && entry.text.back() == ')') {
        entry.tag = withoutTrailing(entry.text.substr(bracket + 3, entry.text.size() - bracket - 4),
                                    ' ');
        entry.text = entry.text.substr(0, bracket);
    }
    return entry;
}

// threadtime: "11-25 08:11:21.123   123   124 E Tag     : text"; the user may stand before.
std::optional<LogEntry> parseThreadtime(Scanner scanner, std::string_view time) {
    if (time.empty()) {
        return std::nullopt;
    }
    std::string_view words[3];
    size_t count = 0;
    for (std::string_view& word : words) {
        scanner.skipBlanks();
        Scanner ahead = scanner;
        const std::string_view next = ahead.takeUntil(" ");
        if (count >= 2 && !isDigits(next)) {
            break;
        }
        word = next;
        scanner = ahead;
        ++count;
    }
    if (count < 2) {
        return std::nullopt;
    }
    LogEntry entry = {.time = time};
    const std::optional<int> process = Scanner(words[count - 2]).takeNumber();
    scanner.skipBlanks();
    if (!process || !isDigits(words[count - 1]) || !scanner.takePriority() || !scanner.take(' ')) {
        return std::nullopt;
    }
    entry.process = *process;
    entry.tag = withoutTrailing(scanner.takeUntil(":"), ' ');
    if (!takeColon(&scanner)) {
        return std::nullopt;
    }
    entry.text = scanner.rest();
    return entry;
}

// Escape sequences that colour a line in a terminal are at its ends.
std::string_view withoutColours(std::string_view line) {
    while (line.substr(0, 2) == "\033[" && line.find('m') != std::string_view::npos) {
        line.remove_prefix(line.find('m') + 1);
    }
    while (!line.empty() && (line.back() == '\r' || line.substr(line.size() - 1) == "\n")) {
        line.remove_suffix(1);
    }
    constexpr std::string_view kReset = "\033[0m";
    return line.ends_with(kReset) ? line.substr(0, line.size() - kReset.size()) : line;
}

}  // namespace

bool LineReader::next(std::string_view* line) {
    mLine.clear();
    bool isAny = false;
    for (;;) {
        if (mAt == mLimit) {
            mLimit = std::fread(mBlock, 1, sizeof(mBlock), mFile);
            mAt = 0;
            if (mLimit == 0) {
                break;
            }
        }
        isAny = true;
        const std::string_view block(mBlock + mAt, mLimit - mAt);
        const size_t size = std::min(block.find('\n'), block.size());
        mLine += block.substr(0, std::min(size, kLongestLogLine - mLine.size()));
        mAt += size;
        if (size != block.size()) {
            ++mAt;
            break;
        }
    }
    mLineNumber += isAny ? 1 : 0;
    *line = mLine;
    return isAny;
}

// "[ 11-25 08:11:21.123   123:  124 E/Tag      ]", and then the text on separate lines.
bool LogcatParser::takeLongHead(std::string_view line) {
    if (line.size() < 4 || line.substr(0, 2) != "[ " || line.back() != ']') {
        return false;
    }
    Scanner scanner(line.substr(2, line.size() - 3));
    const std::string_view time = takeTime(&scanner);
    const size_t slash = scanner.rest().find('/');
    if (time.empty() || slash == 0 || slash == std::string_view::npos) {
        return false;
    }
    const std::string_view ids = withoutTrailing(scanner.rest().substr(0, slash - 1), ' ');
    // "123:  124" or "media:  123:  124": the process is the last but one.
    const size_t colon = ids.rfind(':');
    const size_t before = colon == std::string_view::npos || colon == 0 ? std::string_view::npos
                                                                        : ids.rfind(':', colon - 1);
    if (colon == std::string_view::npos) {
        return false;
    }
    const size_t start = before == std::string_view::npos ? 0 : before + 1;
    Scanner process(ids.substr(start, colon - start));
    process.skipBlanks();
    mLongProcess = process.takeNumber().value_or(-1);
    mLongTag = withoutTrailing(scanner.rest().substr(slash + 1), ' ');
    mLongTime = time;
    return true;
}

std::optional<LogEntry> LogcatParser::parse(std::string_view line) {
    line = withoutColours(line);
    if (takeLongHead(line)) {
        mIsInLong = true;
        return std::nullopt;
    }
    if (line.empty() || line.starts_with("--------- ")) {
        mIsInLong = false;
        return std::nullopt;
    }
    if (mIsInLong) {
        return LogEntry{mLongTime, mLongProcess, mLongTag, line};
    }
    Scanner scanner(line);
    const std::string_view time = takeTime(&scanner);
    if (const auto entry = parseThreadtime(scanner, time)) {
        return entry;
    }
    scanner.skipBlanks();
    if (const auto entry = parseSlashed(time.empty() ? Scanner(line) : scanner, time)) {
        return entry;
    }
    if (const auto entry = parseProcess(Scanner(line))) {
        return entry;
    }
    return LogEntry{.text = line};  // The raw format.
}

}  // namespace kc2::tool
