// check --fix: fixed documents in place of the ones that were read.
#pragma once

#include <string>

namespace kc2::tool {

// Prints a unified diff of two texts that have the same number of lines.
void printDiff(const std::string& path, const std::string& before, const std::string& after);

// Why the file cannot be fixed: it is not a regular file, or it is outside of the root directory
// (when that is not empty); empty when it can.
std::string whyNotFixable(const std::string& path, const std::string& rootDirectory);

// Writes `after` beside the file and renames it, with the file's mode. Returns what is wrong; empty
// when nothing is. A file whose text is no longer `before` is left as it is.
std::string replaceFile(const std::string& path, const std::string& before,
                        const std::string& after);

}  // namespace kc2::tool
