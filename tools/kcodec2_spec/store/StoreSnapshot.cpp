// A store as sections of entries, and which load step each entry came from: what commands show.

#include "store/StoreSnapshot.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "base/Text.h"
#include "device/DevicePaths.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2 {

static bool operator==(const NimbraBitRateEntry& a, const NimbraBitRateEntry& b) {
    return a.low == b.low && a.high == b.high && a.bitRate == b.bitRate;
}

}  // namespace kc2

namespace kc2::tool {

namespace {

using Inspector = TargetSpecInspector;

Json::Value toJson(bool isOn) {
    return isOn;
}

Json::Value toJson(int32_t value) {
    return value;
}

Json::Value toJson(const std::vector<uint32_t>& words) {
    Json::Value array(Json::arrayValue);
    for (const uint32_t word : words) {
        array.append(word);
    }
    return array;
}

std::string toText(bool isOn) {
    return isOn ? "on" : "off";
}

std::string toText(int32_t value) {
    return std::to_string(value);
}

// "0x40800000=0xFFF 0x40C00000=0x1": resource codes and their values.
std::string toText(const std::vector<uint32_t>& words) {
    std::string text;
    for (size_t i = 0; i < words.size(); ++i) {
        text += (i == 0 ? "" : i % 2 == 0 ? " " : "=") + hexadecimal(words[i]);
    }
    return text.empty() ? "(none)" : text;
}

SnapshotEntry toEntry(const std::string& name) {
    return {name, name, "", ""};
}

SnapshotEntry toEntry(uint32_t profile) {
    return {std::to_string(profile), profile, "", ""};
}

SnapshotEntry toEntry(const NimbraBitRateEntry& row) {
    Json::Value json;
    json["low"] = row.low;
    json["high"] = row.high;
    json["bitRate"] = row.bitRate;
    return {"[" + std::to_string(row.low) + ", " + std::to_string(row.high) + ")", json,
            std::to_string(row.bitRate), ""};
}

// For each entry of `whole` whether it was there before the second step. A list that was kept as a
// whole is still there in its order; where it lies among equal entries, the ends are tried first.
template <typename List>
std::vector<bool> keptEntries(const List& before, const List& whole) {
    std::vector<bool> isKept(whole.size(), false);
    if (before.size() > whole.size()) {
        return isKept;
    }
    const size_t added = whole.size() - before.size();
    if (std::equal(before.begin(), before.end(), whole.begin())) {
        std::fill_n(isKept.begin(), before.size(), true);
    } else if (std::equal(before.begin(), before.end(), std::next(whole.begin(), added))) {
        std::fill_n(std::next(isKept.begin(), added), before.size(), true);
    } else {
        auto wanted = before.begin();
        auto kept = isKept.begin();
        for (auto entry = whole.begin(); entry != whole.end() && wanted != before.end(); ++entry) {
            *kept = *entry == *wanted;
            wanted = *kept++ ? std::next(wanted) : wanted;
        }
        if (wanted != before.end()) {  // Replaced: what is equal is so by chance.
            isKept.assign(whole.size(), false);
        }
    }
    return isKept;
}

// Levels that no step can have left behind by setting those of `store`.
void markTierLevels(TargetSpec& marked, const TargetSpec& store) {
    const DVConfigs& limits = Inspector::dvConfigs(store);
    DVConfigs& mark = Inspector::changeableDVConfigs(marked);
    mark.maxMainTierLevel = ~limits.maxMainTierLevel;
    mark.maxHighTierLevel = ~limits.maxHighTierLevel;
}

bool isMarked(const TargetSpec& marked, const TargetSpec& store) {
    TargetSpec unchanged;
    markTierLevels(unchanged, store);
    const DVConfigs& mark = Inspector::dvConfigs(unchanged);
    const DVConfigs& limits = Inspector::dvConfigs(marked);
    return limits.maxMainTierLevel == mark.maxMainTierLevel &&
           limits.maxHighTierLevel == mark.maxHighTierLevel;
}

// Compares the store of the system spec alone with the whole one, section by section.
class Comparison {
public:
    Comparison(const TargetSpec& whole, const LoadSteps& steps) : mWhole(whole), mSteps(steps) {
        mSteps.systemSpec(mBefore);
    }

    std::vector<SnapshotSection> sections() const {
        return {
                named("Features", "features", Inspector::features),
                named("Presets", "presets", Inspector::presets),
                named("Perf-lock words", "perfResourceValues", Inspector::perfResourceValues),
                list("Nimbra-mode bit rates", "nimbraModeBitRateTable",
                     Inspector::nimbraModeBitRateTable),
                set("Dolby Vision profiles", "dolbyVisionProfiles", "",
                    Inspector::dvConfigs(mBefore).profiles, Inspector::dvConfigs(mWhole).profiles),
                tierLevels(),
                list("Codec plug-ins", "codecPlugins", Inspector::codecPlugins),
                list("Pre-processing filters", "preprocessingFilters",
                     Inspector::preprocessingFilters),
                list("Encoder post-processing filters", "encPostProcessingFilters",
                     Inspector::encPostProcessingFilters),
                set("Codec components", "supportedCodecs", ": every component is enabled",
                    Inspector::supportedCodecs(mBefore), Inspector::supportedCodecs(mWhole)),
        };
    }

private:
    const std::string& origin(bool isKept) const {
        return isKept ? mSteps.systemSpecOrigin : mSteps.overlayOrigin;
    }

