// The load, beside what the format's parser takes for the same bytes.

#include <json/value.h>

#include <fstream>
#include <memory>
#include <optional>

#include "bench/Documents.h"
#include "bench/Floors.h"
#include "bench/Operation.h"
#include "kc2/TargetSpec.h"

namespace kc2::bench {

namespace {

// A load needs a store that holds nothing yet, and a stream that nobody has read.
struct Load {
    std::string path;
    std::unique_ptr<TargetSpec> store;
    std::ifstream stream;

    void prepare() {
        store = std::make_unique<TargetSpec>();
        stream.close();
        stream.clear();
        stream.open(path);
    }
};

}  // namespace

Operations firstGetOperations() {
    return {
            // What nobody can do without: the file's bytes and their parse, for both documents.
            {"first Get/floor", 1,
             [] {
                 for (const Document* const document : {&richestDocument(), &documents().front()}) {
                     Json::Value root;
                     floors::parse(floors::readFile(document->path.c_str()), &root);
                 }
             },
             [] {}},
            {"first Get", 1, [] { keep(TargetSpec::Get()); }, [] {}},
    };
}

Operations loadOperations() {
    Operations operations;
    for (const Document& document : documents()) {
        const std::string name = "load " + document.name;
        const auto load = std::make_shared<Load>();
        load->path = document.path;
        operations.push_back({name, 1, [load] { load->store->parseJsonData(load->stream); },
                              [load] { load->prepare(); }});
        // The parse alone, and with the release of its tree: whoever parses pays for both.
        const auto root = std::make_shared<std::optional<Json::Value>>();
        operations.push_back({name + "/floor", 1,
                              [root, &document] { floors::parse(document.text, &root->emplace()); },
                              [root] { root->reset(); }});
        operations.push_back({name + "/parse and release", 1,
                              [&document] {
                                  Json::Value released;
                                  floors::parse(document.text, &released);
                              },
                              [] {}});
    }
    return operations;
}

Operations repeatableOperations() {
    Operations all;
    for (Operations (*const operations)() :
         {queryOperations, formatOperations, loadOperations, otherParserOperations}) {
        for (Operation& operation : operations()) {
            all.push_back(std::move(operation));
        }
    }
    return all;
}

}  // namespace kc2::bench
