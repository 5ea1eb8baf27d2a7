// kcodec2_spec show: the store that TargetSpec::Get() builds, and where each value comes from.

#include <fmt/format.h>
#include <json/value.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/JsonPrinter.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "base/Text.h"
#include "commands/Commands.h"
#include "commands/UnknownVariant.h"
#include "kc2/TargetSpec.h"
#include "store/Load.h"
#include "store/StoreSnapshot.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kShowFooter[] =
        "A document that the device rejects is marked as rejected, and the exit code is still 0: "
        "use check to find errors.\n"
        "\n"
        "Example:\n"
        "  kcodec2_spec show --rootdir examples/device --variant _orvelle";

void printSections(const Load& load, const std::vector<SnapshotSection>& sections) {
    printOut("System spec document  {}\n", escaped(describeSystemSpec(load)));
    printOut("Private overlay       {}\n", escaped(describeOverlay(load)));
    for (const SnapshotSection& section : sections) {
        printOut("\n{} ({}){}\n", section.title, section.entries.size(),
                 section.entries.empty() ? section.whenEmpty : "");
        size_t nameWidth = 0;
        size_t textWidth = 0;
        for (const SnapshotEntry& entry : section.entries) {
            nameWidth = std::max(nameWidth, escaped(entry.name).size());
            textWidth = std::max(textWidth, entry.text.size());
        }
        for (const SnapshotEntry& entry : section.entries) {
            printOut("  {}  {}{}{}\n", padded(escaped(entry.name), nameWidth),
                     padded(entry.text, textWidth), textWidth == 0 ? "" : "  ", entry.origin);
        }
    }
}

void printSectionsJson(const Load& load, const std::vector<SnapshotSection>& sections) {
    Json::Value root;
    root["systemSpec"]["firstPath"] = load.firstPath;
    root["systemSpec"]["path"] =
            load.hasSystemSpec() ? Json::Value(load.systemSpec->path) : Json::Value();
    root["systemSpec"]["isAccepted"] = load.hasSystemSpec() && load.systemSpec->isAccepted;
    root["overlay"]["origin"] = load.overlay->origin;
    root["overlay"]["path"] =
            load.overlay->path.empty() ? Json::Value() : Json::Value(load.overlay->path);
    root["overlay"]["isAccepted"] = load.overlay->isAccepted;
    for (const SnapshotSection& section : sections) {
        const bool isNamed = section.form == SectionForm::Named;
        Json::Value& values = root[section.key];
        values = isNamed ? Json::objectValue : Json::arrayValue;
        for (const SnapshotEntry& entry : section.entries) {
            Json::Value item;
            item["value"] = entry.value;
            item["from"] = entry.origin;
            (isNamed ? values[entry.name] : values.append(Json::Value())) = item;
        }
    }
    print(root);
}

void show(bool asJson) {
    // Before the load that is shown: on a device that one may seed the private file.
    muteLog();
    const Load load = readLoad();
    unmuteLog();
    reportUnknownVariant(load);
    const TargetSpec* const spec =
            load.hasSystemSpec() && load.systemSpec->isPipe ? nullptr : TargetSpec::Get();
    muteLog();
    const LoadSteps steps = deviceSteps(load);
    const std::vector<SnapshotSection> sections =
            spec != nullptr ? sectionsOf(*spec, steps) : loadedSections(steps);
    unmuteLog();
    (asJson ? printSectionsJson : printSections)(load, sections);
}

}  // namespace

void addShowCommand(CLI::App* app) {
    const auto device = std::make_shared<DeviceOptions>();
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const command = app->add_subcommand(
            "show",
            "Print what a codec component sees after a load, and where each value comes from");
    command->footer(fmt::format("{}\n\n{}", kShowFooter, kUsualExitCodes));
    addDeviceOptions(*command, device.get());
    addLogOption(*command, device.get());
    command->add_flag("--json", *asJson, "Print JSON, for scripts");
    command->callback([=] {
        requireDevice(*device);
        applyDeviceOptions(*device);
        show(*asJson);
    });
}

}  // namespace kc2::tool
