// A store as sections of entries, and which load step each entry came from: what commands show.

#include "store/StoreSnapshot.h"

#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <unordered_set>

#include "base/Spelling.h"
#include "base/Text.h"
#include "catalogue/SectionTexts.h"
#include "kc2/TargetSpecKeys.h"
#include "store/Merge.h"
#include "targetspec/TargetSpecInspector.h"
#include "targetspec/reading/Sections.h"

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

// Sets levels that differ from those of `store`: a step that sets the latter is then noticed.
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

    template <typename List>
    void addListEntries(const List& before, const List& whole, SnapshotSection* section) const {
        section->form = SectionForm::List;
        const std::vector<bool> isKept = keptEntries(before, whole);
        for (const auto& value : whole) {
            SnapshotEntry entry = toEntry(value);
            entry.origin = origin(isKept[section->entries.size()]);
            section->entries.push_back(std::move(entry));
        }
    }
    void addEntries(const std::list<std::string>& before, const std::list<std::string>& whole,
                    SnapshotSection* section) const {
        addListEntries(before, whole, section);
    }
    void addEntries(const std::vector<NimbraBitRateEntry>& before,
                    const std::vector<NimbraBitRateEntry>& whole, SnapshotSection* section) const {
        addListEntries(before, whole, section);
    }

    template <typename Set>
    void addSetEntries(const Set& before, const Set& whole, SnapshotSection* section) const {
        section->form = SectionForm::Set;
        for (const auto& value : std::set<typename Set::value_type>(whole.begin(), whole.end())) {
            SnapshotEntry entry = toEntry(value);
            entry.origin = origin(before.count(value) != 0);
            section->entries.push_back(std::move(entry));
        }
    }
    void addEntries(const std::set<uint32_t>& before, const std::set<uint32_t>& whole,
                    SnapshotSection* section) const {
        addSetEntries(before, whole, section);
    }
    void addEntries(const std::unordered_set<std::string>& before,
                    const std::unordered_set<std::string>& whole, SnapshotSection* section) const {
        addSetEntries(before, whole, section);
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

    // A store always has levels, and a document may set them to the values that they have already.
    // So each step is repeated on a store with other levels: the document that changes those sets
    // them.
    std::string tierLevelOrigin() const {
        TargetSpec store;
        mSteps.systemSpec(store);
        markTierLevels(store, mStore);
        mSteps.overlay(store);
        if (!isMarked(store, mStore)) {
            return mSteps.overlayOrigin;
        }
        TargetSpec first;
        markTierLevels(first, mBeforeStore);
        mSteps.systemSpec(first);
        return isMarked(first, mBeforeStore) ? "no document" : mSteps.systemSpecOrigin;
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
