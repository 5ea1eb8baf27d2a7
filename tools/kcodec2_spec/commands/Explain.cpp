// kcodec2_spec explain: what a name or a log text is.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/NearNames.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Explanation.h"
#include "catalogue/KnownSettings.h"
#include "catalogue/SettingsPage.h"
#include "check/Checks.h"
#include "commands/Commands.h"
#include "commands/ExplainTopics.h"
#include "commands/UnknownVariant.h"
#include "log/LogLines.h"
#include "platform/FormatRows.h"
#include "store/Load.h"
#include "store/Setters.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// --- One device ---------------------------------------------------------------------------------

// Which document sets `name` on this device, and whose value has no effect.
bool explainOnDevice(const std::string& name) {
    muteLog();
    const Load load = readLoad();
    reportUnknownVariant(load);
    Explanation explanation;
    const bool isSet = explainSetters(load, name, &explanation);
    unmuteLog();
    for (const Explanation::Line& line : explanation.lines) {
        writeOut(formatted(line));
    }
    return isSet;
}

// --- Near misses --------------------------------------------------------------------------------

// Of everything but settings and components.
std::vector<std::string> otherNames() {
    std::vector<std::string> names;
    for (const Section& section : kSections) {
        names.emplace_back(*section.key != nullptr ? *section.key : "");
    }
    for (const Platform::FormatRow& row : Platform::kFormatRows) {
        names.emplace_back(row.name);
    }
    for (const Check& check : kChecks) {
        names.emplace_back(check.id);
    }
    for (const LogLine& line : logLines()) {
        names.emplace_back(line.text);
    }
    return names;
}

// Ignores case.
bool contains(const std::string& name, const std::string& part) {
    return inSmallLetters(name).find(inSmallLetters(part)) != std::string::npos;
}

// The first name that has `part`, such as nv12, or that has all words of it, such as h264; empty
// when there is none.
std::string nameWith(const std::string& part, const KnownSettings& known) {
    constexpr size_t kEnough = 3;  // Fewer letters are in many names.
    if (part.size() < kEnough) {
        return "";
    }
    if (const NearNames::Entry* const component = known.components.withWordsOf(part)) {
        return component->name;
    }
    for (const Setting& setting : known.catalogue.settings()) {
        if (contains(setting.name, part)) {
            return setting.name;
        }
    }
    const std::vector<std::string> names = otherNames();
    const auto whole = std::find_if(names.begin(), names.end(),
                                    [&](const std::string& name) { return contains(name, part); });
    return whole != names.end() ? *whole : "";
}

// What `wanted` may mean; empty when it is like nothing. As `check` finds it, then looser: here
// nobody is warned about a name that is right.
std::string meantBy(const std::string& wanted, const KnownSettings& known) {
    for (const NearNames* const names : {&known.settings, &known.components}) {
        const NearNames::Match match = names->find(wanted, "");
        if (match.entry != nullptr) {
            return match.other == nullptr
                           ? match.entry->name
                           : fmt::format("{} or {}", match.entry->name, match.other->name);
        }
    }
    const bool isComponent = inSmallLetters(wanted).starts_with("c2.");
    if (isComponent) {  // One of another codec is no help.
        return "";
    }
    std::string near = nearest(wanted, otherNames());
    near = near.empty() ? nameWith(wanted, known) : near;
    const NearNames::Entry* const closest =
            near.empty() && hasPrivatePrefix(wanted) ? known.settings.closest(wanted) : nullptr;
    return closest != nullptr ? closest->name : near;
}

int printUnknown(const Catalogue& catalogue, const std::string& wanted) {
    const std::string near = meantBy(wanted, KnownSettings(catalogue));
    printError("unknown name \"{}\".{}", escaped(wanted),
               near.empty() ? "" : fmt::format(" Did you mean {}?", escaped(near)));
    return kExitFindings;
}

struct ExplainArguments {
    std::string name;
    bool asPage = false;
    std::vector<std::string> settingsFiles;
    DeviceOptions device;
};

int explain(const ExplainArguments& arguments) {
    const Catalogue catalogue = catalogueWith(arguments.settingsFiles);
    if (arguments.asPage) {
        writeOut(settingsPage(catalogue));
        return kExitOk;
    }
    const bool isKnown = explainTopic(catalogue, arguments.name);
    bool isOnDevice = false;
    const DeviceOptions& device = arguments.device;
    if (device.hasFiles()) {
        if (!isKnown) {
            printOut("{}\n", escaped(arguments.name));
        }
        applyDeviceOptions(device);
        isOnDevice = explainOnDevice(arguments.name);
    }
    return isKnown || isOnDevice ? kExitOk : printUnknown(catalogue, arguments.name);
}

constexpr char kExplainFooter[] =
        "NAME is a setting, a section, a codec component, a perf resource code, a pixel format, "
        "a check or a group of checks, a chip, a function, a constant or a plane of the headers, a "
        "property or path of the device, a value such as 0xFFFFFFFF, or a log line: the whole "
        "line, "
        "or a part of it without values. With "
        "--rootdir, also shows which document of that device sets the name, and whose value has "
        "no effect.\n"
        "\n"
        "Exit codes: 0 fine; 1 NAME is unknown; 2 wrong usage, a FILE that cannot be read, or "
        "output that cannot be written.\n"
        "\n"
        "Examples:\n"
        "  kcodec2_spec explain private_outbuf_fence --rootdir examples/device\n"
        "  kcodec2_spec explain real-truncated\n"
        "  kcodec2_spec explain \"Couldn't parse json from file stream\"";

}  // namespace

void addSettingsOption(CLI::App* command, std::vector<std::string>* files) {
    command->add_option("--settings", *files,
                        "Add the settings of this file to the known ones; repeatable")
            ->type_name("FILE")
            ->allow_extra_args(false);
}

Catalogue catalogueWith(const std::vector<std::string>& settingsFiles) {
    std::optional<Catalogue> catalogue = loadCatalogue(settingsFiles);
    if (!catalogue) {
        throw CLI::RuntimeError(kExitUsage);
    }
    return *std::move(catalogue);
}

void addExplainCommand(CLI::App* app, int* exitCode) {
    const auto arguments = std::make_shared<ExplainArguments>();
    CLI::App* const command = app->add_subcommand(
            "explain", "Explain a setting, a component, a format, a check or a log line");
    command->footer(kExplainFooter);
    CLI::Option* const name = command->add_option("NAME", arguments->name, "What to explain");
    command->add_flag("--markdown", arguments->asPage, "Print all known settings as a page")
            ->excludes(name);
    addSettingsOption(command, &arguments->settingsFiles);
    addDeviceOptions(*command, &arguments->device);
    command->callback([=] {
        if (arguments->name.empty() && !arguments->asPage) {
            throw CLI::RequiredError("NAME");
        }
        if (const std::string why = whyUnused(arguments->device); !why.empty()) {
            throw usageError(why);
        }
        *exitCode = explain(*arguments);
    });
}

}  // namespace kc2::tool
