// Opening and seeding the private configuration file.
#pragma once

#include <fstream>

namespace kc2 {

// Whether the codec test tool exists, whatever kind of file it is.
bool isTestToolInstalled();

// Opens the private configuration file for parseJsonData(), which merges the built-in document
// where the stream has failed. Returns whether the file must be seeded with that document: with the
// test tool, if it is missing or empty.
//
// What is not a regular file is treated as one that cannot be opened, and is not seeded: opening a
// pipe that nobody writes to waits for ever, with the store's lock taken, and every process in the
// right group can put one there.
bool openPrivateConfig(std::ifstream& stream, bool isTestToolInstalled);

// Writes a built-in document to the private file. A failure is not reported, but leaves the file
// empty: every later load would reject half a document, while an empty file is seeded again.
void seedPrivateConfig(const char* text);

}  // namespace kc2
