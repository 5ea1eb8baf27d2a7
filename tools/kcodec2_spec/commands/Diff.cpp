// kcodec2_spec diff: what differs for a codec component between two loads.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "catalogue/Catalogue.h"
#include "commands/Commands.h"
#include "commands/DiffOutput.h"
#include "commands/DiffSide.h"
#include "store/Answers.h"
#include "store/SnapshotDiff.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kDiffFooter[] =
        "A and B are documents, or root directories of a device's file system. A document is "
        "loaded as the system spec document of a device that has no other file, so the built-in "
        "document of the chip follows it; the variant names the chip. /dev/null is no document. "
        "With A alone, one device is compared under two variants.\n"
        "\n"
        "Only what a codec component sees is compared: comments, the order of members, and values "
        "that another one overrides make no difference. What is stored differently although every "
        "query returns the same is listed as such.\n"
        "\n"
        "Examples:\n"
        "  kcodec2_spec diff old/video_system_specs.json new/video_system_specs.json\n"
        "  kcodec2_spec diff examples/device --variant-a _orvelle --variant-b _mirt\n"
        "\n"
        "Exit codes: 0 no difference, and always with --git; 1 differences; 2 wrong usage, a "
        "document that cannot be read, two documents that a device rejects, or output that cannot "
        "be written.";

using PrintDiff = void (*)(const DiffReport& report);

struct DiffArguments {
    Side a;
    Side b;
    std::vector<std::string> git;
    std::vector<std::string> settingsFiles;
    PrintDiff print = printDiffText;
};

// Returns false where there is nothing to compare: a device ignores both documents.
bool reportRejected(const Loaded& a, const Loaded& b) {
    if (a.isRejected && b.isRejected && !a.isTree && !b.isTree) {
        printError(
                "a device rejects both documents, so there is nothing to compare; "
                "kcodec2_spec check shows why:\n  {}\n  {}",
                escaped(a.title), escaped(b.title));
        return false;
    }
    for (const Loaded* const side : {&a, &b}) {
        if (side->isRejected) {
            printError(
                    "warning: the device ignores the system spec document of {}, because it is "
                    "rejected; kcodec2_spec check shows why",
                    escaped(side->title));
        }
    }
    return true;
}

int diff(const DiffArguments& arguments) {
    const std::optional<Catalogue> catalogue = loadCatalogue(arguments.settingsFiles);
    muteLog();
    const std::optional<Loaded> before = loadSide(arguments.a);
    const std::optional<Loaded> after = loadSide(arguments.b);
    if (!catalogue || !before || !after || !reportRejected(*before, *after)) {
        return kExitUsage;
    }
    const DiffReport report = {*before, *after,
                               askBoth(*before->store, *after->store,
                                       differencesOf(before->sections, after->sections)),
                               *catalogue};
    if (report.differences.isTableTooLong) {
        printError(
                "warning: the bit-rate tables are too long to compare what they return for each "
                "value; their rows are compared");
    }
    arguments.print(report);
    return report.differences.seen.empty() && report.rejectedDocument() == nullptr ? kExitOk
                                                                                   : kExitFindings;
}

// Where the two versions are in what git passes: PATH OLD NEW, as docs/diff.md has them for git
// difftool, or for an external diff driver PATH OLD OLD-HEX OLD-MODE NEW NEW-HEX NEW-MODE, and for
// a renamed file its new path and a message.
struct GitForm {
    size_t arguments;
    size_t newFile;
    size_t newPath;
};
constexpr GitForm kGitForms[] = {{3, 2, 0}, {7, 4, 0}, {9, 4, 7}};

// Git ends at the first file for which its program returns another code than 0, and the other files
// would not be shown.
int diffForGit(DiffArguments arguments) {
    const std::vector<std::string>& git = arguments.git;
    if (git.size() == 1) {
        printOut("{} is not merged\n", escaped(git.front()));
        return kExitOk;
    }
    const auto form = std::find_if(std::begin(kGitForms), std::end(kGitForms),
                                   [&](const GitForm& one) { return one.arguments == git.size(); });
    if (form == std::end(kGitForms)) {
        throw usageError(
                "--git needs the arguments that git passes to an external diff driver, or "
                "PATH OLD NEW");
    }
    const auto use = [](const char* prefix, const std::string& path, const std::string& file,
                        Side* side) {
        side->path = file;
        side->title = file == kNoDocument ? file : fmt::format("{}/{}", prefix, path);
        side->gitPath = path;
    };
    use("a", git[0], git[1], &arguments.a);
    use("b", git[form->newPath], git[form->newFile], &arguments.b);
    diff(arguments);
    writeOut("\n");  // The next file follows.
    return kExitOk;
}

int runDiff(DiffArguments arguments) {
    if (!arguments.git.empty()) {
        return diffForGit(std::move(arguments));
    }
    if (arguments.a.path.empty()) {
        throw CLI::RequiredError("A");
    }
    if (arguments.b.path.empty()) {
        arguments.b.path = arguments.a.path;
    }
    return diff(arguments);
}

void addFormatOptions(CLI::App* command, DiffArguments* arguments) {
    CLI::Option* const format = addChoice<PrintDiff>(
            command, "--format",
            {{"text", printDiffText}, {"json", printDiffJson}, {"markdown", printDiffMarkdown}},
            [arguments](PrintDiff chosen) { arguments->print = chosen; },
            "Format of the report: text (the default), json for scripts, or markdown for a comment "
            "on a change");
    command->add_flag_callback(
                   "--json", [arguments] { arguments->print = printDiffJson; },
                   "The same as --format json")
            ->excludes(format);
}

}  // namespace

void addDiffCommand(CLI::App* app, int* exitCode) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App* const command = app->add_subcommand(
            "diff", "Show what differs for a codec component between two loads");
    command->footer(kDiffFooter);
    CLI::Option* const a =
            command->add_option("A", arguments->a.path,
                                "A document, or the root directory of a device's file system")
                    ->check(CLI::Validator(CLI::ExistingPath).description(""));
    command->add_option("B", arguments->b.path, "What to compare it with (default: A)")
            ->check(CLI::Validator(CLI::ExistingPath).description(""));
    constexpr int kMostGitArguments = 9;
    command->add_option("--git", arguments->git,
                        "Compare what git passes: PATH OLD NEW, or the arguments of an external "
                        "diff driver; PATH names the chip")
            ->type_name("ARGUMENT...")
            ->expected(1, kMostGitArguments)
            ->excludes(a);
    addFormatOptions(command, arguments.get());
    addSettingsOption(command, &arguments->settingsFiles);
    addSideOptions(*command, "-a", &arguments->a.device);
    addSideOptions(*command, "-b", &arguments->b.device);
    command->callback([arguments, exitCode] { *exitCode = runDiff(*arguments); });
}

}  // namespace kc2::tool
