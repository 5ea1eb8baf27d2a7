// kcodec2_spec show: the store that TargetSpec::Get() built, and where each value came from.

#include <json/value.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "Commands.h"
#include "DeviceOptions.h"
#include "Documents.h"
#include "Text.h"
#include "kc2/TargetSpec.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/DevicePaths.h"
#include "targetspec/Printable.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2::tool {

namespace {

// One line of a section: what it is called, what it holds, which document set it.
struct Entry {
    std::string name;
    Json::Value value;
    std::string text;  // The value, for people.
    std::string origin;
};

struct Section {
    std::string title;
    std::string key;  // In the JSON output.
    std::vector<Entry> entries;
    bool isNamed = true;         // Entries have names; otherwise they are a list.
    const char* whenEmpty = "";  // What it means that there are none.
};

// Turns the store into sections, and answers for each value which document it came from: the first
// one that holds a name, and for a list's entry the one whose turn it is.
class Presentation {
public:
    Presentation(const TargetSpec& spec, const Load& load) : mSpec(spec), mLoad(load) {}

    std::vector<Section> sections() const {
        using Inspector = TargetSpecInspector;
        return {
                mapSection("Features", "features", Inspector::features(mSpec),
                           &SpecDocument::features, [](bool isOn) { return isOn ? "on" : "off"; }),
                mapSection("Presets", "presets", Inspector::presets(mSpec), &SpecDocument::presets,
                           [](int32_t value) { return std::to_string(value); }),
                mapSection("Perf-lock words", "perfResourceValues",
                           Inspector::perfResourceValues(mSpec), &SpecDocument::perfResourceValues,
                           wordPairs),
                bitRateTable(),
                dolbyVisionProfiles(),
                dolbyVisionTierLevels(),
                listSection("Codec plug-ins", "codecPlugins", Inspector::codecPlugins(mSpec),
                            &SpecDocument::codecPlugins),
                listSection("Pre-processing filters", "preprocessingFilters",
                            Inspector::preprocessingFilters(mSpec),
                            &SpecDocument::preprocessingFilters),
                listSection("Encoder post-processing filters", "encPostProcessingFilters",
                            Inspector::encPostProcessingFilters(mSpec),
                            &SpecDocument::encPostProcessingFilters),
                supportedCodecs(),
        };
    }

private:
    static Json::Value toJson(bool isOn) { return isOn; }
    static Json::Value toJson(int32_t value) { return value; }
    static Json::Value toJson(const std::vector<uint32_t>& words) {
        Json::Value array(Json::arrayValue);
        for (const uint32_t word : words) {
            array.append(word);
        }
        return array;
    }

    // "0x40800000=0xFFF 0x40C00000=0x1": resource codes and their values.
    static std::string wordPairs(const std::vector<uint32_t>& words) {
        std::string text;
        for (size_t i = 0; i < words.size(); ++i) {
            text += (i == 0 ? "" : i % 2 == 0 ? " " : "=") + hexadecimal(words[i]);
        }
        return text.empty() ? "(none)" : text;
    }

    template <typename Holds>
    std::string firstOrigin(Holds holds) const {
        return holds(mLoad.systemSpec.content) ? mLoad.systemSpec.origin : mLoad.overlay.origin;
    }

    std::string originInList(size_t index, size_t entriesOfSystemSpec) const {
        return index < entriesOfSystemSpec ? mLoad.systemSpec.origin : mLoad.overlay.origin;
    }

    template <typename Map, typename ToText>
    Section mapSection(const char* title, const char* key, const Map& values,
                       Map SpecDocument::*member, ToText toText) const {
        Section section = {.title = title, .key = key, .entries = {}};
        for (const auto& [name, value] : values) {
            const auto holds = [&, &entry = name](const SpecDocument& document) {
                return (document.*member).count(entry) != 0;
            };
            section.entries.push_back({name, toJson(value), toText(value), firstOrigin(holds)});
        }
        return section;
    }

    Section listSection(const char* title, const char* key, const std::list<std::string>& names,
                        std::list<std::string> SpecDocument::*member) const {
        Section section = {.title = title, .key = key, .entries = {}, .isNamed = false};
        const size_t entriesOfSystemSpec = (mLoad.systemSpec.content.*member).size();
        for (const std::string& name : names) {
            section.entries.push_back(
                    {name, name, "", originInList(section.entries.size(), entriesOfSystemSpec)});
        }
        return section;
    }

    Section bitRateTable() const {
        Section section = {.title = "Nimbra-mode bit rates",
                           .key = "nimbraModeBitRateTable",
                           .entries = {},
                           .isNamed = false};
        const size_t rowsOfSystemSpec = mLoad.systemSpec.content.nimbraModeBitRateTable.size();
        for (const NimbraBitRateEntry& row : TargetSpecInspector::nimbraModeBitRateTable(mSpec)) {
            Json::Value json;
            json["low"] = row.low;
            json["high"] = row.high;
            json["bitRate"] = row.bitRate;
            section.entries.push_back(
                    {"[" + std::to_string(row.low) + ", " + std::to_string(row.high) + ")", json,
                     std::to_string(row.bitRate),
                     originInList(section.entries.size(), rowsOfSystemSpec)});
        }
        return section;
    }

