// kcodec2_spec: shows and checks what a device's system spec documents make of its video subsystem.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "commands/Commands.h"
#include "commands/HelpText.h"
#include "platform/Version.h"

namespace {

using namespace kc2::tool;  // NOLINT(google-build-using-namespace): this is the tool.

constexpr char kDescription[] =
        "Shows what a device's system spec documents make of its video subsystem.\n"
        "\n"
        "A load reads two documents: the system spec document that the property "
        "vendor.media.target_variant selects, then the private configuration file or, when there "
        "is none, the chip's built-in document. A name that the first one sets keeps its value.";

constexpr char kExitCodes[] =
        "Exit codes: 0 fine; 1 check found errors (with --werror: or warnings), log told an error, "
        "diff found differences, or formats or explain knows no such name; 2 wrong usage, a FILE "
        "that cannot be read or mended, or output that cannot be written.";

int run(int argc, char** argv) {
    CLI::App app(kDescription, "kcodec2_spec");
    app.footer(kExitCodes);
    app.set_version_flag("--version", "kcodec2_spec " KC2_VERSION);
    app.require_subcommand(0, 1);  // With none, a stray word is named rather than a command missed.
    int exitCode = kExitOk;

    addShowCommand(&app, &exitCode);
    addCheckCommand(&app, &exitCode);
    addLogCommand(&app, &exitCode);
    addDiffCommand(&app, &exitCode);
    addReportCommand(&app, &exitCode);
    addDefaultsCommand(&app, &exitCode);
    addFormatsCommand(&app, &exitCode);
    addExplainCommand(&app, &exitCode);
    addSchemaCommand(&app, &exitCode);
    addManualCommand(&app, &exitCode);
    addCompletionCommand(&app, &exitCode);

    wrapHelp(&app);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A subcommand");
        }
    } catch (const CLI::ParseError& error) {
        return explainUsage(app, error);
    }
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    const int exitCode = run(argc, argv);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        // A report that a full disk cut off must not pass for a whole one.
        std::fprintf(stderr, "kcodec2_spec: the output cannot be written: %s\n",
                     std::strerror(errno));
        return kExitUsage;
    }
    return exitCode;
}
