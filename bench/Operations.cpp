// The operations: the first Get(), the queries, the formats, loads, parsers, the initialisers.

#include <dlfcn.h>
#include <link.h>
#include <rapidjson/document.h>
#include <simdjson.h>

#include <fstream>
#include <memory>
#include <optional>
#include <regex>

#include <json/value.h>

#include "bench/Bench.h"
#include "bench/Floors.h"
#include "hostplatform/HostPlatform.h"
#include "kc2/TargetSpec.h"
#include "platform/FormatRows.h"
#include "targetspec/TargetSpecInspector.h"

namespace kc2::bench {

namespace {

using Inspector = TargetSpecInspector;
using Platform::TamraBufferLayout;

struct List {
    std::vector<Operation> operations;

    template <typename Run, typename Floor>
    void add(const std::string& name, Run run, Floor floor) {
        operations.push_back({name, 1000, run});
        operations.push_back({name + "/floor", 1000, floor});
    }

    // Each is called with all of the values in turn.
    template <typename Value, typename Run, typename Floor>
    void addOver(const std::string& name, const std::vector<Value>& values, Run run, Floor floor) {
        const auto all = std::make_shared<std::vector<Value>>(values);
        const auto over = [all](auto each) {
            return [all, each] { std::for_each(all->begin(), all->end(), each); };
        };
        add(name, over(run), over(floor));
    }

