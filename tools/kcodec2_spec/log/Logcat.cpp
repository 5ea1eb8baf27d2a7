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

    std::string_view readWord() {
        skipBlanks();
        return readUntil(" ");
    }

    bool readPriority(char* priority) {
        if (mRest.empty() || kPriorities.find(mRest.front()) == std::string_view::npos) {
            return false;
        }
        *priority = mRest.front();
        mRest.remove_prefix(1);
        return true;
    }

private:
    std::string_view mRest;
};

size_t digitsAtStartOf(std::string_view text) {
    return std::min(text.find_first_not_of(kDigits), text.size());
}

bool isDigits(std::string_view text) {
    return !text.empty() && digitsAtStartOf(text) == text.size();
}

// What a word of digits is; nothing for any other word, or a number that is too large.
std::optional<int> numberOf(std::string_view word) {
    int number = 0;
    const bool isNumber =
            isDigits(word) &&
            std::from_chars(word.data(), word.data() + word.size(), number).ec == std::errc();
    return isNumber ? std::optional(number) : std::nullopt;
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
    constexpr size_t kDaySizes[] = {5, 10};  // Without a year and with one.
    if (isDigitsWith(first, "-") &&
        (first.size() == kDaySizes[0] || first.size() == kDaySizes[1])) {
        if (!isDigitsWith(ahead.readWord(), ":.")) {
            return std::string_view();
        }
    } else if (!isDigitsWith(first, ".")) {
        return std::string_view();
    }
    *scanner = ahead;
    const std::string_view zone = ahead.readWord();
    if (zone.size() == 5 && (zone[0] == '+' || zone[0] == '-') && isDigits(zone.substr(1))) {
        *scanner = ahead;
    }
    return {start, static_cast<size_t>(scanner->rest().data() - start)};
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
        Scanner word(withoutTrailing(text.substr(0, end), ' '));
        word.skipBlanks();
        ids.words[ids.count++] = word.rest();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return ids;
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
    return numberOf(ids.words[ids.count - (hasThread && ids.count > 1 ? 2 : 1)]);
}

// The end of a header: ": " and then the text; a text without a blank in front was cut.
std::optional<LogEntry> withText(LogEntry entry, Scanner scanner) {
    if (!scanner.read(':')) {
        return std::nullopt;
    }
    scanner.read(' ');
    entry.text = scanner.rest();
    return entry;
}

// brief and time: "E/Tag     (  123): text"; tag: "E/Tag     : text".
std::optional<LogEntry> parseSlashed(Scanner scanner, std::string_view time) {
    LogEntry entry = {.time = time};
    if (!scanner.readPriority(&entry.priority) || !scanner.read('/')) {
        return std::nullopt;
    }
    entry.tag = withoutTrailing(scanner.readUntil("(:"), ' ');
    entry.process = readProcessInBrackets(&scanner).value_or(-1);
    return withText(entry, scanner);
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
    entry.process = numberOf(ids.words[ids.count - before]).value_or(-1);
    return entry.process >= 0 ? std::optional(entry) : std::nullopt;
}

// threadtime: "11-25 08:11:21.123   123   124 E Tag     : text"; the user may be in front.
std::optional<LogEntry> parseThreadtime(Scanner scanner, std::string_view time) {
    std::string_view process = scanner.readWord();
    std::string_view thread = scanner.readWord();
    Scanner ahead = scanner;
    if (const std::string_view third = ahead.readWord(); isDigits(third)) {
        process = thread;
        thread = third;
        scanner = ahead;
    }
    scanner.skipBlanks();
    LogEntry entry = {.time = time, .process = numberOf(process).value_or(-1)};
    if (time.empty() || entry.process < 0 || !isDigits(thread) ||
        !scanner.readPriority(&entry.priority) || !scanner.read(' ')) {
        return std::nullopt;
    }
    entry.tag = withoutTrailing(scanner.readUntil(":"), ' ');
    return withText(entry, scanner);
}

