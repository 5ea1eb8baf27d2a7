// kcodec2_spec diff: what differs for a codec component between two loads.

#include <fmt/format.h>
#include <json/value.h>
#include <sys/mman.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/JsonPrinter.h"
#include "base/Print.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "catalogue/Catalogue.h"
#include "commands/Commands.h"
#include "commands/UnknownVariant.h"
#include "store/Load.h"
#include "store/SnapshotDiff.h"
#include "store/StoreSnapshot.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kDiffFooter[] =
        "A and B are documents, or root directories of a device's file system. A document is "
        "loaded as the system spec document of a device that has no other file, so the built-in "
        "document of the chip follows it; the variant names the chip. With A alone, one device is "
        "compared under two variants.\n"
        "\n"
        "Only what a codec component sees is compared: comments, the order of members, and values "
        "that another one overrides make no difference.\n"
        "\n"
        "Examples:\n"
        "  kcodec2_spec diff old/video_system_specs.json new/video_system_specs.json\n"
        "  kcodec2_spec diff examples/device --variant-a _orvelle --variant-b _mirt\n"
        "\n"
        "Exit codes: 0 no difference; 1 differences; 2 wrong usage, a document that cannot be "
        "read, or output that cannot be written.";

struct Side {
    std::string path;
    DeviceOptions device;
};

// A load of one side, and the store after it.
struct Loaded {
    std::string title;  // Path and variant.
    std::string systemSpec;
    std::string overlay;
    std::vector<SnapshotSection> sections;
};

// The library reads documents from files, and each step runs more than once; a pipe gives its text
// only once. So the text is put into a file in memory.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& text)
        : mDescriptor(memfd_create("document", MFD_CLOEXEC)) {
        std::ofstream(path()).write(text.data(), static_cast<std::streamsize>(text.size()));
    }
    ~MemoryFile() { close(mDescriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return fmt::format("/proc/self/fd/{}", mDescriptor); }

private:
    int mDescriptor;
};

Loaded loadTree(const Side& side) {
    DeviceOptions device = side.device;
    device.rootDirectory = side.path;
    applyDeviceOptions(device);
    const Load load = readLoad();
    reportUnknownVariant(load);
    return {fmt::format("{} (variant {})", side.path, load.variant), describeSystemSpec(load),
            describeOverlay(load), loadedSections(deviceSteps(load))};
}

std::optional<Loaded> loadDocument(const Side& side) {
    const std::unique_ptr<Document> read = readDocumentFile(side.path);
    const Document& document = *read;
    if (!document.isReadable) {
        printError("{} cannot be read: {}", escaped(side.path), document.whyNotReadable);
        return std::nullopt;
    }
    DeviceOptions device = side.device;
    device.rootDirectory = side.path;  // Not a directory, so this device has no files.
    applyDeviceOptions(device);
    const std::string path = TargetSpec::readTargetVariant();
    const ChipDocument& chip = chipDocumentFor(path);
    const MemoryFile file(document.text);
    LoadSteps steps;
    steps.systemSpec = [&file](TargetSpec& store) {
        std::ifstream stream(file.path());
        store.parseJsonData(stream);
    };
    steps.overlay = [](TargetSpec& store) {
        std::ifstream stream;
        stream.setstate(std::ios::failbit);  // As of a private file that does not open.
        store.parseJsonData(stream);
    };
    steps.systemSpecOrigin = "document";
    steps.overlayOrigin = fmt::format("built-in document {}", chip.number);
    return Loaded{side.path,
                  fmt::format("{}{}", side.path, document.isAccepted ? "" : " (rejected)"),
                  steps.overlayOrigin, loadedSections(steps)};
}

std::optional<Loaded> loadSide(const Side& side) {
    if (!std::filesystem::is_directory(side.path)) {
        return loadDocument(side);
    }
    if (!canPlayDevices()) {
        printError("{} is a directory: on a device, diff compares only documents",
                   escaped(side.path));
        return std::nullopt;
    }
    return loadTree(side);
}

void printSide(const char* name, const Loaded& side, const Colours& colours) {
    printOut("{}{}  {}{}\n   system spec document  {}\n   private overlay       {}\n", colours.bold,
             name, escaped(side.title), colours.plain, escaped(side.systemSpec),
             escaped(side.overlay));
}

std::string join(const std::string& before, const std::string& after) {
    return before == after ? after : fmt::format("{} -> {}", before, after);
}

// A change as it is printed.
struct Row {
    char sign;
    std::string name;
    std::string value;
    std::string origin;
};

Row rowOf(const Change& change, bool isList) {
    const auto named = [isList](const SnapshotEntry& entry, size_t index) {
        return isList ? fmt::format("#{} {}", index + 1, escaped(entry.name)) : escaped(entry.name);
    };
    if (change.after == nullptr) {
        return {'-', named(*change.before, change.indexBefore), change.before->text,
                change.before->origin};
    }
    if (change.before == nullptr) {
        return {'+', named(*change.after, change.indexAfter), change.after->text,
                change.after->origin};
    }
    return {'~', named(*change.after, change.indexAfter),
            join(change.before->text, change.after->text),
            join(change.before->origin, change.after->origin)};
}

