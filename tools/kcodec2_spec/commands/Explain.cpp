// kcodec2_spec explain: what a name or a log text is.

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/NearNames.h"
#include "base/OptionValues.h"
#include "base/Print.h"
#include "base/Spelling.h"
#include "base/Text.h"
#include "catalogue/BuiltInValues.h"
#include "catalogue/Catalogue.h"
#include "catalogue/KnownSettings.h"
#include "catalogue/SectionTexts.h"
#include "catalogue/SettingText.h"
#include "catalogue/SettingsPage.h"
#include "check/Checks.h"
#include "commands/Commands.h"
#include "commands/UnknownVariant.h"
#include "kc2/TargetSpec.h"
#include "log/LineMatch.h"
#include "log/LogLines.h"
#include "platform/FormatRows.h"
#include "store/Load.h"
#include "store/StoreSnapshot.h"
#include "targetspec/reading/Escaped.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

void printTitle(std::string_view name) {
    printOut("{}\n", escaped(name));
}

void printLine(const char* title, std::string_view text) {
    if (!text.empty()) {
        printOut("  {:9} {}\n", title, escaped(text));
    }
}

void printValues(const char* title, const std::vector<CatalogueValue>& values) {
    for (const CatalogueValue& value : values) {
        printLine(title, fmt::format("{}  {}", value.value, meaningOf(value)));
    }
}

// --- Each kind of name: prints what it is, or returns false -------------------------------------

bool explainSetting(const Catalogue& catalogue, const std::string& name) {
    const Setting* const setting = catalogue.setting(name);
    if (setting == nullptr) {
        return false;
    }
    printTitle(setting->name);
    printLine("meaning", setting->meaning);
    printLine("section", setting->section);
    printLine("type", setting->type);
    printLine("unit", setting->unit);
    printLine("range", rangeOf(*setting));
    printValues("value", setting->values);
    printValues("bit", setting->bits);
    printLine("chips", chipsOf(setting->chips));
    for (const BuiltInValue& one : builtInValuesOf(*setting)) {
        printLine("built-in", fmt::format("{} ({}, document {})", writtenValue(one.value),
                                          one.chips, one.number));
    }
    printLine("needs", setting->neededFeature);
    printLine("at most", setting->atMost);
    return true;
}

bool explainSection(const Catalogue& catalogue, const std::string& name) {
    const std::string meaning = meaningOfSection(name);
    if (meaning.empty()) {
        return false;
    }
    printTitle(name);
    printLine("meaning", meaning);
    for (const Setting& setting : catalogue.settings()) {
        printLine("setting", setting.section == name ? setting.name : "");
    }
    return true;
}

bool explainComponent(const Catalogue& catalogue, const std::string& name) {
    const CodecComponent* const component = catalogue.component(name);
    if (component == nullptr) {
        return false;
    }
    printTitle(component->name);
    printLine("list", component->list);
    printLine("chips", chipsOf(component->chips));
    return true;
}

bool explainCode(const Catalogue& catalogue, const std::string& name) {
    const std::optional<uint32_t> word = toWord(name);
    const auto& codes = catalogue.codes();
    const auto code = std::find_if(codes.begin(), codes.end(), [&](const PerfResourceCode& one) {
        return word && one.code == *word;
    });
    if (code == codes.end()) {
        return false;
    }
    printTitle(hexadecimal(code->code));
    printLine("meaning", code->meaning);
    return true;
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
    const bool isSetting = !asked.setting.empty() && explainSetting(catalogue, asked.setting);
    return !asked.rows.empty() || isSetting;
}

constexpr bool (*kTopics[])(const Catalogue&, const std::string&) = {
        explainSetting, explainSection, explainComponent, explainCode,
        explainFormat,  explainCheck,   explainLogText};

// --- One device ---------------------------------------------------------------------------------

std::string valueIn(const SpecDocument& document, const std::string& section,
                    const std::string& name) {
    const Json::Value value = settingIn(document, section, name);
    return value.isNull() ? "" : writtenValue(value);
}

// The value of `name` in one document of the load; empty when it has none.
std::string saidBy(const Document& document, const std::string& name) {
    for (const std::string& section : settingSections()) {
        const std::string value = valueIn(document.content, section, name);
        if (!value.empty()) {
            return fmt::format("{}: {}", section, value);
        }
    }
    return document.content.supportedCodecs.count(name) != 0 ? "lists it" : "";
}

std::string shownOrigin(const Document& document) {
    return document.path.empty() ? document.origin
                                 : fmt::format("{}, {}", document.origin, document.path);
}

// The document that the store's value of `name` comes from; empty when it has none.
std::string winnerOf(const Load& load, const std::string& name) {
    for (const SnapshotSection& section : loadedSections(deviceSteps(load))) {
        for (const SnapshotEntry& entry : section.entries) {
            if (entry.name == name && section.form != SectionForm::List) {
                return entry.origin;
            }
        }
    }
    return "";
}

// Which document sets `name` on this device, and whose value has no effect.
bool explainOnDevice(const std::string& name) {
    muteLog();
    const Load load = readLoad();
    reportUnknownVariant(load);
    const std::string winner = winnerOf(load, name);
    unmuteLog();
    printLine("device",
              winner.empty() ? "no document sets it" : fmt::format("set by the {}", winner));
    for (const Document* const document : {load.systemSpec.get(), load.overlay.get()}) {
        const std::string said = document != nullptr ? saidBy(*document, name) : "";
        const bool isLoser =
                document != nullptr && winner.find(document->origin) == std::string::npos;
        printLine("", said.empty() ? ""
                                   : fmt::format("{}: {}{}", shownOrigin(*document), said,
                                                 isLoser ? " (has no effect)" : ""));
    }
    return !winner.empty();
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
    std::vector<std::string> names;
    for (const Setting& setting : known.catalogue.settings()) {
        names.push_back(setting.name);
    }
    for (std::string& name : otherNames()) {
        names.push_back(std::move(name));
    }
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
        "the id of a check, or a log line: the whole line, or a part of it without values. With "
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
