// Help and messages about wrong usage, wrapped for the terminal.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class ParseError;
}  // namespace CLI

namespace kc2::tool {

// `text` with its lines wrapped at `width` columns. The rest of a line is indented like the text
// after its last gap of two blanks or more, which is the description of an option, or like the line
// itself.
std::string wrapped(const std::string& text, size_t width);

// What --help shows after an option's name: " DIR", " FILE REQUIRED", or " ..." for an argument
// that may be repeated.
std::string formOf(const CLI::Option& option);

// Sets the formatter of a command and of its subcommands to one that wraps for the terminal, and
// makes flags refuse a value.
void prepareHelp(CLI::App* app);

// The names of the commands, in the order of the help.
std::vector<std::string> commandNames(const CLI::App& app);

// Prints on standard error what is wrong with a command line, and what may have been meant; prints
// the help or the version when that is what was asked for. Returns the exit code.
int explainUsage(const CLI::App& app, const CLI::ParseError& error);

}  // namespace kc2::tool
