// kcodec2_spec: shows and checks what a device's system spec documents make of its video subsystem.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "Commands.h"
#include "DeviceOptions.h"
#include "HelpText.h"
#include "check/CheckCommand.h"
#include "log/LogCommand.h"
#include "platform/Version.h"
#include "report/ReportCommand.h"
#include "targetspec/reading/BuiltInDocuments.h"

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
        "that cannot be read, or output that cannot be "
        "written.";

constexpr char kShowExample[] =
        "A document that the device rejects is shown as rejected, and the exit code is 0: it is "
        "for check to fail.\n"
        "\n"
        "Example:\n"
        "  kcodec2_spec show --rootdir examples/device --property "
        "vendor.media.target_variant=_orvelle";

int run(int argc, char** argv) {
    CLI::App app(kDescription, "kcodec2_spec");
    app.footer(kExitCodes);
    app.set_version_flag("--version", "kcodec2_spec " KC2_VERSION);
    app.require_subcommand(0, 1);  // With none, a stray word is named rather than a command missed.
    int exitCode = kExitOk;

    DeviceOptions device;
    bool asJson = false;
    CLI::App* const showCommand = app.add_subcommand(
            "show", "Print the store as a codec component sees it, and where each value came from");
    showCommand->footer(kShowExample);
    addDeviceOptions(*showCommand, &device);
    addLogOption(*showCommand, &device);
    showCommand->add_flag("--json", asJson, "Print JSON, for scripts");
    showCommand->callback([&] {
        applyDeviceOptions(device);
        exitCode = show(asJson);
    });

    addCheckCommand(&app, &exitCode);
    addLogCommand(&app, &exitCode);
    addDiffCommand(&app, &exitCode);
    addReportCommand(&app, &exitCode);

    int number = numberOfDefault();
    std::string variant;
    CLI::App* const defaultsCommand =
            app.add_subcommand("defaults", "Print a built-in document, to start a new one from");
    CLI::Option* const numberOption =
            defaultsCommand->add_option("NUMBER", number, "Which one: " + chipsOfDefaults())
                    ->check(CLI::Validator(whyNotDefault, ""));
    defaultsCommand
            ->add_option("--variant", variant,
                         "Instead of a number: the target variant whose chip it is for")
            ->type_name("NAME")
            ->excludes(numberOption);
    defaultsCommand->callback([&] {
        exitCode = printDefault(variant.empty() ? number : kc2::chipDocumentFor(variant).number);
    });

    std::string format;
    CLI::App* const formatsCommand = app.add_subcommand(
            "formats", "Print the pixel formats: name, value, colour-format number, planes");
    formatsCommand->add_option("FORMAT", format,
                               "Only this one: its name, or its value in hexadecimal (0x...) or "
                               "decimal, as a log line shows it");
    formatsCommand->callback([&] { exitCode = printFormats(format); });

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
