// kcodec2_spec report: one page about an image, for review.

#include <CLI/CLI.hpp>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/OptionValues.h"
#include "base/OutputFile.h"
#include "base/Print.h"
#include "catalogue/Catalogue.h"
#include "check/Checks.h"
#include "check/VariantReports.h"
#include "commands/Commands.h"
#include "device/DevicePaths.h"
#include "report/Page.h"
#include "store/Load.h"
#include "store/TreeFiles.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kReportFooter[] =
        "The page shows what each variant of the image loads, side by side, with the differences "
        "marked and the document that set each value; the bit-rate tables as charts; and what "
        "check finds. It is a single file that loads no other. --variant adds a column for a "
        "variant, even if the image has no document for it.\n"
        "\n"
        "Example:\n"
        "  kcodec2_spec report --rootdir examples/device --output build/report.html\n"
        "\n"
        "Exit codes: 0 the page is written, whatever check finds; 2 wrong usage, a FILE that "
        "cannot be read, or output that cannot be written.";

struct ReportArguments {
    DeviceOptions device;
    std::vector<std::string> settingsFiles;
    std::string output;
};

// No variant comes first: the others are compared with it.
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

void report(const ReportArguments& arguments) {
    Catalogue catalogue = catalogueWith(arguments.settingsFiles);
    applyDeviceOptions(arguments.device);
    muteLog();
    const std::string& root = arguments.device.rootDirectory;
    PageContent content = {root.empty() ? "this device" : root,
                           checkVariants(variantsToShow(), Levels(), KnownSettings(catalogue)),
                           std::move(catalogue)};
    content.columns = columnsOf(content.checked, &content.columnOf);
    const std::string page = pageOf(content);
    if (arguments.output == "-") {
        return writeOut(page);
    }
    const std::string wrong = writeOutputFile(arguments.output, page);
    if (!wrong.empty()) {
        printError("{} cannot be written: {}", escaped(arguments.output), escaped(wrong));
        throw CLI::RuntimeError(kExitUsage);
    }
}

}  // namespace

void addReportCommand(CLI::App* app) {
    const auto arguments = std::make_shared<ReportArguments>();
    CLI::App* const command = app->add_subcommand(
            "report", "Write an HTML page about an image: its variants side by side, and findings");
    command->footer(kReportFooter);
    command->add_option("--output", arguments->output, "The file to write; - is standard output")
            ->required()
            ->type_name("FILE.html");
    addSettingsOption(command, &arguments->settingsFiles);
    addDeviceOptions(*command, &arguments->device);
    command->callback([arguments] {
        requireDevice(arguments->device);
        report(*arguments);
    });
}

}  // namespace kc2::tool
