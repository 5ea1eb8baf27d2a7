// What `logcat` prints, line by line, whatever its format: who wrote it, under which tag, and what.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace kc2::tool {

// A log may be any file: of gigabytes, in one line, of any bytes. Lines longer than what a device
// logs at once are cut here, and nothing else of the log is kept.
inline constexpr size_t kLongestLogLine = 2048;

class LineReader {
public:
    explicit LineReader(std::FILE* file) : mFile(file) {}

    // The next line without its end; false at the end of the file. Valid until the next call.
    bool next(std::string_view* line);

    uint64_t lineNumber() const { return mLineNumber; }
    bool isFailed() const { return std::ferror(mFile) != 0; }

private:
    std::FILE* mFile;
    char mBlock[1 << 16];
    size_t mAt = 0;
    size_t mLimit = 0;
    std::string mLine;
    uint64_t mLineNumber = 0;
};

struct LogEntry {
    std::string_view time = {};  // As the log has it; empty when the format has none.
    int process = -1;            // -1 when the format has none.
    std::string_view tag = {};   // Empty when the format has none.
    std::string_view text = {};
};

// Takes the lines of one log in order: in the long format the head has its own line.
class LogcatParser {
public:
    // The entry of a line; nothing for a line that carries none.
    std::optional<LogEntry> parse(std::string_view line);

private:
    bool takeLongHead(std::string_view line);

    bool mIsInLong = false;
    std::string mLongTime;
    std::string mLongTag;
    int mLongProcess = -1;
};

}  // namespace kc2::tool
