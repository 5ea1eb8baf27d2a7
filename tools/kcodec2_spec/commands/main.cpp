// kcodec2_spec: shows and checks the system spec documents that describe a device's video
// subsystem.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/OptionValues.h"
#include "base/Print.h"
#include "commands/Commands.h"
#include "commands/HelpText.h"
#include "platform/Version.h"

namespace {

using namespace kc2::tool;  // NOLINT(google-build-using-namespace): this is the tool.

constexpr char kDescription[] =
        "Shows and checks the documents that describe a device's video subsystem.\n"
        "\n"
        "A load reads two documents: the system spec document that the property "
        "vendor.media.target_variant selects, then the private configuration file or, when there "
        "is none, the chip's built-in document. A name that the first one sets keeps its value.";

constexpr char kExitCodes[] =
        "Exit codes: 0 fine; 1 check found errors (with --werror: or warnings), log found an "
        "error, diff found differences, or formats or explain does not know the name; 2 wrong "
        "usage, a FILE that cannot be read or fixed, or output that cannot be written.";

int run(int argc, char** argv) {
    CLI::App app(kDescription, "kcodec2_spec");
    app.footer(kExitCodes);
    app.set_version_flag("--version", "kcodec2_spec " KC2_VERSION);
    app.require_subcommand(0, 1);  // With none, the message is about an unknown word, if any.
    int exitCode = kExitOk;

    addShowCommand(&app);
    addCheckCommand(&app, &exitCode);
    addLogCommand(&app, &exitCode);
    addDiffCommand(&app, &exitCode);
    addReportCommand(&app);
    addDefaultsCommand(&app);
    addFormatsCommand(&app, &exitCode);
    addExplainCommand(&app, &exitCode);
    addSchemaCommand(&app);
    addLspCommand(&app, &exitCode);
    addHelpCommand(&app);
    addManualCommand(&app);
    addCompletionCommand(&app);

    prepareHelp(&app);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            throw usageError(
                    fmt::format("a command is missing: {}", fmt::join(commandNames(app), ", ")));
        }
    } catch (const CLI::RuntimeError& error) {
        return error.get_exit_code();  // What is wrong has been reported.
    } catch (const CLI::ParseError& error) {
        return explainUsage(app, error);
    }
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    const int exitCode = run(argc, argv);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        // A report that a full disk cut off must not look complete.
        printError("the output cannot be written: {}", std::strerror(errno));
        return kExitUsage;
    }
    return exitCode;
}
