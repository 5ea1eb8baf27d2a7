// Opening the private configuration file.
#pragma once

#include <fstream>

namespace kc2 {

// Opens the private configuration file for parseJsonData(): a stream in a failed state stands for
// the built-in document. Returns whether the file is to be seeded: the codec test tool is
// installed, and the file is missing or empty. This load, too, then merges the built-in document. What
// is not a regular file is not opened, and not seeded.
bool openPrivateConfig(std::ifstream& stream);

}  // namespace kc2
