// kcodec2_spec: shows and checks what a device's system spec documents make of its video subsystem.

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Commands.h"
#include "DeviceOptions.h"
#include "base/Version.h"
#include "targetspec/DefaultDocuments.h"

namespace {

using namespace kc2::tool;  // NOLINT(google-build-using-namespace): this is the tool.

constexpr char kDescription[] =
        "Shows what a device's system spec documents make of its video subsystem.\n"
        "\n"
        "A load reads two documents: the system spec document that the property\n"
        "vendor.media.target_variant selects, then the private configuration file or, when\n"
        "there is none, the chip's built-in document. A name that the first one sets keeps its\n"
        "value.";

constexpr char kExitCodes[] =
        "Exit codes: 0 fine; 1 check found errors (with --werror: or warnings), or formats knows\n"
        "no such format; 2 wrong usage, a FILE that cannot be read, or output that cannot be\n"
        "written.";

constexpr char kShowExample[] =
        "A document that the device rejects is shown as rejected, and the exit code is 0: it is\n"
        "for check to fail.\n"
        "\n"
        "Example: kcodec2_spec show --rootdir examples/device \\\n"
        "                 --property vendor.media.target_variant=_orvelle";

constexpr char kCheckExamples[] =
        "Without FILE it does the whole load of the device and checks across its documents.\n"
        "\n"
        "Examples: kcodec2_spec check video_system_specs.json\n"
        "          kcodec2_spec check --rootdir examples/device \\\n"
        "                 --property vendor.media.target_variant=_orvelle";

int run(int argc, char** argv) {
    CLI::App app(kDescription, "kcodec2_spec");
    app.footer(kExitCodes);
    app.set_version_flag("--version", KC2_VERSION);
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

    std::vector<std::string> files;
    CheckOptions checkOptions;
    CLI::App* const checkCommand = app.add_subcommand(
            "check", "Report every mistake in documents, or in the whole load of a device");
    checkCommand->footer(std::string(kCheckExamples) + "\n\nChecks, by the id in brackets:\n" +
                         ruleTable() + "\n" + kExitCodes);
    CLI::Option* const filesOption =
            checkCommand->add_option("FILE", files, "Documents to check, each by itself");
    checkCommand
            ->add_option_function<std::string>(
                    "--format",
                    [&](const std::string& name) { checkOptions.asJson = name == "json"; },
                    "How to report: text (the default) or json, for scripts and editors")
            ->check(CLI::IsMember({"text", "json"}).description(""))
            ->type_name("text|json");
    checkCommand->add_flag("--werror", checkOptions.warningsAreErrors,
                           "Exit with 1 on warnings, too");
    checkCommand->add_option("--disable", checkOptions.disabledIds, "Leave a check out; repeatable")
            ->type_name("ID")
            ->allow_extra_args(false)
            ->check(CLI::Validator([](const std::string& id) { return whyNotDisabled(id); }, ""));
    addDeviceOptions(*checkCommand, &device);
    for (CLI::Option* const option : checkCommand->get_options(
                 [](const CLI::Option* option) { return option->get_group() == kDeviceGroup; })) {
        filesOption->excludes(option);  // Documents are files of this machine.
    }
    checkCommand->callback([&] {
        applyDeviceOptions(device);
        muteLog();
        exitCode = files.empty() ? checkDevice(checkOptions) : checkFiles(files, checkOptions);
    });

    int number = 3;
    std::string variant;
    CLI::App* const defaultsCommand =
            app.add_subcommand("defaults", "Print a built-in document, to start a new one from");
    CLI::Option* const numberOption =
            defaultsCommand
                    ->add_option("NUMBER", number,
                                 "1 (chips brel, mirt), 2 (orvelle) or 3 (all others; the default)")
                    ->check(CLI::Range(1, 3));
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

    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A subcommand");
        }
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitOk : kExitUsage;
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
