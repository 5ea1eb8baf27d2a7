// The check command's options.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "check/Check.h"
#include "check/ChecksPage.h"
#include "commands/Commands.h"

namespace kc2::tool {

namespace {

constexpr char kCheckFooter[] =
        "Without FILE, checks everything the device would load.\n"
        "\n"
        "Examples:\n"
        "  kcodec2_spec check video_system_specs.json\n"
        "  kcodec2_spec check --rootdir examples/device --variant _orvelle\n"
        "\n"
        "Each finding ends with the id of its check in brackets; --list lists all ids, in groups. "
        "Of several options for one check, the last one wins. What makes a device reject a "
        "document is always an error. In a document, a comment \"// kcodec2_spec: allow ID\" at "
        "the end of the line, or on the line above, suppresses the finding.\n"
        "\n"
        "Exit codes: 0 fine; 1 found errors (with --werror: or warnings); 2 wrong usage, a FILE "
        "that cannot be read or fixed, or output that cannot be written.";

struct CheckArguments {
    std::vector<std::string> files;
    std::vector<std::string> settingsFiles;
    CheckOptions check;
    DeviceOptions device;
    bool isListWanted = false;
    bool asPage = false;
    bool isFixWanted = false;
    bool isDryRun = false;
};

void addLevelOption(CLI::App* command, CheckOptions* options, const char* name,
                    std::optional<Severity> severity, const char* description) {
    command->add_option_function<std::string>(
                   name,
                   [options, severity, name](const std::string& id) {
                       const std::string wrong = options->levels.set(id, severity);
                       if (!wrong.empty()) {
                           throw CLI::ValidationError(name, wrong);
                       }
                   },
                   description)
            ->type_name("ID")
            ->allow_extra_args(false)
            ->trigger_on_parse();  // In the order of the command line: the last one wins.
}

void addReportOptions(CLI::App* command, CheckArguments* arguments) {
    CheckOptions& options = arguments->check;
    const std::string usualGroup = command->option_defaults()->get_group();
    command->option_defaults()->group("The report");
    addChoice<ReportFormat>(
            command, "--format",
            {{"text", ReportFormat::Text},
             {"json", ReportFormat::Json},
             {"sarif", ReportFormat::Sarif}},
            [&options](ReportFormat format) { options.format = format; },
            "Format of the report: text (the default), json for scripts and editors, or sarif "
            "(2.1.0) for code scanners");
    addLevelOption(command, &options, "--error", Severity::Error,
                   "Report a check, or a group of checks, as an error; repeatable");
    addLevelOption(command, &options, "--warning", Severity::Warning,
                   "Report it as a warning; repeatable");
    addLevelOption(command, &options, "--note", Severity::Note, "Report it as a note; repeatable");
    addLevelOption(command, &options, "--disable", std::nullopt, "Do not report it; repeatable");
    addChoice<Severity>(
            command, "--min-severity",
            {{"note", Severity::Note}, {"warning", Severity::Warning}, {"error", Severity::Error}},
            [&options](Severity severity) { options.levels.setLeast(severity); },
            "Report only findings of this severity and above");
    command->add_option("--max-findings", options.output.mostFindings,
                        "Print at most N findings, the most severe ones; 0 prints all. Default: "
                        "all, and in text 100 for each document")
            ->check(CLI::Validator(whyNotCount, ""))
            ->type_name("N");
    command->add_flag("--werror", options.warningsAreErrors, "Exit with 1 on warnings, too");
    CLI::Option* const list =
            command->add_flag("--list", arguments->isListWanted,
                              "List the checks, with the severities that the other options set");
    command->add_flag("--markdown", arguments->asPage,
                      "With --list: the page of all checks, with their meanings and examples")
            ->needs(list);
    command->option_defaults()->group(usualGroup);
}

void addFixOptions(CLI::App* command, CheckArguments* arguments) {
    CLI::Option* const fix = command->add_flag(
            "--fix", arguments->isFixWanted,
            "Fix what has exactly one safe fix: a missing or extra comma, a byte order mark, a "
            "leading plus, a misspelt known name, missing or wrong quotes. Needs FILE or "
            "--rootdir, and changes nothing outside of it");
    command->add_flag("--dry-run", arguments->isDryRun,
                      "With --fix: print the changes as a diff, and write nothing")
            ->needs(fix);
    command->add_flag("--force", arguments->check.fixLimits.isForced,
                      "With --fix: also change a read-only file, one with more than one hard link, "
                      "and one whose extended attributes cannot be kept")
            ->needs(fix);
}

// Sets what --fix does.
void prepareFix(CheckArguments* arguments) {
    if (!arguments->isFixWanted) {
        return;
    }
    const std::vector<std::string>& files = arguments->files;
    if (std::find(files.begin(), files.end(), "-") != files.end()) {
        throw usageError("--fix cannot change standard input");
    }
    if (files.empty() && arguments->device.rootDirectory.empty()) {
        throw usageError("--fix needs FILE or --rootdir");
    }
    arguments->check.fix = arguments->isDryRun ? FixMode::Show : FixMode::Write;
    arguments->check.fixLimits.rootDirectory = arguments->device.rootDirectory;
}

int runCheck(CheckArguments* arguments) {
    if (arguments->isListWanted) {
        writeOut(arguments->asPage ? checksPage() : checksList(arguments->check.levels));
        return kExitOk;
    }
    prepareFix(arguments);
    const std::string wrong =
            arguments->files.empty() ? whyNoDevice(arguments->device) : std::string();
    if (!wrong.empty()) {
        throw usageError(fmt::format("FILE is missing, or {}", wrong));
    }
    arguments->check.known =
            std::make_shared<KnownSettings>(catalogueWith(arguments->settingsFiles));
    applyDeviceOptions(arguments->device);
    muteLog();
    if (arguments->device.isEachVariant) {
        return checkEachVariant(arguments->check);
    }
    return arguments->files.empty() ? checkDevice(arguments->check)
                                    : checkFiles(arguments->files, arguments->check);
}

}  // namespace

void addCheckCommand(CLI::App* app, int* exitCode) {
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App* const command = app->add_subcommand(
            "check", "Report every mistake in documents, or in what a device loads");
    command->footer(kCheckFooter);
    CLI::Option* const files = command->add_option(
            "FILE", arguments->files, "Documents to check, each on its own; - is standard input");
    addSettingsOption(command, &arguments->settingsFiles);
    addReportOptions(command, arguments.get());
    addFixOptions(command, arguments.get());
    addDeviceOptions(*command, &arguments->device);
    addVariantsOption(*command, &arguments->device);
    for (CLI::Option* const option : command->get_options(
                 [](const CLI::Option* option) { return option->get_group() == kDeviceGroup; })) {
        files->excludes(option);  // FILE is a file of this machine.
    }
    command->callback([arguments, exitCode] { *exitCode = runCheck(arguments.get()); });
}

}  // namespace kc2::tool
