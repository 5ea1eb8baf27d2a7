// Fuzz target: does `kcodec2_spec check` report about a document what the library does with it?

#include <android/log.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "catalogue/KnownSettings.h"
#include "check/Check.h"
#include "check/rules/Entries.h"
#include "hostplatform/HostPlatform.h"
#include "kc2/TargetSpecKeys.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/StoreContent.h"

namespace kc2::fuzz {

namespace {

size_t sErrors = 0;
size_t sWarnings = 0;

void countLine(int priority, const char* /*tag*/, const char* /*text*/) {
    sErrors += priority == ANDROID_LOG_ERROR ? 1 : 0;
    sWarnings += priority == ANDROID_LOG_WARN ? 1 : 0;
}

// Loads the text with the library into an empty store.
uint32_t parse(const std::string& text, StoreContent* content) {
    static const int file = memfd_create("document", MFD_CLOEXEC);
    const auto size = static_cast<off_t>(text.size());
    require(ftruncate(file, size) == 0 && pwrite(file, text.data(), text.size(), 0) == size,
            "the text can be written");
    std::ifstream stream("/proc/self/fd/" + std::to_string(file));
    TargetSpec store;
    const uint32_t status = store.parseJsonData(stream);
    *content = contentOf(store);
    return status;
}

template <typename Map>
bool hasNames(const Map& values, const tool::Document& document, const char* section) {
    std::set<std::string> names;
    for (const tool::Node* const node : tool::usedElements(document, section)) {
        names.emplace(node->key);
    }
    return std::equal(values.begin(), values.end(), names.begin(), names.end(),
                      [](const auto& value, const auto& name) { return value.first == name; });
}

size_t countUsed(const tool::Document& document, const char* section) {
    return tool::usedElements(document, section).size();
}

// What the store has, and what the tree says is used.
void compare(const tool::Document& document, const StoreContent& store) {
    require(hasNames(store.features, document, targetSpecFeatures), "the same features");
    require(hasNames(store.presets, document, targetSpecPresets), "the same presets");
    require(hasNames(store.perfResourceValues, document, targetSpecPerfResourceValues),
            "the same perf words");
    require(store.nimbraModeBitRateTable.size() == countUsed(document, targetSpecNimbraModeBitRate),
            "as many rows");
    require(store.codecPlugins.size() == countUsed(document, targetSpecCodecPlugins),
            "as many plug-ins");
    require(store.preprocessingFilters.size() ==
                    countUsed(document, targetSpecPreProcessingFilters),
            "as many filters");
    require(store.encPostProcessingFilters.size() ==
                    countUsed(document, targetSpecSupportedEncPostProcessingFilters),
            "as many filters of the encoders");
    size_t components = countUsed(document, targetSpecOptionalCodecs);
    if (const tool::Node* const lists = document.section(targetSpecSupportedCodecs)) {
        for (const tool::Node& list : lists->children) {
            components += static_cast<size_t>(
                    std::count_if(list.children.begin(), list.children.end(),
                                  [](const tool::Node& name) { return name.isUsed(); }));
        }
    }
    require(store.supportedCodecs.size() <= components, "no component that the tree lacks");
}

// Every verdict is about a node of the tree, but for those about the text as a whole.
void requireJoined(const tool::Document& document) {
    for (const tool::Verdict& verdict : document.verdicts) {
        require(verdict.start <= verdict.limit, "a verdict has a place in the text");
        const tool::Node* const node = tool::findValueAt(document.tree.root, verdict.start);
        require(!document.isJson() || (node != nullptr && node->value.limit == verdict.limit),
                "a verdict is about a node");
    }
}

// The fixes of syntax errors, made together, give a text that the parser accepts.
void checkFixes(const tool::Document& document) {
    std::vector<tool::Fix> fixes;
    for (const tool::SyntaxHint& error : document.tree.errors) {
        fixes.insert(fixes.end(), error.fixes.begin(), error.fixes.end());
    }
    require(fixes.empty() ||
                    tool::Document({}, tool::withFixes(document.text, std::move(fixes))).isJson(),
            "a text with its fixes made is accepted");
}

void check(const std::string& text) {
    static const tool::KnownSettings& known =
            *new tool::KnownSettings(tool::loadCatalogue({}).value_or(tool::Catalogue()));
    sErrors = 0;
    sWarnings = 0;
    StoreContent store;
    const bool isAccepted = parse(text, &store) == 0;
    const tool::Document document({.path = "document"}, text);
    require(document.isAccepted == isAccepted, "both accept the document, or none");
    const auto logged = static_cast<size_t>(std::count_if(
            document.verdicts.begin(), document.verdicts.end(), [](const tool::Verdict& verdict) {
                return rowOf(verdict.kind).effect == Effect::SkipsAndLogs;
            }));
    require(!isAccepted || sWarnings == logged, "what the tool reports as logged is logged");
    require(sErrors == (isAccepted ? 0 : 1), "a rejected document writes one error line");
    requireJoined(document);
    checkFixes(document);

    tool::Report report{tool::Levels()};
    tool::check(tool::Checked(document, known), &report);
    if (isAccepted) {
        compare(document, store);
    } else {
        require(store == StoreContent(), "a rejected document changes nothing");
        require(report.count(tool::Severity::Error) != 0, "the tool reports a rejection");
    }
}

}  // namespace

}  // namespace kc2::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    [[maybe_unused]] static const bool isSetUp = [] {
        kc2::host::setLogSink(kc2::fuzz::countLine);
        kc2::host::setProperty("vendor.media.target_variant", "_fuzz");
        return true;
    }();
    kc2::fuzz::check(std::string(data, data + size));
    return 0;
}
