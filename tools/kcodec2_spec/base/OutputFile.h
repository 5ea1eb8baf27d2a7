// Writes a file: afterwards it is complete, or as it was before.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace kc2::tool {

// Writes `text` beside `path` and renames it. What is not a regular file (a pipe, /dev/stdout) is
// written to. Returns what is wrong; empty when nothing is.
std::string writeOutputFile(const std::string& path, const std::string& text);

// Writes `text` into a new file beside `path`, and renames it to `path`, which must not be a link.
// finish(descriptor) gives the new file its mode and the like, and returns false with errno set
// when it cannot; whyNot() runs last and returns a reason not to rename it. Returns what is wrong.
std::string replaceWhole(const std::filesystem::path& path, const std::string& text,
                         const std::function<bool(int descriptor)>& finish,
                         const std::function<std::string()>& whyNot);

}  // namespace kc2::tool
