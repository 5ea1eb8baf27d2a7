// kcodec2_spec explain: what a name or a log text is.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "catalogue/Catalogue.h"
#include "catalogue/Explanation.h"
#include "catalogue/SettingsPage.h"
#include "check/Checks.h"
#include "commands/Commands.h"
#include "commands/ExplainTopics.h"
#include "commands/UnknownVariant.h"
#include "log/LineMatch.h"
#include "log/LogLines.h"
#include "platform/FormatRows.h"
#include "store/Load.h"
#include "store/Setters.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

bool print(const std::optional<Explanation>& explanation) {
    writeOut(explanation ? formatted(*explanation) : "");
    return explanation.has_value();
}

// --- Each kind of name: prints what it is, or returns false -------------------------------------

bool explainSetting(const Catalogue& catalogue, const std::string& name) {
    return print(explainedSetting(catalogue, name));
}

bool explainSection(const Catalogue& catalogue, const std::string& name) {
    return print(explainedSection(catalogue, name));
}

bool explainComponent(const Catalogue& catalogue, const std::string& name) {
    return print(explainedComponent(catalogue, name));
}

bool explainCode(const Catalogue& catalogue, const std::string& name) {
    return print(explainedCode(catalogue, name));
}

bool explainFormat(const Catalogue&, const std::string& name) {
    return isFormat(name) && printFormats(name) == kExitOk;
}

// A document, whose lines keep their places below each other.
void printDocument(const char* title, std::string_view document) {
    for (size_t start = 0; start < document.size();) {
        const size_t limit = std::min(document.find('\n', start), document.size());
        printLine(start == 0 ? title : "", document.substr(start, limit - start));
        start = limit + 1;
    }
}

bool explainCheck(const Catalogue&, const std::string& name) {
    const Check* const check = findCheck(name);
    if (check == nullptr) {
        return false;
    }
    printTitle(check->id);
    printLine("finds", check->summary);
    printLine("meaning", check->meaning);
    printLine("fix", check->fix);
    printDocument("example", check->mistake);
    printDocument("fixed", check->fixed);
    printLine("example",
              *check->whyNoExample != '\0' ? fmt::format("none: {}", check->whyNoExample) : "");
    printLine("severity",
              fmt::format("{}{}", nameOf(check->severity), check->isRejection ? ", always" : ""));
    for (const CheckGroup& group : kCheckGroups) {
        if (isInGroup(*check, group.name)) {
            printLine("group", fmt::format("{}: {}", group.name, group.title));
        }
    }
    return true;
}

void printLogLine(const LogLine& line) {
    printTitle(line.text);
    printLine("log", fmt::format("{} {}, {}", letterOf(line.priority), line.tag, line.step));
    printLine("written", line.gate == 0 ? "always"
                                        : fmt::format("if the level word has a bit of {}",
                                                      hexadecimal(line.gate)));
    printLine("meaning", line.meaning);
    printLine("to do", std::string_view(line.advice) == "-" ? "" : line.advice);
}

bool explainLogText(const Catalogue& catalogue, const std::string& text) {
    const AskedText asked = matchAsked(text);
    for (const LogLine* const line : asked.rows) {
        printLogLine(*line);
    }
    printLine("values", joined(asked.values, ", "));
    for (const std::string& value : asked.values) {
        printChecksForReason(value);
    }
    const bool isSetting = !asked.setting.empty() && explainSetting(catalogue, asked.setting);
    return !asked.rows.empty() || isSetting;
}

constexpr bool (*kTopics[])(const Catalogue&, const std::string&) = {
        explainSetting, explainSection, explainComponent,  explainCode,
        explainFormat,  explainCheck,   explainOtherTopic, explainLogText};

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

std::vector<std::string> allNames(const Catalogue& catalogue) {
    std::vector<std::string> names;
    for (const Setting& setting : catalogue.settings()) {
        names.push_back(setting.name);
    }
    for (const CodecComponent& component : catalogue.components()) {
        names.push_back(component.name);
    }
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

int printUnknown(const Catalogue& catalogue, const std::string& wanted) {
    const std::vector<std::string> names = allNames(catalogue);
    std::string near = nearest(wanted, names);
    constexpr size_t kEnough = 3;                    // Fewer letters are in many names.
    if (near.empty() && wanted.size() >= kEnough) {  // A part of a name, such as nv12?
        const auto whole = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return contains(name, wanted);
        });
        near = whole != names.end() ? *whole : "";
    }
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

int printSettings(const std::vector<std::string>& settingsFiles) {
    const std::optional<Catalogue> catalogue = loadCatalogue(settingsFiles);
    if (!catalogue) {
        return kExitUsage;
    }
    writeOut(settingsPage(*catalogue));
    return kExitOk;
}

int explain(const ExplainArguments& arguments) {
    const std::optional<Catalogue> catalogue = loadCatalogue(arguments.settingsFiles);
    if (!catalogue) {
        return kExitUsage;
    }
    const bool isKnown =
            std::any_of(std::begin(kTopics), std::end(kTopics),
                        [&](const auto& topic) { return topic(*catalogue, arguments.name); });
    bool isOnDevice = false;
    const DeviceOptions& device = arguments.device;
    if (device.hasFiles()) {
        if (!isKnown) {
            printTitle(arguments.name);
        }
        applyDeviceOptions(device);
        isOnDevice = explainOnDevice(arguments.name);
    }
    return isKnown || isOnDevice ? kExitOk : printUnknown(*catalogue, arguments.name);
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
        *exitCode =
                arguments->asPage ? printSettings(arguments->settingsFiles) : explain(*arguments);
    });
}

}  // namespace kc2::tool
