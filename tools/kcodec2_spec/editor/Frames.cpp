// Messages on a stream of bytes: before each is a header with its length.

#include "editor/Frames.h"

#include <fmt/format.h>

#include <charconv>
#include <utility>

#include "base/Text.h"
#include "base/Utf8.h"

namespace kc2::tool {

namespace {

constexpr size_t kMostHeaderBytes = 4096;
constexpr size_t kMostMessageBytes = size_t{64} << 20;
constexpr std::string_view kHeaderEnd = "\r\n";

}  // namespace

std::optional<std::string> FrameReader::next() {
    if (!mWhyBroken.empty() || (!mLength && !readHeader()) || mBytes.size() - mAt < *mLength) {
        return std::nullopt;
    }
    std::string message = mBytes.substr(mAt, *mLength);
    drop(*std::exchange(mLength, std::nullopt));
    return message;
}

// Returns whether the header is complete and sound.
bool FrameReader::readHeader() {
    std::optional<size_t> length;
    size_t at = mAt;
    for (;;) {
        const size_t end = mBytes.find(kHeaderEnd, at);
        if (end == std::string::npos || end + kHeaderEnd.size() - mAt > kMostHeaderBytes) {
            if (mBytes.size() - mAt > kMostHeaderBytes) {
                mWhyBroken = fmt::format("a header has more than {} bytes", kMostHeaderBytes);
            }
            return false;
        }
        const std::string line = mBytes.substr(at, end - at);
        at = end + kHeaderEnd.size();
        if (line.empty()) {
            break;
        }
        readHeaderLine(line, &length);
        if (!mWhyBroken.empty()) {
            return false;
        }
    }
    if (!length) {
        mWhyBroken = "a header has no Content-Length";
        return false;
    }
    mLength = length;
    drop(at - mAt);
    return true;
}

void FrameReader::readHeaderLine(std::string_view line, std::optional<size_t>* messageLength) {
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        mWhyBroken = fmt::format("a header line has no colon: \"{}\"", shortened(line));
        return;
    }
    if (inSmallLetters(line.substr(0, colon)) != "content-length") {
        return;
    }
    std::string_view digits = line.substr(colon + 1);
    digits.remove_prefix(std::min(digits.find_first_not_of(' '), digits.size()));
    size_t length = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, length);
    if (digits.empty() || error == std::errc::invalid_argument || stop != end) {
        mWhyBroken = fmt::format("Content-Length is not a number: \"{}\"", shortened(digits));
    } else if (error != std::errc() || length > kMostMessageBytes) {
        mWhyBroken = fmt::format("a message of {} bytes is above the limit of {}",
                                 shortened(digits), kMostMessageBytes);
    } else {
        *messageLength = length;
    }
}

void FrameReader::drop(size_t count) {
    constexpr size_t kMostUsedBytes = 4096;
    mAt += count;
    if (mAt == mBytes.size() || mAt > kMostUsedBytes) {
        mBytes.erase(0, mAt);
        mAt = 0;
    }
    if (mBytes.empty()) {
        mBytes = std::string();  // A large message must not keep its memory.
    }
}

std::string framed(std::string_view message) {
    return fmt::format("Content-Length: {}\r\n\r\n{}", message.size(), message);
}

}  // namespace kc2::tool
