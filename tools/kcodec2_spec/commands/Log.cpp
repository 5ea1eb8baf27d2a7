// The options of the command "log".

#include "log/Log.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "base/DeviceOptions.h"
#include "base/ExitCodes.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "log/LogLines.h"

namespace kc2::tool {

namespace {

constexpr char kLogFooter[] =
        "Reads what logcat prints or an IDE copies, in any format, in UTF-8 or UTF-16, and shows "
        "for each load of each process, first in one line and then in detail: what was rejected or "
        "skipped, which calls of components were wrong, and what to do. What the log does not "
        "prove is reported as not proved, with the command that settles it. With --rootdir it "
        "compares the load with the documents that were pulled from the device, and names the "
        "place of each line in them; the variant is then the log's own unless --variant sets it.\n"
        "\n"
        "Exit codes: 0 no error found; 1 an error found; 2 wrong usage, or a FILE that cannot be "
        "read as a log.\n"
        "\n"
        "Examples:\n"
        "  adb logcat -d | kcodec2_spec log\n"
        "  kcodec2_spec log logcat.txt --rootdir pulled";

struct LogArguments {
    std::string file = "-";
    bool isTable = false;
    DeviceOptions device;
    LogOptions options;
};

}  // namespace

void addLogCommand(CLI::App* app, int* exitCode) {
    const auto arguments = std::make_shared<LogArguments>();
    CLI::App* const command = app->add_subcommand(
            "log", "Show what a device's log proves about its loads, and what to do");
    command->footer(kLogFooter);
    command->add_option("FILE", arguments->file, "The log; - is standard input, the default");
    command->add_flag("--json", arguments->options.asJson, "Print JSON, for scripts");
    command->add_flag("--all", arguments->options.isAll,
                      "Print what is in order, too: the dump, every outcome, every place");
    command->add_flag("--lines", arguments->isTable,
                      "Print every line that the library writes, as a table, and what it means");
    addDeviceOptions(*command, &arguments->device);
    command->callback([arguments, exitCode] {
        if (arguments->isTable) {
            printOut("{}", logLineTable());
            return;
        }
        const DeviceOptions& device = arguments->device;
        if (const std::string why = whyUnused(device); !why.empty()) {
            throw usageError(why);
        }
        applyDeviceOptions(device);
        muteLog();
        arguments->options.hasTree = device.hasFiles();
        arguments->options.isVariantGiven = device.hasVariant();
        *exitCode = describeLog(arguments->file, arguments->options);
    });
}

}  // namespace kc2::tool