// Only one section has a meaning when it is empty, and it is the opposite of what an empty list
// suggests.
void printWhenEmpty(const SectionChanges& section) {
    if (*section.after->whenEmpty == '\0') {
        return;
    }
    for (const auto& [name, side] :
         {std::pair("A", section.before), std::pair("B", section.after)}) {
        if (side->entries.empty()) {
            printOut("  {} has no entries{}\n", name, side->whenEmpty);
        }
    }
}

void printSection(const SectionChanges& section, const Catalogue& catalogue,
                  const Colours& colours) {
    printOut("\n{}{} ({}){}\n", colours.bold, section.after->title, section.changes.size(),
             colours.plain);
    printWhenEmpty(section);
    std::vector<Row> rows;
    size_t nameWidth = 0;
    size_t valueWidth = 0;
    for (const Change& change : section.changes) {
        rows.push_back(rowOf(change, section.after->form == SectionForm::List));
        nameWidth = std::max(nameWidth, rows.back().name.size());
        valueWidth = std::max(valueWidth, rows.back().value.size());
    }
    for (size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[i];
        const char* const colour = row.sign == '-'   ? colours.red
                                   : row.sign == '+' ? colours.green
                                                     : colours.yellow;
        printOut("  {}{} {}{}  {}{}{}\n", colour, row.sign, padded(row.name, nameWidth),
                 colours.plain, padded(row.value, valueWidth), valueWidth == 0 ? "" : "  ",
                 row.origin);
        const Change& change = section.changes[i];
        const SnapshotEntry& entry = change.after != nullptr ? *change.after : *change.before;
        if (const Setting* const setting = catalogue.setting(entry.name)) {
            printOut("      {}{}{}\n", colours.faint, escaped(setting->meaning), colours.plain);
        }
    }
}

void printDifferences(const Loaded& a, const Loaded& b,
                      const std::vector<SectionChanges>& differences, const Catalogue& catalogue) {
    const Colours colours = coloursOf(terminalOf(STDOUT_FILENO));
    printSide("A", a, colours);
    printSide("B", b, colours);
    for (const SectionChanges& section : differences) {
        printSection(section, catalogue, colours);
    }
    if (differences.empty()) {
        writeOut("\nno difference in effect\n");
    }
}

Json::Value toJson(const SnapshotEntry* entry, size_t index, bool isList) {
    Json::Value json;
    if (entry != nullptr) {
        json["value"] = entry->value;
        json["from"] = entry->origin;
        if (isList) {
            json["index"] = Json::UInt64(index);
        }
    }
    return json;
}

Json::Value toJson(const Loaded& side) {
    Json::Value json;
    json["title"] = side.title;
    json["systemSpec"] = side.systemSpec;
    json["overlay"] = side.overlay;
    return json;
}

void printDifferencesJson(const Loaded& a, const Loaded& b,
                          const std::vector<SectionChanges>& differences,
                          const Catalogue& catalogue) {
    Json::Value root;
    root["a"] = toJson(a);
    root["b"] = toJson(b);
    root["differences"] = Json::arrayValue;
    for (const SectionChanges& section : differences) {
        const bool isList = section.after->form == SectionForm::List;
        for (const Change& change : section.changes) {
            const SnapshotEntry& entry = change.after != nullptr ? *change.after : *change.before;
            const Setting* const setting = catalogue.setting(entry.name);
            Json::Value json;
            json["section"] = section.after->key;
            json["name"] = entry.name;
            json["old"] = toJson(change.before, change.indexBefore, isList);
            json["new"] = toJson(change.after, change.indexAfter, isList);
            json["meaning"] = setting != nullptr ? Json::Value(setting->meaning) : Json::Value();
            root["differences"].append(json);
        }
    }
    print(root);
}

struct DiffArguments {
    Side a;
    Side b;
    std::vector<std::string> settingsFiles;
    bool asJson = false;
};

int diff(const DiffArguments& arguments) {
    const std::optional<Catalogue> catalogue = loadCatalogue(arguments.settingsFiles);
    muteLog();
    const std::optional<Loaded> before = loadSide(arguments.a);
    const std::optional<Loaded> after = loadSide(arguments.b);
    if (!catalogue || !before || !after) {
        return kExitUsage;
    }
    const std::vector<SectionChanges> differences =
            differencesOf(before->sections, after->sections);
    (arguments.asJson ? printDifferencesJson : printDifferences)(*before, *after, differences,
                                                                 *catalogue);
    return differences.empty() ? kExitOk : kExitFindings;
}

}  // namespace

void addDiffCommand(CLI::App* app, int* exitCode) {
    const auto arguments = std::make_shared<DiffArguments>();
    CLI::App* const command = app->add_subcommand(
            "diff", "Show what differs for a codec component between two loads");
    command->footer(kDiffFooter);
    command->add_option("A", arguments->a.path,
                        "A document, or the root directory of a device's file system")
            ->required()
            ->check(CLI::Validator(CLI::ExistingPath).description(""));
    command->add_option("B", arguments->b.path, "What to compare it with (default: A)")
            ->check(CLI::Validator(CLI::ExistingPath).description(""));
    command->add_flag("--json", arguments->asJson, "Print JSON, for scripts");
    addSettingsOption(command, &arguments->settingsFiles);
    addSideOptions(*command, "-a", &arguments->a.device);
    addSideOptions(*command, "-b", &arguments->b.device);
    command->callback([arguments, exitCode] {
        if (arguments->b.path.empty()) {
            arguments->b.path = arguments->a.path;
        }
        *exitCode = diff(*arguments);
    });
}

}  // namespace kc2::tool
