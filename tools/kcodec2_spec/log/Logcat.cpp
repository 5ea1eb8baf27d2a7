// The lines of a log, whatever tool printed or copied them.

#include "log/Logcat.h"

#include <algorithm>
#include <charconv>

#include "base/Text.h"

namespace kc2::tool {

namespace {

constexpr std::string_view kPriorities = "VDIWEFS";
constexpr std::string_view kDigits = "0123456789";

// Reads pieces from the front of a text, and notes whether one was missing.
class Scanner {
public:
    explicit Scanner(std::string_view text) : mRest(text) {}

    std::string_view rest() const { return mRest; }

    void skipBlanks() { mRest.remove_prefix(std::min(mRest.find_first_not_of(' '), mRest.size())); }

    bool read(char c) {
        if (mRest.empty() || mRest.front() != c) {
            return false;
        }
        mRest.remove_prefix(1);
        return true;
    }

    // What is in front of the first of `ends`.
    std::string_view readUntil(std::string_view ends) {
        const std::string_view piece = mRest.substr(0, mRest.find_first_of(ends));
        mRest.remove_prefix(piece.size());
        return piece;
    }

    std::optional<int> readNumber() {
        if (mRest.starts_with('-')) {
            return std::nullopt;  // Not left to libc++, which wraps around zero for "-0".
        }
        int number = 0;
        const std::from_chars_result read =
                std::from_chars(mRest.data(), mRest.data() + mRest.size(), number);
        if (read.ec != std::errc()) {
            return std::nullopt;
        }
        mRest.remove_prefix(static_cast<size_t>(read.ptr - mRest.data()));
        return number;
    }

    bool readPriority(char* priority) {
        if (mRest.empty() || kPriorities.find(mRest.front()) == std::string_view::npos) {
            return false;
        }
        *priority = mRest.front();
        mRest.remove_prefix(1);
        return true;
    }

