// The text of a document, out of a file stream.
#pragma once

#include <cstddef>
#include <fstream>
#include <span>
#include <string>

namespace kc2 {

// A text of up to one block, as many documents are, takes no memory but the object's own.
class DocumentText {
public:
    // Reads the rest of the stream's text; false when it cannot be read to its end. Text beyond
    // what the reader accepts is left unread. The stream's state and exception mask are put back,
    // and a read that fails in the middle (a directory opens like a file) throws nothing, whatever
    // the stream has been asked to throw. To be called once.
    bool read(std::ifstream& stream);

    // To be changed at will. Valid as long as this object.
    std::span<char> bytes() { return mLongText.empty() ? mShortText : std::span(mLongText); }

private:
    char mBlock[8192];
    std::span<char> mShortText;  // In the block.
    std::string mLongText;
};

}  // namespace kc2