    // Of a single run each, which `prepare` makes ready.
    void addPrepared(
            const std::string& name, std::function<void()> run,
            std::function<void()> prepare = [] {}) {
        operations.push_back({name, 1, std::move(run), std::move(prepare)});
    }
};

// The names of a container, then as many that are not in it.
template <typename Map>
std::vector<std::string> namesFor(const Map& map) {
    std::vector<std::string> names;
    for (const char* const suffix : {"", "_"}) {
        for (const auto& entry : map) {
            names.push_back(entry.first + suffix);
        }
    }
    return names;
}

TargetSpec& storeOf(const Document& document) {
    TargetSpec& store = *new TargetSpec();  // Never destroyed: operations refer to it.
    std::ifstream stream(document.path);
    store.parseJsonData(stream);
    return store;
}

void addGet(List& list, const std::vector<Document>& documents, const std::string& root) {
    // Only this one needs files at a device's paths. scripts/check-performance.py subtracts the
    // cost of resolving them in a mapped tree.
    list.addPrepared(
            "first Get", [] { keep(TargetSpec::Get()); },
            [root] { host::mapDirectory("/", root); });
    // What every load has to do: read the files' bytes and parse them.
    list.addPrepared("first Get/floor", [&documents] {
        for (const size_t file : {0, 1}) {
            Json::Value root;
            floors::parse(floors::readFile(documents[file].path.c_str()), &root);
        }
    });
    list.add(
            "Get", [] { keep(TargetSpec::Get()); }, [] { keep(floors::readPointer()); });
}

void addMapQueries(List& list, TargetSpec& store, const std::string& suffix) {
    const auto& features = Inspector::features(store);
    list.addOver(
            "isFeatureEnabled" + suffix, namesFor(features),
            [&](const std::string& name) { keep(store.isFeatureEnabled(name)); },
            [&](const std::string& name) { keep(floors::findFeature(features, name)); });
    const auto& presets = Inspector::presets(store);
    list.addOver(
            "getPresetValue" + suffix, namesFor(presets),
            [&](const std::string& name) {
                int value = 0;
                keep(store.getPresetValue(name, &value));
            },
            [&](const std::string& name) {
                int value = 0;
                keep(floors::findPreset(presets, name, &value));
            });
}

void addOtherQueries(List& list, TargetSpec& store) {
    const auto& perfValues = Inspector::perfResourceValues(store);
    list.addOver(
            "getPerfResourceValues", namesFor(perfValues),
            [&](const std::string& name) { keep(store.getPerfResourceValues(name)); },
            [&](const std::string& name) { keep(floors::findWords(perfValues, name)); });
    // The last row's value, so that every row is compared.
    const auto& rows = Inspector::nimbraModeBitRateTable(store);
    static unsigned int value = rows.empty() ? 0 : rows.back().high - 1;
    list.add(
            "getNimbraModeBitRateValue", [&] { keep(store.getNimbraModeBitRateValue(&value)); },
            [&] { keep(floors::findBitRate(rows, &value)); });
    list.add(
            "getDVConfigs", [&] { keep(&store.getDVConfigs()); },
            [] { keep(floors::readPointer()); });
    list.add(
            "getCodecPlugins",
            [&] {
                std::list<std::string> plugins;
                store.getCodecPlugins(&plugins);
                keep(plugins);
            },
            [&] {
                std::list<std::string> plugins;
                floors::appendNames(Inspector::codecPlugins(store), &plugins);
                keep(plugins);
            });
    list.add(
            "getSupportedCodecs", [&] { keep(store.getSupportedCodecs()); },
            [&] { keep(floors::copyNames(Inspector::supportedCodecs(store))); });
}

void addFormats(List& list) {
    using Plane = std::pair<uint32_t, TamraBufferLayout::PlaneID>;
    std::vector<uint32_t> formats;
    std::vector<Plane> planes;
    static floors::Planes& barePlanes = *new floors::Planes();
    for (const Platform::FormatRow& row : Platform::kFormatRows) {
        formats.push_back(*row.format);
        barePlanes[*row.format].insert(row.planes.begin(), row.planes.end());
        for (const TamraBufferLayout::PlaneID plane : row.planes) {
            planes.emplace_back(*row.format, plane);
        }
    }
    const std::vector<uint32_t> noFormats = {0, 0x127, 0x12A, 0x7FA30C05, 0xC2000002, 0xFFFFFFFF};
    const auto map = [](uint32_t format) { keep(TamraBufferLayout::FormatMap(format)); };
    const auto choose = [](uint32_t format) { keep(floors::switchOverFormats(format)); };
    list.addOver("FormatMap", formats, map, choose);
    list.addOver("FormatMap (no format)", noFormats, map, choose);
    list.addOver(
            "Offset", planes,
            [](const Plane& plane) {
                keep(TamraBufferLayout::Offset(plane.first, plane.second, 1920, 1080));
            },
            [](const Plane& plane) {
                keep(floors::findPlane(barePlanes, plane.first, plane.second));
            });
    list.addOver(
            "Offset (no format)", noFormats,
            [](uint32_t format) {
                keep(TamraBufferLayout::Offset(format, TamraBufferLayout::Y, 1920, 1080));
            },
            [](uint32_t format) {
                keep(floors::findPlane(barePlanes, format, TamraBufferLayout::Y));
                keep(floors::logUnknownFormat(format));
            });
}

void addLoad(List& list, const Document& document) {
    // A load needs an empty store, and a stream that has not been read.
    struct Load {
        TargetSpec store;
        std::ifstream stream;
    };
    const auto load = std::make_shared<std::unique_ptr<Load>>();
    list.addPrepared(
            "load " + document.path, [load] { (*load)->store.parseJsonData((*load)->stream); },
            [load, &document] {
                *load = std::make_unique<Load>();
                (*load)->stream.open(document.path);
            });
    // The parse alone, and with the release of its tree, which every user of the parser needs.
    const auto root = std::make_shared<std::optional<Json::Value>>();
    list.addPrepared(
            "load " + document.path + "/floor",
            [root, &document] { floors::parse(document.text, &root->emplace()); },
            [root] { root->reset(); });
    list.addPrepared("parse and release " + document.path, [&document] {
        Json::Value released;
        floors::parse(document.text, &released);
    });
}

// The packaged JSON parsers that are called fast. They read neither comments nor leading zeros, so
// they get the text without them; generated documents, which are longer, have none.
void addOtherParsers(List& list, const Document& document) {
    static const std::regex loose(
            R"(("(?:\\.|[^"\\])*")|//.*|/\*(?:[^*]|\*(?!/))*\*/|\b0+(?=[0-9]))");
    const auto text = std::make_shared<simdjson::padded_string>(
            document.text.size() > 20000 ? document.text
                                         : std::regex_replace(document.text, loose, "$1"));
    list.addPrepared("RapidJSON " + document.path, [text] {
        rapidjson::Document root;
        if (root.Parse(text->data(), text->size()).HasParseError()) {
            std::abort();
        }
        keep(root);
    });
    list.addPrepared("simdjson " + document.path, [text] {
        simdjson::dom::parser parser;
        if (parser.parse(*text).error() != simdjson::SUCCESS) {
            std::abort();
        }
    });
}

// Runs the library's load-time initialisers once more, as its dynamic section lists them. The
// process must then end without exit handlers: those of the first run are registered twice.
void addInitialisers(List& list) {
    Dl_info info = {};
    link_map* library = nullptr;
    if (dladdr1(reinterpret_cast<void*>(&TamraBufferLayout::FormatMap), &info,
                reinterpret_cast<void**>(&library), RTLD_DL_LINKMAP) == 0) {
        std::abort();
    }
    std::vector<void (*)()> initialisers;
    ElfW(Addr) start = 0;
    for (const ElfW(Dyn)* entry = library->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_INIT_ARRAY) {
            start = library->l_addr + entry->d_un.d_ptr;
        } else if (entry->d_tag == DT_INIT_ARRAYSZ) {
            initialisers.resize(entry->d_un.d_val / sizeof(initialisers[0]));
        }
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the dynamic section has it as a number.
    std::copy_n(reinterpret_cast<void (**)()>(start), initialisers.size(), initialisers.begin());
    list.addPrepared("load-time initialisers", [initialisers] {
        for (void (*const initialise)() : initialisers) {
            initialise();
        }
    });
}

}  // namespace

std::vector<Operation> operations(const std::vector<Document>& documents, const std::string& root) {
    List list;
    addGet(list, documents, root);
    addMapQueries(list, storeOf(documents[0]), "");
    TargetSpec& store = storeOf(documents[2]);
    addMapQueries(list, store, " (100 entries)");
    addOtherQueries(list, store);
    addFormats(list);
    for (const Document& document : documents) {
        addLoad(list, document);
        addOtherParsers(list, document);
    }
    addInitialisers(list);
    return list.operations;
}

}  // namespace kc2::bench
