// The lines of a log file: of any size, in one line, of any bytes, in UTF-8 or UTF-16.

#include "log/LineReader.h"

#include <algorithm>
#include <utility>

namespace kc2::tool {

namespace {

constexpr size_t kReadBytes = size_t{1} << 16;
constexpr std::string_view kUtf8ByteOrderMark = "\xEF\xBB\xBF";

struct Magic {
    std::string_view bytes;
    const char* what;
    size_t offset = 0;
};

constexpr Magic kMagics[] = {
        {"\x1F\x8B",
         "a gzip file: unpack it with \"gunzip\", or use \"zcat FILE | kcodec2_spec "
         "log\""},
        {"PK\x03\x04",
         "a zip file: unpack it with \"unzip\" (a bug report's log is in the file "
         "bugreport-*.txt)"},
        {"BZh", "a bzip2 file: use \"bzcat FILE | kcodec2_spec log\""},
        {"\xFD"
         "7zXZ",
         "an xz file: use \"xzcat FILE | kcodec2_spec log\""},
        {"7z\xBC\xAF\x27\x1C", "a 7z file: unpack it with \"7z x\""},
        {"ustar", "a tar archive: unpack it with \"tar xf\"", 257},
        {"\x89PNG", "a picture: send the log as text, adb logcat -d > logcat.txt"},
        {"\xFF\xD8\xFF", "a picture: send the log as text, adb logcat -d > logcat.txt"},
        {"%PDF-", "a PDF document: send the log as text, adb logcat -d > logcat.txt"},
        {"\x28\xB5\x2F\xFD", "a zstd file: use \"zstdcat FILE | kcodec2_spec log\""},
};

bool isTextByte(char c) {
    return static_cast<unsigned char>(c) >= ' ' ||
           std::string_view("\t\r\n\f\b\033").find(c) != std::string_view::npos;
}

// Whether nearly every second byte, from `first` on, is 0 and the others are text: so is ASCII in
// UTF-16.
bool hasZerosAt(std::string_view block, size_t first) {
    const size_t pairs = std::min(block.size(), size_t{1024}) / 2;
    size_t fitting = 0;
    for (size_t i = 0; i < pairs; ++i) {
        const char zero = block[2 * i + first];
        const char letter = block[2 * i + 1 - first];
        fitting += zero == '\0' && isTextByte(letter) ? 1 : 0;
    }
    return pairs >= 2 && fitting * 10 >= pairs * 9;
}

bool isBinary(std::string_view block) {
    const auto bad =
            std::count_if(block.begin(), block.end(), [](char c) { return !isTextByte(c); });
    return static_cast<size_t>(bad) * 20 > block.size();
}

void appendUtf8(char32_t c, std::string* text) {
    if (c < 0x80) {
        *text += static_cast<char>(c);
        return;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr unsigned char kFirst[] = {0, 0xC0, 0xE0, 0xF0};
    *text += static_cast<char>(kFirst[more] | (c >> (6 * more)));
    for (int i = more - 1; i >= 0; --i) {
        *text += static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F));
    }
}

}  // namespace

// The first block, which is not decoded yet, shows what the file is.
LineReader::LineReader(std::FILE* file) : mFile(file) {
    if (!fill()) {
        return;
    }
    for (const Magic& magic : kMagics) {
        if (mRest.size() > magic.offset && mRest.substr(magic.offset).starts_with(magic.bytes)) {
            mWhyNotText = magic.what;
        }
    }
    if (mRest.starts_with("\xFF\xFE") || hasZerosAt(mRest, 1)) {
        mEncoding = Encoding::Utf16Little;
    } else if (mRest.starts_with("\xFE\xFF") || hasZerosAt(mRest, 0)) {
        mEncoding = Encoding::Utf16Big;
    } else if (*mWhyNotText == '\0' && isBinary(mRest)) {
        mWhyNotText = "binary, not text: take the log with \"adb logcat -d\", without -B";
    }
    if (mEncoding != Encoding::Bytes) {
        decode();
    }
}

bool LineReader::fill() {
    mBlock.resize(kReadBytes);  // An even number: only the last block may end in half a character.
    const size_t size = std::fread(mBlock.data(), 1, kReadBytes, mFile);
    mBlock.resize(size);
    mRest = size != 0 ? std::string_view(mBlock) : std::string_view();
    if (size != 0 && mEncoding != Encoding::Bytes) {
        decode();
    }
    return size != 0;
}

// A half of a pair that has no other half becomes U+FFFD.
void LineReader::decode() {
    constexpr char32_t kReplacement = 0xFFFD;
    const bool isBig = mEncoding == Encoding::Utf16Big;
    mDecoded.clear();
    for (size_t at = 0; at + 1 < mBlock.size(); at += 2) {
        const auto high = static_cast<unsigned char>(mBlock[isBig ? at : at + 1]);
        const auto low = static_cast<unsigned char>(mBlock[isBig ? at + 1 : at]);
        const char32_t unit = high << 8 | low;
        const bool isLow = unit >= 0xDC00 && unit < 0xE000;
        const char32_t first = std::exchange(mHighSurrogate, 0);
        if (first != 0 && isLow) {
            appendUtf8(0x10000 + ((first - 0xD800) << 10) + (unit - 0xDC00), &mDecoded);
            continue;
        }
        if (first != 0) {
            appendUtf8(kReplacement, &mDecoded);
        }
        if (unit >= 0xD800 && unit < 0xDC00) {
            mHighSurrogate = unit;
        } else {
            appendUtf8(isLow ? kReplacement : unit, &mDecoded);
        }
    }
    mRest = mDecoded;
}

bool LineReader::next(std::string_view* line) {
    mLine.clear();
    bool isAny = false;
    while (*mWhyNotText == '\0' && (!mRest.empty() || fill())) {
        isAny = true;
        const size_t size = std::min(mRest.find('\n'), mRest.size());
        mLine += mRest.substr(0, std::min(size, kLongestLogLine - mLine.size()));
        const bool isEnd = size != mRest.size();
        mRest.remove_prefix(size + (isEnd ? 1 : 0));
        if (isEnd) {
            break;
        }
    }
    mLineNumber += isAny ? 1 : 0;
    *line = mLine;
    while (line->starts_with(kUtf8ByteOrderMark)) {  // Also where files were joined.
        line->remove_prefix(kUtf8ByteOrderMark.size());
    }
    return isAny;
}

}  // namespace kc2::tool
