// Help and messages about wrong usage, wrapped for the terminal; the options as the help shows
// them.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
class ParseError;
}  // namespace CLI

namespace kc2::tool {

// What --help shows after an option's name: " DIR", " FILE REQUIRED", or " ..." for an argument
// that may be repeated.
std::string formOf(const CLI::Option& option);

// The names of an option: "-h", "--help".
std::vector<std::string> namesOf(const CLI::Option& option);

bool isFlag(const CLI::Option& option);

// The options of a command that --help shows: arguments by their position, or those with names.
std::vector<const CLI::Option*> shownOptions(const CLI::App& command, bool arePositional);

// Sets the formatter of a command and of its subcommands to one that wraps for the terminal, and
// makes flags refuse a value.
void prepareHelp(CLI::App* app);

// The names of the commands, in the order of the help.
std::vector<std::string> commandNames(const CLI::App& app);

// Prints on standard error what is wrong with a command line, and what may have been meant; prints
// the help or the version when that is what was asked for. Returns the exit code.
int explainUsage(const CLI::App& app, const CLI::ParseError& error);

}  // namespace kc2::tool
