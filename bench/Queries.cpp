// Get() and the queries, each beside its floor.

#include <fstream>
#include <memory>

#include <json/value.h>

#include "bench/Documents.h"
#include "bench/Floors.h"
#include "bench/Operation.h"
#include "kc2/TargetSpec.h"

namespace kc2::bench {

namespace {

constexpr int kManyRuns = 1000;

// A document's content once more, in bare containers that were filled in the same order as the
// store's.
struct Bare {
    std::map<std::string, bool> features;
    std::map<std::string, int32_t> presets;
    std::map<std::string, std::vector<uint32_t>> perfValues;
    std::vector<NimbraBitRateEntry> rows;
    std::list<std::string> plugins;
    std::unordered_set<std::string> codecs;
};

std::list<std::string> namesOf(const Json::Value& array) {
    std::list<std::string> names;
    for (const Json::Value& name : array) {
        names.push_back(name.asString());
    }
    return names;
}

Bare readBare(const std::string& text, TargetSpec& store) {
    Json::Value root;
    floors::parse(text, &root);
    const Json::Value& video = root["Video"];
    Bare bare;
    for (const std::string& name : video["Features"].getMemberNames()) {
        bare.features[name] = video["Features"][name].asBool();
    }
    for (const std::string& name : video["Presets"].getMemberNames()) {
        bare.presets[name] = video["Presets"][name].asInt();
    }
    for (const std::string& name : video["perf-resource-values"].getMemberNames()) {
        bare.perfValues[name] = store.getPerfResourceValues(name);
    }
    for (const Json::Value& row : video["NimbraModeBitrateTable"]) {
        bare.rows.push_back({row[0].asUInt(), row[1].asUInt(), row[2].asUInt()});
    }
    bare.plugins = namesOf(video["KC2CodecPlugins"]);
    bare.codecs = store.getSupportedCodecs();
    return bare;
}

struct Subject {
    TargetSpec store;
    Bare bare;

    explicit Subject(const Document& document) {
        std::ifstream stream(document.path);
        store.parseJsonData(stream);
        bare = readBare(document.text, store);
    }
};

// Looks up each name of a container, then as many that it does not hold.
template <typename Map, typename Lookup>
void lookUpAll(const Map& names, const std::vector<std::string>& unknownNames, Lookup lookup) {
    for (const auto& entry : names) {
        lookup(entry.first);
    }
    for (const std::string& name : unknownNames) {
        lookup(name);
    }
}

template <typename Map>
std::vector<std::string> unknownNames(const Map& names) {
    std::vector<std::string> unknown;
    unknown.reserve(names.size());
    for (const auto& entry : names) {
        unknown.push_back(entry.first + "_");
    }
    return unknown;
}

template <typename Bare, typename Library, typename Floor>
void addLookup(Operations& operations, const std::string& name, const Bare& names, Library library,
               Floor floor) {
    const auto unknown = std::make_shared<std::vector<std::string>>(unknownNames(names));
    operations.push_back({name, kManyRuns, [=, &names] { lookUpAll(names, *unknown, library); }});
    operations.push_back(
            {name + "/floor", kManyRuns, [=, &names] { lookUpAll(names, *unknown, floor); }});
}

}  // namespace

Operations queryOperations() {
    // Never destroyed: the operations refer to them. The first has content in every container.
    static Subject& subject = *new Subject(documentNamed("100 entries"));
    static Subject& richest = *new Subject(richestDocument());
    Operations operations;
    operations.push_back({"Get", kManyRuns, [] { keep(TargetSpec::Get()); }});
    operations.push_back({"Get/floor", kManyRuns, [] { keep(floors::readPointer()); }});

    for (Subject* const each : {&richest, &subject}) {
        TargetSpec& store = each->store;
        const Bare& bare = each->bare;
        const std::string suffix = each == &subject ? " (100 entries)" : "";
        addLookup(
                operations, "isFeatureEnabled" + suffix, bare.features,
                [&](const std::string& name) { keep(store.isFeatureEnabled(name)); },
                [&](const std::string& name) { keep(floors::findFeature(bare.features, name)); });
        addLookup(
                operations, "getPresetValue" + suffix, bare.presets,
                [&](const std::string& name) {
                    int value = 0;
                    keep(store.getPresetValue(name, &value));
                },
                [&](const std::string& name) {
                    int value = 0;
                    keep(floors::findPreset(bare.presets, name, &value));
                });
    }
    TargetSpec& store = subject.store;
    const Bare& bare = subject.bare;
    addLookup(
            operations, "getPerfResourceValues", bare.perfValues,
            [&](const std::string& name) { keep(store.getPerfResourceValues(name)); },
            [&](const std::string& name) {
                const auto words = bare.perfValues.find(name);
                keep(words != bare.perfValues.end() ? floors::copyWords(words->second)
                                                    : std::vector<uint32_t>());
            });
    // The last row's value, so that every row is looked at.
    operations.push_back({"getNimbraModeBitRateValue", kManyRuns, [&] {
                              unsigned int value = bare.rows.back().high - 1;
                              keep(store.getNimbraModeBitRateValue(&value));
                          }});
    operations.push_back({"getNimbraModeBitRateValue/floor", kManyRuns, [&] {
                              unsigned int value = bare.rows.back().high - 1;
                              keep(floors::findBitRate(bare.rows, &value));
                          }});
    operations.push_back({"getDVConfigs", kManyRuns, [&] { keep(&store.getDVConfigs()); }});
    operations.push_back({"getDVConfigs/floor", kManyRuns, [] { keep(floors::readPointer()); }});
    operations.push_back({"getCodecPlugins", kManyRuns, [&] {
                              std::list<std::string> plugins;
                              store.getCodecPlugins(&plugins);
                              keep(plugins);
                          }});
    operations.push_back({"getCodecPlugins/floor", kManyRuns, [&] {
                              std::list<std::string> plugins;
                              floors::appendNames(bare.plugins, &plugins);
                              keep(plugins);
                          }});
    operations.push_back(
            {"getSupportedCodecs", kManyRuns, [&] { keep(store.getSupportedCodecs()); }});
    operations.push_back(
            {"getSupportedCodecs/floor", kManyRuns, [&] { keep(floors::copyNames(bare.codecs)); }});
    return operations;
}

}  // namespace kc2::bench
