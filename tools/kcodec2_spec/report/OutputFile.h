// A file that a command writes: it is there whole, or as it was before.
#pragma once

#include <string>

namespace kc2::tool {

// Writes `text` beside `path` and renames it. What is not a regular file (a pipe, /dev/stdout) is
// written to. Returns what is wrong; empty when nothing is.
std::string writeOutputFile(const std::string& path, const std::string& text);

}  // namespace kc2::tool
