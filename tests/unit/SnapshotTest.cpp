// The store as the tool shows it: every section is there, and each entry has the right origin.

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <regex>
#include <sstream>
#include <string>

#include "Device.h"
#include "RunTool.h"
#include "store/StoreSnapshot.h"
#include "targetspec/reading/Sections.h"

namespace kc2::test {

namespace {

using tool::SnapshotSection;

tool::LoadSteps stepsOf(const std::string& first, const std::string& second) {
    return {[first](TargetSpec& store) { parse(store, first); },
            [second](TargetSpec& store) { parse(store, second); }, "1", "2"};
}

// "name:text:origin" of each entry, section by section.
std::map<std::string, std::string> shownOf(const TargetSpec& whole, const tool::LoadSteps& steps) {
    const Device device;  // Keeps the log.
    std::map<std::string, std::string> shown;
    for (const SnapshotSection& section : tool::sectionsOf(whole, steps)) {
        for (const tool::SnapshotEntry& entry : section.entries) {
            shown[section.key] += entry.name + ":" + entry.text + ":" + entry.origin + " ";
        }
    }
    return shown;
}

// What is shown after the library has merged `first` and then `second`.
std::map<std::string, std::string> shownOf(const std::string& first, const std::string& second) {
    const tool::LoadSteps steps = stepsOf(first, second);
    TargetSpec whole;
    steps.systemSpec(whole);
    steps.overlay(whole);
    return shownOf(whole, steps);
}

std::string document(const std::string& sections) {
    return "{\"Video\": {" + sections + "}}";
}

constexpr char kFirst[] = R"({"Video": {
    "Features": {"a": true, "b": true}, "Presets": {"a": 1},
    "NimbraModeBitrateTable": [[0, 1, 2]], "KC2CodecPlugins": ["p", "q"],
    "DolbyVision": {"profiles": [5, 8], "max_main_tier_level": 9},
    "codecs-available": {"decoders": ["c"]}}})";
constexpr char kSecond[] = R"({"Video": {
    "Features": {"a": false, "b": true, "c": false}, "Presets": {"a": 2, "b": -3},
    "perf-resource-values": {"e": ["0x1", "0x2"], "f": []},
    "NimbraModeBitrateTable": [[1, 2, 3], [0, 1, 2]], "KC2CodecPlugins": ["p", "p"],
    "DolbyVision": {"profiles": [8, 9], "max_main_tier_level": 9},
    "OptionalCodecs": ["c", "a"]}})";

TEST(SnapshotTest, EachEntryHasTheDocumentThatSetIt) {
    auto shown = shownOf(kFirst, kSecond);
    EXPECT_EQ("a:on:1 b:on:1 c:off:2 ", shown["features"]);
    EXPECT_EQ("a:1:1 b:-3:2 ", shown["presets"]);
    EXPECT_EQ("e:0x1=0x2:2 f:(none):2 ", shown["perfResourceValues"]);
    EXPECT_EQ("[0, 1):2:1 [1, 2):3:2 [0, 1):2:2 ", shown["nimbraModeBitRateTable"]);
    EXPECT_EQ("p::1 q::1 p::2 p::2 ", shown["codecPlugins"]);
    EXPECT_EQ("5::1 8::1 9::2 ", shown["dolbyVisionProfiles"]);
    EXPECT_EQ("a::2 c::1 ", shown["supportedCodecs"]);
    const auto levels = [](const std::string& first, const std::string& second) {
        return shownOf(document(first), document(second))["dolbyVisionTierLevels"];
    };
    const std::string section = R"("DolbyVision": {})";
    const std::string same = R"("DolbyVision": {"max_main_tier_level": 9})";
    EXPECT_EQ("max_main_tier_level:0:no document max_high_tier_level:0:no document ",
              levels("", ""));
    EXPECT_EQ("max_main_tier_level:0:1 max_high_tier_level:0:1 ", levels(section, ""));
    EXPECT_EQ("max_main_tier_level:0:2 max_high_tier_level:0:2 ", levels("", section));
    EXPECT_EQ("max_main_tier_level:9:2 max_high_tier_level:0:2 ", levels(same, same));
}

// The origins must be right for a library with other merge rules. Merged in reverse order, the
// second document wins, and its entries come first.
TEST(SnapshotTest, HasNoMergeRules) {
    const tool::LoadSteps steps = stepsOf(kFirst, kSecond);
    TargetSpec whole;
    steps.overlay(whole);
    steps.systemSpec(whole);
    auto shown = shownOf(whole, steps);
    EXPECT_EQ("a:off:2 b:on:1 c:off:2 ", shown["features"]);
    EXPECT_EQ("a:2:2 b:-3:2 ", shown["presets"]);
    EXPECT_EQ("[1, 2):3:2 [0, 1):2:2 [0, 1):2:1 ", shown["nimbraModeBitRateTable"]);
    EXPECT_EQ("p::2 p::2 p::1 q::1 ", shown["codecPlugins"]);
    EXPECT_EQ("a::2 c::1 ", shown["supportedCodecs"]);
    // A list that the second document replaces comes from it, whatever the first one contained.
    TargetSpec replaced;
    steps.overlay(replaced);
    EXPECT_EQ("p::2 p::2 ", shownOf(replaced, steps)["codecPlugins"]);
}