    template <typename Values>
    SnapshotSection named(const char* title, const char* key,
                          const Values& (*valuesOf)(const TargetSpec&)) const {
        SnapshotSection section = {title, key, SectionForm::Named, "", {}};
        const Values& before = valuesOf(mBefore);
        for (const auto& [name, value] : valuesOf(mWhole)) {
            const auto earlier = before.find(name);
            const bool isKept = earlier != before.end() && earlier->second == value;
            section.entries.push_back({name, toJson(value), toText(value), origin(isKept)});
        }
        return section;
    }

    template <typename List>
    SnapshotSection list(const char* title, const char* key,
                         const List& (*listOf)(const TargetSpec&)) const {
        SnapshotSection section = {title, key, SectionForm::List, "", {}};
        const List& whole = listOf(mWhole);
        const std::vector<bool> isKept = keptEntries(listOf(mBefore), whole);
        for (const auto& value : whole) {
            SnapshotEntry entry = toEntry(value);
            entry.origin = origin(isKept[section.entries.size()]);
            section.entries.push_back(std::move(entry));
        }
        return section;
    }

    template <typename Values>
    SnapshotSection set(const char* title, const char* key, const char* whenEmpty,
                        const Values& before, const Values& whole) const {
        SnapshotSection section = {title, key, SectionForm::Set, whenEmpty, {}};
        for (const auto& value :
             std::set<typename Values::value_type>(whole.begin(), whole.end())) {
            SnapshotEntry entry = toEntry(value);
            entry.origin = origin(before.count(value) != 0);
            section.entries.push_back(std::move(entry));
        }
        return section;
    }

    // Numbers that are always there. Two documents may set the same ones, and a document may set
    // those of an empty store, so each step is taken on a store that holds others: who sets them is
    // who changes those.
    std::string tierLevelOrigin() const {
        TargetSpec store;
        mSteps.systemSpec(store);
        markTierLevels(store, mWhole);
        mSteps.overlay(store);
        if (!isMarked(store, mWhole)) {
            return mSteps.overlayOrigin;
        }
        TargetSpec first;
        markTierLevels(first, mBefore);
        mSteps.systemSpec(first);
        return isMarked(first, mBefore) ? "no document" : mSteps.systemSpecOrigin;
    }

    SnapshotSection tierLevels() const {
        const DVConfigs& limits = Inspector::dvConfigs(mWhole);
        const std::string origin = tierLevelOrigin();
        const auto entry = [&](const char* key, int32_t level) {
            return SnapshotEntry{key, toJson(level), toText(level), origin};
        };
        return {"Dolby Vision tier levels",
                "dolbyVisionTierLevels",
                SectionForm::Named,
                "",
                {entry(targetSpecDVMaxMainTierLevel, limits.maxMainTierLevel),
                 entry(targetSpecDVMaxHighTierLevel, limits.maxHighTierLevel)}};
    }

    const TargetSpec& mWhole;
    const LoadSteps& mSteps;
    TargetSpec mBefore;  // After the first step.
};

}  // namespace

LoadSteps deviceSteps(const Load& load) {
    // The tool does not wait at a pipe, as a load does.
    const bool isPipe = load.systemSpec.isPipe;
    return {[isPipe](TargetSpec& store) {
                if (!isPipe) {
                    store.extractSpecData();
                }
            },
            [](TargetSpec& store) { store.extractPrivateData(); }, load.systemSpec.origin,
            load.overlay.origin};
}

std::vector<SnapshotSection> sectionsOf(const TargetSpec& whole, const LoadSteps& steps) {
    return Comparison(whole, steps).sections();
}

std::vector<SnapshotSection> loadedSections(const LoadSteps& steps) {
    TargetSpec store;
    steps.systemSpec(store);
    steps.overlay(store);
    return sectionsOf(store, steps);
}

std::string systemSpecStory(const Load& load) {
    if (!load.hasSystemSpec()) {
        return "none: neither " + load.firstPath + " nor " + kFallbackSystemSpec + " opens";
    }
    std::string story = load.systemSpec.path;
    if (load.systemSpec.path != load.firstPath) {
        story += " (fallback: " + load.firstPath + " does not open)";
    }
    if (load.systemSpec.isPipe) {
        return story + " (" + load.systemSpec.whyNotReadable + ")";
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

}  // namespace kc2::tool
