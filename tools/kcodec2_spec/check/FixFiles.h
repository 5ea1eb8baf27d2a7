// check --fix: fixed documents in place of the ones that were read.
#pragma once

#include <string>

namespace kc2::tool {

// Prints a unified diff of two texts that have the same number of lines.
void printDiff(const std::string& path, const std::string& before, const std::string& after);

struct FixLimits {
    std::string rootDirectory = {};  // What is outside of it is not fixed; empty: there is none.
    bool isForced = false;           // Read-only files and those with other links are fixed, too.
};

// Why the file cannot be fixed: it is not a regular file, or the limits do not allow it; empty when
// it can.
std::string whyNotFixable(const std::string& path, const FixLimits& limits);

// Writes `after` beside the file and renames it, with the file's mode and extended attributes.
// Returns what is wrong; empty when nothing is. A file whose text is no longer `before` is left as
// it is, and so is one whose attributes cannot be kept, unless that is forced.
std::string replaceFile(const std::string& path, const std::string& before,
                        const std::string& after, bool isForced);

}  // namespace kc2::tool
