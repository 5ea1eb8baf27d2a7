// Opening and seeding the private configuration file.
#pragma once

#include <fstream>

namespace kc2 {

// Where the private document of a load comes from.
enum class PrivateSource {
    File,           // The private file; the stream is open.
    BuiltIn,        // The built-in document; the stream is in a failed state.
    SeededBuiltIn,  // The same, and its text must be written to the private file.
};

// Whether the codec test tool exists, whatever kind of file it is.
bool isTestToolInstalled();

// Opens the private configuration file for parseJsonData(). With the test tool, a missing or empty
// file must be seeded, and this load merges the built-in document, too.
//
// What is not a regular file is treated as one that cannot be opened, and is not seeded: opening a
// pipe that nobody writes to waits for ever, with the store's lock taken, and every process in the
// right group can put one there.
PrivateSource openPrivateConfig(std::ifstream& stream, bool isTestToolInstalled);

// Writes a built-in document to the private file. A failure is not reported, but leaves the file
// empty: every later load would reject half a document, while an empty file is seeded again.
void seedPrivateConfig(const char* text);

}  // namespace kc2
