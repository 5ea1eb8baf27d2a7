// The report command's options.
#pragma once

namespace CLI {
class App;
}

namespace kc2::tool {

// Adds the command; it sets the exit code when it is the one that is asked for.
void addReportCommand(CLI::App* app, int* exitCode);

}  // namespace kc2::tool
