// kcodec2_spec report: one page for an image, for those who review it.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/OutputFile.h"
#include "catalogue/Catalogue.h"
#include "check/Levels.h"
#include "check/VariantReports.h"
#include "commands/Commands.h"
#include "device/DevicePaths.h"
#include "report/Page.h"
#include "store/Load.h"
#include "store/StoreSnapshot.h"
#include "store/TreeFiles.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kReportFooter[] =
        "The page has what each variant of the image loads, side by side, with the differences "
        "marked and the document that set each value; the bit-rate tables as steps; and what check "
        "finds. It is one file, and asks for no other. A variant that --property sets is a column, "
        "too, though the image may have no document for it.\n"
        "\n"
        "Example:\n"
        "  kcodec2_spec report --rootdir examples/device --output build/report.html\n"
        "\n"
        "Exit codes: 0 written, whatever the page says; 2 wrong usage, or output that cannot be "
        "written.";

struct ReportArguments {
    DeviceOptions device;
    std::vector<std::string> settingsFiles;
    std::string output;
};

// Without a variant first: what the others differ from.
std::vector<std::string> variantsToShow() {
    const std::string own = readLoad().variant;
    if (!canPlayDevices()) {
        return {own};
    }
    std::set<std::string> named = variantsInTree();
    named.insert(own);
    named.erase(kDefaultVariant);
    std::vector<std::string> variants = {kDefaultVariant};
    variants.insert(variants.end(), named.begin(), named.end());
    return variants;
}

int report(const ReportArguments& arguments) {
    std::optional<Catalogue> catalogue = loadCatalogue(arguments.settingsFiles);
    if (!catalogue) {
        return kExitUsage;
    }
    applyDeviceOptions(arguments.device);
    muteLog();
    const std::string& root = arguments.device.rootDirectory;
    PageContent content = {root.empty() ? "this machine" : root,
                           checkVariants(variantsToShow(), Levels(), KnownSettings(*catalogue)),
                           {},
                           {},
                           std::move(*catalogue)};
    for (size_t i = 0; i < content.checked.variants.size(); ++i) {
        playVariant(content.checked.variants[i]);
        const LoadSteps steps = deviceSteps(content.checked.loads[i]);
        TargetSpec store;
        steps.systemSpec(store);
        steps.overlay(store);
        content.snapshots.push_back(sectionsOf(store, steps));
        content.steps.push_back(stepsOf(&store));
    }
    const std::string page = pageOf(content);
    if (arguments.output == "-") {
        std::fwrite(page.data(), 1, page.size(), stdout);
        return kExitOk;
    }
    const std::string wrong = writeOutputFile(arguments.output, page);
    if (!wrong.empty()) {
        std::fprintf(stderr, "kcodec2_spec: %s cannot be written: %s\n",
                     escaped(arguments.output).c_str(), escaped(wrong).c_str());
    }
    return wrong.empty() ? kExitOk : kExitUsage;
}

}  // namespace

void addReportCommand(CLI::App* app, int* exitCode) {
    const auto arguments = std::make_shared<ReportArguments>();
    CLI::App* const command = app->add_subcommand(
            "report", "Write one page about an image: its variants side by side, and its findings");
    command->footer(kReportFooter);
    command->add_option("--output", arguments->output, "Where the page goes; - prints it")
            ->required()
            ->type_name("FILE.html");
    addSettingsOption(command, &arguments->settingsFiles);
    addDeviceOptions(*command, &arguments->device);
    command->callback([arguments, exitCode] { *exitCode = report(*arguments); });
}

}  // namespace kc2::tool
