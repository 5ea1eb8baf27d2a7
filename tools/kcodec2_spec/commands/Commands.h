// The tool's commands. Each prints to standard output and returns the exit code.
#pragma once

#include <string>
#include <vector>

#include "base/ExitCodes.h"
#include "catalogue/Catalogue.h"

namespace CLI {
class App;
}

namespace kc2::tool {

// Ends the help of commands that only fail on wrong usage.
inline constexpr char kUsualExitCodes[] =
        "Exit codes: 0 fine; 2 wrong usage, or output that cannot be written.";

// Each adds its command. One that has `exitCode` sets it when it is run; the others end with
// kExitOk, or throw.
void addShowCommand(CLI::App* app);
void addCheckCommand(CLI::App* app, int* exitCode);
void addLogCommand(CLI::App* app, int* exitCode);
void addDiffCommand(CLI::App* app, int* exitCode);
void addReportCommand(CLI::App* app);
void addDefaultsCommand(CLI::App* app);
void addFormatsCommand(CLI::App* app, int* exitCode);
void addExplainCommand(CLI::App* app, int* exitCode);
void addSchemaCommand(CLI::App* app);
void addLspCommand(CLI::App* app, int* exitCode);
// These are about all commands, including those that are added later.
void addHelpCommand(CLI::App* app);
void addManualCommand(CLI::App* app);
void addCompletionCommand(CLI::App* app);

// Prints the table of pixel formats, or the row of one given by name or value. Returns false where
// there is no such format.
bool printFormats(const std::string& wanted);

// Adds --settings, whose files add to the settings catalogue; `files` must outlive the parse.
void addSettingsOption(CLI::App* command, std::vector<std::string>* files);

// The catalogue with the settings of these files. What is wrong with one is reported on standard
// error; then this throws, and the tool ends.
Catalogue catalogueWith(const std::vector<std::string>& settingsFiles);

}  // namespace kc2::tool
