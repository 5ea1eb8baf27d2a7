// The lines of a log file: of any size, in one line, of any bytes, in UTF-8 or UTF-16.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace kc2::tool {

// Lines longer than what a device logs at once are cut here; nothing else of the log is kept.
inline constexpr size_t kLongestLogLine = 2048;

class LineReader {
public:
    // Reads the start of `file`, which must outlive the reader.
    explicit LineReader(std::FILE* file);

    // The next line without its end, in UTF-8; false at the end of the file, and for a file that is
    // not text. Valid until the next call.
    bool next(std::string_view* line);

    uint64_t lineNumber() const { return mLineNumber; }
    bool isFailed() const { return std::ferror(mFile) != 0; }

    // For a file that is not text: what it is, and how to get text from it. Empty for text.
    const char* whyNotText() const { return mWhyNotText; }

private:
    enum class Encoding { Bytes, Utf16Little, Utf16Big };

    bool fill();
    void decode();

    std::FILE* mFile;
    Encoding mEncoding = Encoding::Bytes;
    const char* mWhyNotText = "";
    std::string mBlock;    // As read.
    std::string mDecoded;  // Of UTF-16.
    std::string_view mRest;
    char32_t mHighSurrogate = 0;
    std::string mLine;
    uint64_t mLineNumber = 0;
};

}  // namespace kc2::tool
