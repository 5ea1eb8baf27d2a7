// A store as sections of entries, and which load step each entry came from: what commands show.

#include "store/StoreSnapshot.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <set>

#include "base/Text.h"
#include "catalogue/SectionTexts.h"
#include "kc2/TargetSpecKeys.h"
#include "store/Merge.h"
#include "targetspec/TargetSpecInspector.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

using Inspector = TargetSpecInspector;

Json::Value toJson(Json::Value value) {
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
    return {fmt::format("[{}, {})", row.low, row.high), json, std::to_string(row.bitRate), ""};
}

// Whether a step sets the tier levels that it results in. A store always has levels, and a document
// may set them to the values that they have already, so `store` gets others first.
bool setsTierLevels(const std::function<void(TargetSpec&)>& step, const DVConfigs& result,
                    TargetSpec* store) {
    const int32_t main = ~result.maxMainTierLevel;
    const int32_t high = ~result.maxHighTierLevel;
    DVConfigs& levels = Inspector::changeableDVConfigs(*store);
    levels.maxMainTierLevel = main;
    levels.maxHighTierLevel = high;
    step(*store);
    return levels.maxMainTierLevel != main || levels.maxHighTierLevel != high;
}

// Compares the store of the system spec alone with the whole one, section by section.
class Comparison {
public:
    Comparison(const TargetSpec& store, const LoadSteps& steps) : mStore(store), mSteps(steps) {
        mSteps.systemSpec(mBeforeStore);
        mBefore = Inspector::contentOf(mBeforeStore);
        mWhole = Inspector::contentOf(store);
    }

    std::vector<SnapshotSection> sections() const {
        std::map<const SectionText*, SnapshotSection> inOrder;
        forEachContainer([&](const char* const* key, auto member) {
            const SectionText* const text = textOfSection(*key);  // The table has one for each.
            SnapshotSection section = {
                    text->title, text->jsonKey, SectionForm::Named, text->whenEmpty, {}};
            addEntries(mBefore.*member, mWhole.*member, &section);
            inOrder.emplace(text, std::move(section));
        });
        std::vector<SnapshotSection> sections;
        for (auto& [text, section] : inOrder) {
            sections.push_back(std::move(section));
        }
        return sections;
    }

private:
    const std::string& origin(bool isKept) const {
        return isKept ? mSteps.systemSpecOrigin : mSteps.overlayOrigin;
    }

    template <typename Value>
    void addEntries(const std::map<std::string, Value>& before,
                    const std::map<std::string, Value>& whole, SnapshotSection* section) const {
        for (const auto& [name, value] : whole) {
            const auto earlier = before.find(name);
            const bool isKept = earlier != before.end() && earlier->second == value;
            section->entries.push_back({name, toJson(value), toText(value), origin(isKept)});
        }
    }

    // A list, or a set, which is shown in order.
    template <typename Values>
    void addEntries(const Values& before, const Values& whole, SnapshotSection* section) const {
        const auto add = [&](const auto& value, bool isKept) {
            section->entries.push_back(toEntry(value));
            section->entries.back().origin = origin(isKept);
        };
        if constexpr (requires { typename Values::key_type; }) {
            section->form = SectionForm::Set;
            for (const auto& value : std::set(whole.begin(), whole.end())) {
                add(value, before.count(value) != 0);
            }
        } else {
            section->form = SectionForm::List;
            const std::vector<bool> isKept = keptEntries(before, whole);
            for (const auto& value : whole) {
                add(value, isKept[section->entries.size()]);
            }
        }
    }

    void addEntries(const std::optional<TierLevels>& /*before*/,
                    const std::optional<TierLevels>& whole, SnapshotSection* section) const {
        const std::string from = tierLevelOrigin();
        const auto entry = [&](const char* key, int32_t level) {
            return SnapshotEntry{key, toJson(level), toText(level), from};
        };
        section->entries = {entry(targetSpecDVMaxMainTierLevel, whole->main),
                            entry(targetSpecDVMaxHighTierLevel, whole->high)};
    }

    std::string tierLevelOrigin() const {
        TargetSpec store;
        mSteps.systemSpec(store);
        if (setsTierLevels(mSteps.overlay, Inspector::dvConfigs(mStore), &store)) {
            return mSteps.overlayOrigin;
        }
        TargetSpec first;
        return setsTierLevels(mSteps.systemSpec, Inspector::dvConfigs(mBeforeStore), &first)
                       ? mSteps.systemSpecOrigin
                       : "no document";
    }

    const TargetSpec& mStore;
    const LoadSteps& mSteps;
    TargetSpec mBeforeStore;  // After the first step.
    SpecDocument mBefore;     // Its content.
    SpecDocument mWhole;
};

}  // namespace

LoadSteps deviceSteps(const Load& load) {
    // The tool does not wait at a pipe, as a load does.
    const bool isPipe = load.hasSystemSpec() && load.systemSpec->isPipe;
    return {[isPipe](TargetSpec& store) {
                if (!isPipe) {
                    store.extractSpecData();
                }
            },
            [](TargetSpec& store) { store.extractPrivateData(); },
            load.hasSystemSpec() ? load.systemSpec->origin : "", load.overlay->origin};
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

}  // namespace kc2::tool
