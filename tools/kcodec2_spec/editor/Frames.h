// Messages on a stream of bytes: before each is a header with its length.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kc2::tool {

class FrameReader {
public:
    void add(std::string_view bytes) { mBytes.append(bytes); }

    // The next message; none until all of its bytes are there, and after a broken header.
    std::optional<std::string> next();

    // What is wrong with a header, after which no message can be found; empty when nothing is.
    const std::string& whyBroken() const { return mWhyBroken; }

    // Whether a message has begun.
    bool isInMessage() const { return mLength.has_value() || mAt < mBytes.size(); }

private:
    bool readHeader();
    void readHeaderLine(std::string_view line, std::optional<size_t>* messageLength);
    void drop(size_t count);

    std::string mBytes;
    size_t mAt = 0;                 // What is before it has been used.
    std::optional<size_t> mLength;  // Of the message after the header that has been read.
    std::string mWhyBroken;
};

// The message with its header.
std::string framed(std::string_view message);

}  // namespace kc2::tool
