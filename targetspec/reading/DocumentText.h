// The text of a document, read from a file stream.
#pragma once

#include <cstddef>
#include <fstream>
#include <span>
#include <string>

namespace kc2 {

// A text of up to one block, as many documents are, needs no allocation.
class DocumentText {
public:
    // Reads the rest of the stream's text; false if it cannot be read to its end. Reading stops
    // soon after the longest text that the reader accepts. The stream's state and exception mask
    // are restored, and a read that fails in the middle (a directory opens like a file) throws
    // nothing, whatever the exception mask. To be called once.
    bool read(std::ifstream& stream);

    // The caller may change them. Valid as long as this object.
    std::span<char> bytes() { return mLongText.empty() ? mShortText : std::span(mLongText); }

private:
    char mBlock[8192];
    std::span<char> mShortText;  // In the block.
    std::string mLongText;
};

}  // namespace kc2