// The smallest content of a section that is not empty.
const char* contentOf(SectionType type) {
    switch (type) {
        case SectionType::Features:
            return R"({"a": false})";
        case SectionType::Presets:
            return R"({"a": 0})";
        case SectionType::BitRateRows:
            return "[[0, 0, 0]]";
        case SectionType::DolbyVision:
            return "{}";
        case SectionType::PerfResourceValues:
            return R"({"a": []})";
        case SectionType::CodecLists:
            return R"({"encoders": [""]})";
        case SectionType::Names:
        case SectionType::CodecNames:
            return R"([""])";
    }
    return "";
}

// A document with a single section must appear in at least one section.
TEST(SnapshotTest, ShowsEverySection) {
    const auto empty = shownOf("{}", "{}");
    for (const Section& section : kSections) {
        const std::string text =
                document("\"" + std::string(*section.key) + "\": " + contentOf(section.type));
        EXPECT_NE(empty, shownOf(text, "{}")) << *section.key;
        EXPECT_NE(empty, shownOf("{}", text)) << *section.key;
    }
}

struct Merge {
    SectionType type;
    const char* first;   // The section in one document,
    const char* second;  // and in a later one.
    const char* shown;
    // What people read about it.
    const char* onThePage;
    const char* explained;
};

constexpr Merge kMerges[] = {
        {SectionType::Features, R"({"a": true})", R"({"a": false})", "a:on:1 ",
         "keeps its first value", "keeps its value"},
        {SectionType::Presets, R"({"a": 1})", R"({"a": 2})", "a:1:1 ", "keeps its first value",
         "keeps its value"},
        {SectionType::PerfResourceValues, R"({"a": ["1"]})", R"({"a": ["2"]})", "a:0x1:1 ",
         "keeps its first value", "keeps its value"},
        {SectionType::BitRateRows, "[[0, 1, 2]]", "[[0, 1, 2]]", "[0, 1):2:1 [0, 1):2:2 ",
         "appends rows", "appends rows"},
        {SectionType::Names, R"(["a"])", R"(["a"])", "a::1 a::2 ", "appends", "appends"},
        {SectionType::DolbyVision, R"({"max_main_tier_level": 1, "max_high_tier_level": 1})",
         R"({"max_main_tier_level": 2})", "max_main_tier_level:2:2 max_high_tier_level:0:2 ",
         "replaces both", "replaces both levels"},
        {SectionType::DolbyVision, R"({"profiles": [1]})", R"({"profiles": [1, 2]})", "1::1 2::2 ",
         "adds to the set", "adds profiles"},
        {SectionType::CodecLists, R"({"decoders": ["a"]})", R"({"encoders": ["a", "b"]})",
         "a::1 b::2 ", "adds component names to one set", "make one set"},
        {SectionType::CodecNames, R"(["a"])", R"(["a", "b"])", "a::1 b::2 ",
         "adds component names to one set", "make one set"},
};

// A change to a merge rule fails here until the texts about it are changed, too.
TEST(SnapshotTest, ThePagesSayHowEachSectionMerges) {
    const std::string page = readFile(KC2_SOURCE_DIR "/docs/documents.md");
    const size_t start = page.find("## What merges how");
    const std::string table = page.substr(start, page.find("\n> ", start) - start);
    for (const Section& section : kSections) {
        const std::string key = *section.key;
        const std::string explained = run("explain " + key).output;
        int count = 0;
        for (const Merge& merge : kMerges) {
            if (merge.type != section.type) {
                continue;
            }
            const auto inSection = [&](const char* content) {
                return document("\"" + key + "\": " + content);
            };
            bool isShown = false;
            for (const auto& [name, entries] :
                 shownOf(inSection(merge.first), inSection(merge.second))) {
                isShown |= entries == merge.shown;
            }
            EXPECT_TRUE(isShown) << key << " must show " << merge.shown;
            bool isOnThePage = false;
            std::istringstream rows(table);
            for (std::string row; std::getline(rows, row);) {
                isOnThePage |= row.find("`" + key + "`") != std::string::npos &&
                               row.find(merge.onThePage) != std::string::npos;
            }
            EXPECT_TRUE(isOnThePage) << key << ": " << merge.onThePage;
            EXPECT_NE(std::string::npos, explained.find(merge.explained)) << key << explained;
            ++count;
        }
        EXPECT_LT(0, count) << key;
    }
    // The page names each chip, with its built-in document.
    const std::string numbers = run("defaults 99").output;  // "... 1 (brel, mirt), 2 (..."
    const std::regex chip("[(,] ?([a-z]+)(?=[,)])");
    const std::sregex_iterator first(numbers.begin(), numbers.end(), chip);
    EXPECT_LT(2, std::distance(first, {}));
    for (auto found = first; found != std::sregex_iterator(); ++found) {
        EXPECT_NE(std::string::npos, page.find("`" + (*found)[1].str() + "`")) << (*found)[1];
    }
}

}  // namespace

}  // namespace kc2::test
