// Opening and seeding the private configuration file.
#pragma once

#include <fstream>

namespace kc2 {

// Where the private document of a load comes from.
enum class PrivateSource {
    File,           // The private file; the stream is open.
    BuiltIn,        // The built-in document; the stream is in a failed state.
    SeededBuiltIn,  // The same, and the private file is to be seeded with its text.
};

// Whether the codec test tool is there, whatever kind of file it is.
bool isTestToolInstalled();

// Opens the private configuration file for parseJsonData(). With the test tool, a file that is
// missing or empty is to be seeded, and this load, too, merges the built-in document.
//
// What is not a regular file counts as one that cannot be opened, and is not seeded: opening a pipe
// that nobody writes to waits for ever, with the store's lock held, and anything with the right
// group can put one there.
PrivateSource openPrivateConfig(std::ifstream& stream, bool isTestToolInstalled);

// Writes a built-in document into the private file. A failure is not reported, but half a document
// does not stay behind: every later load would reject it, while an empty file is seeded again.
void seedPrivateConfig(const char* text);

}  // namespace kc2
