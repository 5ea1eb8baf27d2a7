// The tool's commands. Each prints to standard output and returns the exit code.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kc2::tool {

// Exit codes, the same for every command.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFindings = 1;  // check: errors. diff: differences. formats: no such one.
inline constexpr int kExitUsage = 2;     // Wrong usage, a file not read, output not written.

// Loads the store as a component would and prints it.
int show(bool asJson);

// Adds the command that compares two loads; it sets the exit code when it is asked for.
void addDiffCommand(CLI::App* app, int* exitCode);

// Prints a built-in document, to start a new one from.
int printDefault(int number);

// The one of a chip that has no built-in document for itself.
int numberOfDefault();
// Their numbers with their chips, for the help.
std::string chipsOfDefaults();
// Why a word is not the number of one; empty when it is.
std::string whyNotDefault(const std::string& word);

// Prints the table of pixel formats, or the row of one given by name or value.
int printFormats(const std::string& wanted);

// Adds the command that tells what a name or a log text is.
void addExplainCommand(CLI::App* app, int* exitCode);

// Adds the command that prints a JSON Schema of the documents.
void addSchemaCommand(CLI::App* app, int* exitCode);

// Add the commands that print the manual page and a shell's completions, of all commands that
// `app` has when they are asked for.
void addManualCommand(CLI::App* app, int* exitCode);
void addCompletionCommand(CLI::App* app, int* exitCode);

// Adds --settings, whose files add to the settings catalogue; `files` must outlive the parse.
void addSettingsOption(CLI::App* command, std::vector<std::string>* files);

}  // namespace kc2::tool
