// kcodec2_spec diff: what a component sees differently after two loads.

#include <json/value.h>
#include <sys/mman.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/DeviceOptions.h"
#include "base/Terminal.h"
#include "base/Text.h"
#include "catalogue/Catalogue.h"
#include "commands/Commands.h"
#include "store/Load.h"
#include "store/SnapshotDiff.h"
#include "store/StoreSnapshot.h"
#include "targetspec/reading/Escaped.h"

namespace kc2::tool {

namespace {

constexpr char kDiffFooter[] =
        "A and B are documents, or directories that hold a device's file system. A document is "
        "loaded as the system spec document of a device that has no other file, so that the "
        "built-in document of the chip follows; a variant names the chip. With A alone, one "
        "device is compared under two variants.\n"
        "\n"
        "Only what a codec component sees counts: comments, order of members, and values that "
        "another one overrides do not.\n"
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

// A load of one side, and what it made of the store.
struct Loaded {
    std::string title;  // Path and variant.
    std::string systemSpec;
    std::string overlay;
    std::vector<SnapshotSection> sections;
};

// The library reads documents from files, and each step is taken more than once; a pipe gives its
// text only once. So the text is put into a file in memory.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& text)
        : mDescriptor(memfd_create("document", MFD_CLOEXEC)) {
        std::ofstream(path()).write(text.data(), static_cast<std::streamsize>(text.size()));
    }
    ~MemoryFile() { close(mDescriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(mDescriptor); }

private:
    int mDescriptor;
};

Loaded loadTree(const Side& side) {
    DeviceOptions device = side.device;
    device.rootDirectory = side.path;
    applyDeviceOptions(device);
    const Load load = readLoad();
    return {side.path + " (variant " + load.variant + ")", describeSystemSpec(load),
            describeOverlay(load), loadedSections(deviceSteps(load))};
}

std::optional<Loaded> loadDocument(const Side& side) {
    const std::unique_ptr<Document> read = readDocumentFile(side.path);
    const Document& document = *read;
    if (!document.isReadable) {
        std::fprintf(stderr, "kcodec2_spec: %s cannot be read: %s\n", escaped(side.path).c_str(),
                     document.whyNotReadable.c_str());
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
    steps.overlayOrigin = "built-in document " + std::to_string(chip.number);
    return Loaded{side.path, document.isAccepted ? side.path : side.path + " (rejected)",
                  steps.overlayOrigin, loadedSections(steps)};
}

std::optional<Loaded> loadSide(const Side& side) {
    if (!std::filesystem::is_directory(side.path)) {
        return loadDocument(side);
    }
    if (!canPlayDevices()) {
        std::fprintf(stderr,
                     "kcodec2_spec: %s is a directory: on a device, diff compares documents only\n",
                     escaped(side.path).c_str());
        return std::nullopt;
    }
    return loadTree(side);
}

void printSide(const char* name, const Loaded& side, const Colours& colours) {
    std::printf("%s%s  %s%s\n   system spec document  %s\n   private overlay       %s\n",
                colours.bold, name, escaped(side.title).c_str(), colours.plain,
                escaped(side.systemSpec).c_str(), escaped(side.overlay).c_str());
}

std::string join(const std::string& before, const std::string& after) {
    return before == after ? after : before + " -> " + after;
}

// A change as its line shows it.
struct Row {
    char sign;
    std::string name;
    std::string value;
    std::string origin;
};

Row rowOf(const Change& change, bool isList) {
    const auto named = [isList](const SnapshotEntry& entry, size_t index) {
        return (isList ? "#" + std::to_string(index + 1) + " " : "") + escaped(entry.name);
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
            std::printf("  %s names none%s\n", name, side->whenEmpty);
        }
    }
}

void printSection(const SectionChanges& section, const Catalogue& catalogue,
                  const Colours& colours) {
    std::printf("\n%s%s (%zu)%s\n", colours.bold, section.after->title.c_str(),
                section.changes.size(), colours.plain);
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
        std::printf("  %s%c %s%s  %s%s%s\n", colour, row.sign, padded(row.name, nameWidth).c_str(),
                    colours.plain, padded(row.value, valueWidth).c_str(),
                    valueWidth == 0 ? "" : "  ", row.origin.c_str());
        const Change& change = section.changes[i];
        const SnapshotEntry& entry = change.after != nullptr ? *change.after : *change.before;
        if (const Setting* const setting = catalogue.setting(entry.name)) {
            std::printf("      %s%s%s\n", colours.faint, escaped(setting->meaning).c_str(),
                        colours.plain);
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
        std::puts("\nno difference in effect");
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
            "diff", "Tell what a codec component sees differently after two loads");
    command->footer(kDiffFooter);
    command->add_option("A", arguments->a.path, "A document, or a directory with a device's files")
            ->required()
            ->check(CLI::Validator(CLI::ExistingPath).description(""));
    command->add_option("B", arguments->b.path, "The same (default: A)")
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
