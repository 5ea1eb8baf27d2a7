// The tool's help and its words on wrong usage, fit for any terminal.
#pragma once

#include <cstddef>
#include <string>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace kc2::tool {

// `text` with its lines wrapped at `width` columns. The rest of a line is indented like the text
// behind its last gap of two blanks or more, which is the description of an option, or like the
// line itself.
std::string wrapped(const std::string& text, size_t width);

// Makes the help of a command and of those below it as wide as the terminal.
void wrapHelp(CLI::App* app);

// Says on standard error what is wrong with a command line, and what may have been meant; prints
// the help or version when that is what was asked for. Returns the exit code.
int explainUsage(const CLI::App& app, const CLI::ParseError& error);

}  // namespace kc2::tool
