// The tool's commands. Each prints to standard output and returns the exit code.
#pragma once

#include <string>
#include <vector>

#include "base/ExitCodes.h"

namespace CLI {
class App;
}

namespace kc2::tool {

// Ends the help of commands that only fail on wrong usage.
inline constexpr char kUsualExitCodes[] =
        "Exit codes: 0 fine; 2 wrong usage, or output that cannot be written.";

inline constexpr char kExitCodesWithFile[] =
        "Exit codes: 0 fine; 2 wrong usage, a FILE that cannot be read, or output that cannot be "
        "written.";

// Each adds its command, which sets the exit code when it is the one that is run.
void addShowCommand(CLI::App* app, int* exitCode);
void addCheckCommand(CLI::App* app, int* exitCode);
void addLogCommand(CLI::App* app, int* exitCode);
void addDiffCommand(CLI::App* app, int* exitCode);
void addReportCommand(CLI::App* app, int* exitCode);
void addDefaultsCommand(CLI::App* app, int* exitCode);
void addFormatsCommand(CLI::App* app, int* exitCode);
void addExplainCommand(CLI::App* app, int* exitCode);
void addSchemaCommand(CLI::App* app, int* exitCode);
void addLspCommand(CLI::App* app, int* exitCode);
// These are about all commands, including those that are added later.
void addHelpCommand(CLI::App* app, int* exitCode);
void addManualCommand(CLI::App* app, int* exitCode);
void addCompletionCommand(CLI::App* app, int* exitCode);

// Whether it is the name or the value of a pixel format.
bool isFormat(const std::string& wanted);

// Prints the table of pixel formats, or the row of one given by name or value.
int printFormats(const std::string& wanted);

// Adds --settings, whose files add to the settings catalogue; `files` must outlive the parse.
void addSettingsOption(CLI::App* command, std::vector<std::string>* files);

}  // namespace kc2::tool