    Section dolbyVisionProfiles() const {
        Section section = {.title = "Dolby Vision profiles",
                           .key = "dolbyVisionProfiles",
                           .entries = {},
                           .isNamed = false};
        for (const uint32_t profile : TargetSpecInspector::dvConfigs(mSpec).profiles) {
            const auto holds = [profile](const SpecDocument& document) {
                return document.dvProfiles.count(profile) != 0;
            };
            section.entries.push_back({std::to_string(profile), profile, "", firstOrigin(holds)});
        }
        return section;
    }

    // The last document that has the section sets both.
    Section dolbyVisionTierLevels() const {
        const DVConfigs& limits = TargetSpecInspector::dvConfigs(mSpec);
        const std::string origin = mLoad.overlay.content.dvTierLevels      ? mLoad.overlay.origin
                                   : mLoad.systemSpec.content.dvTierLevels ? mLoad.systemSpec.origin
                                                                           : "no document";
        const auto entry = [&](const char* key, int32_t level) {
            return Entry{key, level, std::to_string(level), origin};
        };
        return {.title = "Dolby Vision tier levels",
                .key = "dolbyVisionTierLevels",
                .entries = {entry(targetSpecDVMaxMainTierLevel, limits.maxMainTierLevel),
                            entry(targetSpecDVMaxHighTierLevel, limits.maxHighTierLevel)}};
    }

    Section supportedCodecs() const {
        Section section = {.title = "Codec components",
                           .key = "supportedCodecs",
                           .entries = {},
                           .isNamed = false,
                           .whenEmpty = ": every component is enabled"};
        const auto& names = TargetSpecInspector::supportedCodecs(mSpec);
        for (const std::string& name : std::set<std::string>(names.begin(), names.end())) {
            const auto holds = [&](const SpecDocument& document) {
                return document.supportedCodecs.count(name) != 0;
            };
            section.entries.push_back({name, name, "", firstOrigin(holds)});
        }
        return section;
    }

    const TargetSpec& mSpec;
    const Load& mLoad;
};

std::string systemSpecStory(const Load& load) {
    if (!load.hasSystemSpec()) {
        return "none: neither " + load.firstPath + " nor " + kFallbackSystemSpec + " opens";
    }
    std::string story = load.systemSpec.path;
    if (load.systemSpec.path != load.firstPath) {
        story += " (fallback: " + load.firstPath + " does not open)";
    }
    return load.systemSpec.isAccepted ? story : story + " (rejected)";
}

std::string overlayStory(const Load& load) {
    if (!load.overlay.path.empty()) {
        return load.overlay.path + (load.overlay.isAccepted ? "" : " (rejected)");
    }
    const std::string chip = *load.chip->chip == '\0'
                                     ? "no chip's name in the path"
                                     : "\"" + std::string(load.chip->chip) + "\" in the path";
    return load.overlay.origin + " (" + chip + "; " + kPrivateConfig +
           (load.isPrivateFileOpen ? " is empty)" : " does not open)");
}

void printText(const Load& load, const std::vector<Section>& sections) {
    std::printf("System spec document  %s\n", printable(systemSpecStory(load)).c_str());
    std::printf("Private overlay       %s\n", printable(overlayStory(load)).c_str());
    for (const Section& section : sections) {
        std::printf("\n%s (%zu)%s\n", section.title.c_str(), section.entries.size(),
                    section.entries.empty() ? section.whenEmpty : "");
        size_t nameWidth = 0;
        size_t textWidth = 0;
        for (const Entry& entry : section.entries) {
            nameWidth = std::max(nameWidth, printable(entry.name).size());
            textWidth = std::max(textWidth, entry.text.size());
        }
        for (const Entry& entry : section.entries) {
            std::printf("  %s  %s%s%s\n", padded(printable(entry.name), nameWidth).c_str(),
                        padded(entry.text, textWidth).c_str(), textWidth == 0 ? "" : "  ",
                        entry.origin.c_str());
        }
    }
}

void printJson(const Load& load, const std::vector<Section>& sections) {
    Json::Value root;
    root["systemSpec"]["firstPath"] = load.firstPath;
    root["systemSpec"]["path"] =
            load.hasSystemSpec() ? Json::Value(load.systemSpec.path) : Json::Value();
    root["systemSpec"]["isAccepted"] = load.systemSpec.isAccepted;
    root["overlay"]["origin"] = load.overlay.origin;
    root["overlay"]["path"] =
            load.overlay.path.empty() ? Json::Value() : Json::Value(load.overlay.path);
    root["overlay"]["isAccepted"] = load.overlay.isAccepted;
    for (const Section& section : sections) {
        Json::Value& values = root[section.key];
        values = section.isNamed ? Json::objectValue : Json::arrayValue;
        for (const Entry& entry : section.entries) {
            Json::Value item;
            item["value"] = entry.value;
            item["from"] = entry.origin;
            (section.isNamed ? values[entry.name] : values.append(Json::Value())) = item;
        }
    }
    print(root);
}

}  // namespace

int show(bool asJson) {
    // The real load comes last: it may seed the private file, and its lines are the ones to show.
    muteLog();
    const Load load = walkLoad();
    unmuteLog();
    const TargetSpec& spec = *TargetSpec::Get();
    const std::vector<Section> sections = Presentation(spec, load).sections();
    (asJson ? printJson : printText)(load, sections);
    return kExitOk;
}

}  // namespace kc2::tool
