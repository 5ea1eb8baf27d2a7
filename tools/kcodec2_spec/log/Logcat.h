// The lines of a log, whatever tool printed or copied them: who wrote each, under which tag, and
// what.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kc2::tool {

struct LogEntry {
    std::string_view time = {};  // As the log has it; empty when the format has none.
    char priority = '\0';        // V, D, I, W, E, F or S; 0 when the format has none.
    int process = -1;            // -1 when the format has none.
    std::string_view tag = {};   // Empty when the format has none.
    std::string_view text = {};
    std::string_view buffer = {};  // Which buffer begins here: nothing else is in the entry then.
    uint64_t line = 0;             // Of the log. The parser does not know it.
    uint64_t count = 1;            // How many such lines the device has written as one.
};

// Reads the lines of one log in order: in the long format the header has its own line.
class LogcatParser {
public:
    // The entry of a line; nothing for a line that has none. Valid until the next call.
    std::optional<LogEntry> parse(std::string_view line);

    // Lines with a header, or with what logcat prints between entries.
    uint64_t knownLines() const { return mKnownLines; }
    // Other lines that are not empty: the raw format's, or what somebody else has written.
    uint64_t rawLines() const { return mRawLines; }

private:
    std::optional<LogEntry> parseKnown(std::string_view line);
    std::optional<LogEntry> parseAfterPrefix(std::string_view line);

    std::string mLongHeader;  // Of the entry that the line is in; empty outside the long format.
    std::string mPrefix;      // What precedes each line, with any numbers.
    uint64_t mKnownLines = 0;
    uint64_t mRawLines = 0;
};

// How many seconds after `earlier` the time `later` is; nothing where that cannot be known. A log
// may have no years: its times are then compared as those of one winter.
std::optional<double> secondsBetween(std::string_view earlier, std::string_view later);

}  // namespace kc2::tool
