// The text of a document, out of a file stream.
#pragma once

#include <fstream>
#include <string>

namespace kc2 {

// Reads the rest of the stream's text; false when it cannot be read to its end. Text beyond what
// the reader accepts is left unread. The stream's own state stays as it is, and a read that fails
// in the middle (a directory opens like a file) throws nothing, whatever the stream has been asked
// to throw.
bool readText(std::ifstream& stream, std::string* text);

}  // namespace kc2