    // The end of a header: ": " and then the text; a text without a blank in front was cut.
    bool readColon() {
        if (!read(':')) {
            return false;
        }
        read(' ');
        return true;
    }

private:
    std::string_view mRest;
};

std::string_view withoutLeading(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

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

// "11-25 08:11:21.123", with a year in front and a zone at the end, or seconds since 1970 or the
// start. Empty, and nothing read, when there is none.
std::string_view readTime(Scanner* scanner) {
    Scanner ahead = *scanner;
    ahead.skipBlanks();
    const char* const start = ahead.rest().data();
    const std::string_view first = ahead.readUntil(" ");
    const char* limit = first.data() + first.size();
    constexpr size_t kDaySizes[] = {5, 10};  // Without a year and with one.
    if (isDigitsWith(first, "-") &&
        (first.size() == kDaySizes[0] || first.size() == kDaySizes[1])) {
        ahead.skipBlanks();
        const std::string_view clock = ahead.readUntil(" ");
        if (!isDigitsWith(clock, ":.")) {
            return std::string_view();
        }
        limit = clock.data() + clock.size();
    } else if (!isDigitsWith(first, ".")) {
        return std::string_view();
    }
    *scanner = ahead;
    ahead.skipBlanks();
    const std::string_view zone = ahead.readUntil(" ");
    if (zone.size() == 5 && (zone[0] == '+' || zone[0] == '-') && isDigits(zone.substr(1))) {
        limit = zone.data() + zone.size();
        *scanner = ahead;
    }
    return {start, static_cast<size_t>(limit - start)};
}

// "  123", " 1046:  123", "media:  123:  124": the numbers, the user's may be a name.
struct Ids {
    std::string_view words[3];
    size_t count = 0;
};

Ids idsIn(std::string_view text) {
    Ids ids;
    while (!text.empty() && ids.count < 3) {
        const size_t end = std::min(text.find(':'), text.size());
        ids.words[ids.count++] = withoutTrailing(withoutLeading(text.substr(0, end)), ' ');
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return ids;
}

std::optional<int> processOf(std::string_view word) {
    return isDigits(word) ? Scanner(word).readNumber() : std::nullopt;
}

// "(  123)", or "( media:  123)" with the user in front, or "(  123:0x7b)" with the thread.
std::optional<int> readProcessInBrackets(Scanner* scanner) {
    if (!scanner->read('(')) {
        return std::nullopt;
    }
    const Ids ids = idsIn(scanner->readUntil(")"));
    if (!scanner->read(')') || ids.count == 0) {
        return std::nullopt;
    }
    const bool hasThread = ids.words[ids.count - 1].starts_with("0x");
    return processOf(ids.words[ids.count - (hasThread && ids.count > 1 ? 2 : 1)]);
}

// brief and time: "E/Tag     (  123): text"; tag: "E/Tag     : text".
std::optional<LogEntry> parseSlashed(Scanner scanner, std::string_view time) {
    LogEntry entry = {.time = time};
    if (!scanner.readPriority(&entry.priority) || !scanner.read('/')) {
        return std::nullopt;
    }
    entry.tag = withoutTrailing(scanner.readUntil("(:"), ' ');
    if (const std::optional<int> process = readProcessInBrackets(&scanner)) {
        entry.process = *process;
    }
    if (!scanner.readColon()) {
        return std::nullopt;
    }
    entry.text = scanner.rest();
    return entry;
}

// process and thread: "E(  123) text  (Tag)", "E(  123:  124) text"; either may have the user in
// front. Only the process format names the tag.
std::optional<LogEntry> parseProcess(Scanner scanner) {
    LogEntry entry;
    if (!scanner.readPriority(&entry.priority) || !scanner.read('(')) {
        return std::nullopt;
    }
    const Ids ids = idsIn(scanner.readUntil(")"));
    if (ids.count == 0 || !scanner.read(')') || !scanner.read(' ')) {
        return std::nullopt;
    }
    entry.text = scanner.rest();
    const size_t bracket = entry.text.rfind("  (");
    const bool hasTag =
            ids.count < 3 && bracket != std::string_view::npos && entry.text.back() == ')';
    if (hasTag) {
        entry.tag = withoutTrailing(entry.text.substr(bracket + 3, entry.text.size() - bracket - 4),
                                    ' ');
        entry.text = entry.text.substr(0, bracket);
    }
    const size_t before = hasTag || ids.count == 1 ? 1 : 2;
    const std::optional<int> process = processOf(ids.words[ids.count - before]);
    entry.process = process.value_or(-1);
    return process ? std::optional(entry) : std::nullopt;
}

// threadtime: "11-25 08:11:21.123   123   124 E Tag     : text"; the user may be in front.
std::optional<LogEntry> parseThreadtime(Scanner scanner, std::string_view time) {
    std::string_view words[3];
    size_t count = 0;
    for (std::string_view& word : words) {
        Scanner ahead = scanner;
        ahead.skipBlanks();
        const std::string_view next = ahead.readUntil(" ");
        if (count >= 2 && !isDigits(next)) {
            break;
        }
        word = next;
        scanner = ahead;
        ++count;
    }
    if (time.empty() || count < 2) {
        return std::nullopt;
    }
    const std::optional<int> process = processOf(words[count - 2]);
    scanner.skipBlanks();
    LogEntry entry = {.time = time};
    if (!process || !isDigits(words[count - 1]) || !scanner.readPriority(&entry.priority) ||
        !scanner.read(' ')) {
        return std::nullopt;
    }
    entry.process = *process;
    entry.tag = withoutTrailing(scanner.readUntil(":"), ' ');
    if (!scanner.readColon()) {
        return std::nullopt;
    }
    entry.text = scanner.rest();
    return entry;
}

// What an IDE copies. Its older form: "2026-11-25 08:11:21.123 123-124/name E/Tag: text"; its newer
// one: "2026-11-25 08:11:21.123   123-124   Tag      name      E  text".
std::optional<LogEntry> parseIde(Scanner scanner, std::string_view time) {
    scanner.skipBlanks();
    const std::string_view ids = scanner.readUntil(" /");
    const std::optional<int> process = processOf(ids.substr(0, ids.find('-')));
    if (time.empty() || !process ||
        (ids.find('-') == std::string_view::npos && !scanner.rest().starts_with("/"))) {
        return std::nullopt;
    }
    if (scanner.read('/')) {
        scanner.readUntil(" ");
        scanner.skipBlanks();
        std::optional<LogEntry> entry = parseSlashed(scanner, time);
        if (entry) {
            entry->process = *process;
        }
        return entry;
    }
    LogEntry entry = {.time = time, .process = *process};
    for (int word = 0; word < 3; ++word) {  // Tag and name may be hidden.
        scanner.skipBlanks();
        Scanner ahead = scanner;
        if (ahead.readPriority(&entry.priority) && ahead.read(' ')) {
            ahead.read(' ');
            entry.text = ahead.rest();
            return entry;
        }
        const std::string_view name = scanner.readUntil(" ");
        entry.tag = word == 0 ? name : entry.tag;
    }
    return std::nullopt;
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

// How much of `line` looks like `shape`, in which 0 is any number; nothing when it does not.
std::optional<size_t> lengthOf(std::string_view shape, std::string_view line) {
    size_t at = 0;
    for (const char c : shape) {
        const size_t start = at;
        while (c == '0' && at < line.size() && isDigit(line[at])) {
            ++at;
        }
        at += c != '0' && at < line.size() && line[at] == c ? 1 : 0;
        if (at == start) {
            return std::nullopt;
        }
    }
    return at;
}

std::string shapeOf(std::string_view prefix) {
    std::string shape;
    for (const char c : prefix) {
        const bool isMore = isDigit(c) && !shape.empty() && shape.back() == '0';
        shape += isMore ? "" : std::string(1, isDigit(c) ? '0' : c);
    }
    return shape;
}

// "11-25 08:11:21.123", with a year in front of it or not, as seconds of a year; or seconds.
std::optional<double> secondsOf(std::string_view time) {
    int parts[7] = {};
    size_t count = 0;
    const size_t zone = time.find_first_of("+", 1);
    std::string_view rest = time.substr(0, zone);
    double fraction = 0;
    while (!rest.empty() && count < 7) {
        const size_t digits = std::min(rest.find_first_not_of(kDigits), rest.size());
        const std::optional<int> number = Scanner(rest.substr(0, digits)).readNumber();
        if (!number) {
            return std::nullopt;
        }
        parts[count++] = *number;
        rest.remove_prefix(digits);
        if (rest.starts_with('.')) {
            for (double unit = 0.1; rest.size() > 1 && isDigit(rest[1]); unit /= 10) {
                fraction += unit * (rest[1] - '0');
                rest.remove_prefix(1);
            }
            break;
        }
        rest.remove_prefix(std::min(size_t{1}, rest.size()));
    }
    if (count == 1) {
        return parts[0] + fraction;
    }
    if (count < 5) {
        return std::nullopt;
    }
    const int* const last = parts + count;
    return (((last[-5] * 31.0 + last[-4]) * 24 + last[-3]) * 60 + last[-2]) * 60 + last[-1] +
           fraction;
}

}  // namespace

std::optional<double> secondsBetween(std::string_view earlier, std::string_view later) {
    const std::optional<double> first = secondsOf(earlier);
    const std::optional<double> second = secondsOf(later);
    if (!first || !second || (*first < 31.0 * 24 * 3600) != (*second < 31.0 * 24 * 3600)) {
        return std::nullopt;
    }
    const double year = 12 * 31.0 * 24 * 3600;
    const double between = *second - *first;
    const bool isNewYear = between < -year / 2 && earlier.find('-') != std::string_view::npos;
    return isNewYear ? between + year : between;
}

// "[ 11-25 08:11:21.123   123:  124 E/Tag      ]", and then the text on separate lines.
bool LogcatParser::readLongHeader(std::string_view line) {
    if (line.size() < 4 || line.substr(0, 2) != "[ " || line.back() != ']') {
        return false;
    }
    Scanner scanner(line.substr(2, line.size() - 3));
    const std::string_view time = readTime(&scanner);
    const size_t slash = scanner.rest().find('/');
    if (time.empty() || slash == 0 || slash == std::string_view::npos) {
        return false;
    }
    const Ids ids = idsIn(scanner.rest().substr(0, slash - 1));
    if (ids.count < 2) {
        return false;
    }
    mLongProcess = processOf(ids.words[ids.count - 2]).value_or(-1);
    mLongPriority = scanner.rest()[slash - 1];
    mLongTag = withoutTrailing(scanner.rest().substr(slash + 1), ' ');
    mLongTime = time;
    mIsInLong = true;
    return true;
}

// A line that says itself what it is.
std::optional<LogEntry> LogcatParser::parseKnown(std::string_view line) {
    if (readLongHeader(line)) {
        return LogEntry();
    }
    constexpr std::string_view kBeginning = "--------- beginning of ";
    if (line.starts_with("--------- ")) {
        mIsInLong = false;
        return LogEntry{.buffer = line.starts_with(kBeginning) ? line.substr(kBeginning.size())
                                                               : std::string_view()};
    }
    if (mIsInLong) {
        return std::nullopt;
    }
    Scanner scanner(line);
    const std::string_view time = readTime(&scanner);
    scanner.skipBlanks();
    for (const auto parse : {parseThreadtime, parseIde}) {
        if (const auto entry = parse(scanner, time)) {
            return entry;
        }
    }
    if (const auto entry = parseSlashed(time.empty() ? Scanner(line) : scanner, time)) {
        return entry;
    }
    return parseProcess(Scanner(line));
}

// Whether a header may begin here: what it looks like, and that it is not inside a word.
bool mayBeHeader(std::string_view line, size_t at) {
    const char before = line[at - 1];
    const bool isInWord = isDigit(before) || inSmallLetters(before) != before ||
                          (before >= 'a' && before <= 'z') || before == '_' || before == '.';
    const std::string_view rest = line.substr(at);
    const bool isShort = kPriorities.find(rest.front()) != std::string_view::npos &&
                         rest.size() > 1 && (rest[1] == '/' || rest[1] == '(');
    return !isInWord &&
           (isDigit(rest.front()) || isShort || rest.starts_with("[ ") || rest.starts_with("---"));
}

// A number, a time stamp, a quote mark or a file's name may be in front of each line.
std::optional<LogEntry> LogcatParser::parseAfterPrefix(std::string_view line) {
    constexpr size_t kLongestPrefix = 128;
    for (size_t at = 1; at < std::min(line.size(), kLongestPrefix); ++at) {
        const auto entry = mayBeHeader(line, at) ? parseKnown(line.substr(at)) : std::nullopt;
        if (entry) {
            mPrefixShape = shapeOf(line.substr(0, at));
            return entry;
        }
    }
    return std::nullopt;
}

std::optional<LogEntry> LogcatParser::parse(std::string_view line) {
    line = withoutColours(line);
    std::optional<LogEntry> entry = parseKnown(line);
    if (!entry && !mPrefixShape.empty()) {
        if (const std::optional<size_t> length = lengthOf(mPrefixShape, line)) {
            line.remove_prefix(*length);
            entry = parseKnown(line);
        }
    }
    if (line.empty()) {
        mIsInLong = false;
        return std::nullopt;
    }
    if (!entry && mIsInLong) {
        entry = LogEntry{mLongTime, mLongPriority, mLongProcess, mLongTag, line};
    } else if (!entry) {
        entry = parseAfterPrefix(line);
    }
    if (entry) {
        ++mKnownLines;
        const bool isEmpty = entry->tag.empty() && entry->text.empty() && entry->buffer.empty();
        return isEmpty ? std::nullopt : entry;
    }
    ++mRawLines;
    return LogEntry{.text = line};  // The raw format.
}

}  // namespace kc2::tool