// long: "[ 11-25 08:11:21.123   123:  124 E/Tag      ]", and then the text on separate lines.
std::optional<LogEntry> parseLong(std::string_view header) {
    if (!header.starts_with("[ ") || !header.ends_with(']')) {
        return std::nullopt;
    }
    Scanner scanner(header.substr(2, header.size() - 3));
    LogEntry entry = {.time = readTime(&scanner)};
    const std::string_view rest = scanner.rest();
    const size_t slash = rest.find('/');
    if (entry.time.empty() || slash == 0 || slash == std::string_view::npos) {
        return std::nullopt;
    }
    const Ids ids = idsIn(rest.substr(0, slash - 1));
    if (ids.count < 2) {
        return std::nullopt;
    }
    entry.process = numberOf(ids.words[ids.count - 2]).value_or(-1);
    entry.priority = rest[slash - 1];
    entry.tag = withoutTrailing(rest.substr(slash + 1), ' ');
    return entry;
}

// What an IDE copies. Its older form: "2026-11-25 08:11:21.123 123-124/name E/Tag: text"; its newer
// one: "2026-11-25 08:11:21.123   123-124   Tag      name      E  text".
std::optional<LogEntry> parseIde(Scanner scanner, std::string_view time) {
    scanner.skipBlanks();
    const std::string_view ids = scanner.readUntil(" /");
    const size_t dash = ids.find('-');
    const std::optional<int> process = numberOf(ids.substr(0, dash));
    const bool isOlder = scanner.read('/');
    if (time.empty() || !process || (dash == std::string_view::npos && !isOlder)) {
        return std::nullopt;
    }
    if (isOlder) {
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
    while (line.starts_with("\033[") && line.find('m') != std::string_view::npos) {
        line.remove_prefix(line.find('m') + 1);
    }
    while (line.ends_with('\r') || line.ends_with('\n')) {
        line.remove_suffix(1);
    }
    constexpr std::string_view kReset = "\033[0m";
    return line.ends_with(kReset) ? line.substr(0, line.size() - kReset.size()) : line;
}

// `line` after a prefix like this one, in which a number may be any other; nothing where it has
// none.
std::optional<std::string_view> withoutPrefix(std::string_view prefix, std::string_view line) {
    while (!prefix.empty()) {
        const size_t digits = digitsAtStartOf(prefix);
        const size_t size = digits != 0 ? digitsAtStartOf(line) : line.starts_with(prefix[0]);
        if (size == 0) {
            return std::nullopt;
        }
        prefix.remove_prefix(std::max(digits, size_t{1}));
        line.remove_prefix(size);
    }
    return line;
}

// "11-25 08:11:21.123", with a year in front of it or not, as seconds of a year; or seconds.
std::optional<double> secondsOf(std::string_view time) {
    int parts[7] = {};
    size_t count = 0;
    std::string_view rest = time.substr(0, time.find('+', 1));  // Without the zone.
    double fraction = 0;
    while (!rest.empty() && count < 7) {
        const size_t digits = digitsAtStartOf(rest);
        const std::optional<int> number = numberOf(rest.substr(0, digits));
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

// A line that says itself what it is.
std::optional<LogEntry> LogcatParser::parseKnown(std::string_view line) {
    if (parseLong(line)) {
        mLongHeader = line;
        return LogEntry();
    }
    constexpr std::string_view kBeginning = "--------- beginning of ";
    if (line.starts_with("--------- ")) {
        mLongHeader.clear();
        return LogEntry{.buffer = line.starts_with(kBeginning) ? line.substr(kBeginning.size())
                                                               : std::string_view()};
    }
    if (!mLongHeader.empty()) {
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
            mPrefix = line.substr(0, at);
            return entry;
        }
    }
    return std::nullopt;
}

std::optional<LogEntry> LogcatParser::parse(std::string_view line) {
    line = withoutColours(line);
    std::optional<LogEntry> entry = parseKnown(line);
    if (!entry && !mPrefix.empty()) {
        if (const std::optional<std::string_view> rest = withoutPrefix(mPrefix, line)) {
            line = *rest;
            entry = parseKnown(line);
        }
    }
    if (line.empty()) {
        mLongHeader.clear();
        return std::nullopt;
    }
    if (!entry && !mLongHeader.empty()) {
        entry = parseLong(mLongHeader);
        entry->text = line;
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
