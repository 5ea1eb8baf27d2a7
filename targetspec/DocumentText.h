// The text of a document, out of a file stream.
#pragma once

#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>

namespace kc2 {

// A text of up to one block, as many documents are, takes no memory but the object's own.
class DocumentText {
public:
    // Reads the rest of the stream's text; false when it cannot be read to its end. Text beyond
    // what the reader accepts is left unread. The stream's state and exception mask are put back,
    // and a read that fails in the middle (a directory opens like a file) throws nothing, whatever
    // the stream has been asked to throw. To be called once.
    bool read(std::ifstream& stream);

    // Valid as long as this object.
    std::string_view view() const { return mLongText.empty() ? mShortText : mLongText; }

private:
    char mBlock[8192];
    std::string_view mShortText;  // In the block.
    std::string mLongText;
};

}  // namespace kc2
