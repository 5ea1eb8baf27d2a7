// kcodec2_spec diff: what it reports about two loads.

#include <gtest/gtest.h>
#include <json/value.h>

#include <algorithm>
#include <string>

#include "RunTool.h"

namespace kc2::test {

namespace {

constexpr char kOldDocument[] = R"({"Video": {
    "Features": {"gone": true, "turned": false},
    "Presets": {"private_complexity": 60, "kept": 1, "first_wins": 5},
    "NimbraModeBitrateTable": [[0, 10, 1], [10, 20, 2], [20, 30, 3]],
    "KC2CodecPlugins": ["a", "b", "c", "b"],
    "DolbyVision": {"profiles": [5, 10], "max_main_tier_level": 3},
    "perf-resource-values": {"p": ["0x1", "0x2"]},
    "OptionalCodecs": ["c2.x"]}})";
constexpr char kNewDocument[] = R"({"Video": {
    "Presets": {"kept": 1, "private_complexity": 70, "new": -1, "first_wins": 5},
    "Features": {"turned": true},
    "NimbraModeBitrateTable": [[0, 10, 1], [15, 20, 2], [20, 30, 3], [30, 40, 4]],
    "KC2CodecPlugins": ["b", "c", "x\u001b[31m", "b"],
    "DolbyVision": {"profiles": [10], "max_main_tier_level": 3},
    "perf-resource-values": {"p": ["0x1", "0x3"]},
    "OptionalCodecs": ["c2.x", "c2.y"]}})";

TEST(DiffTest, ReportsEachChangeOnce) {
    const ScratchDirectory directory;
    const std::string documents = directory.write("old.json", kOldDocument) + " " +
                                  directory.write("new.json", kNewDocument);
    const Result text = run("diff " + documents);
    EXPECT_EQ(1, text.exitCode);
    EXPECT_EQ(R"(
Features (2)
  - gone    on         document
  ~ turned  off -> on  document

Presets (2)
  ~ private_complexity  60 -> 70  document
      default complexity advertised by the driver (100 for saliency)
  + new                 -1        document

Perf-lock words (1)
  ~ p  0x1=0x2 -> 0x1=0x3  document

Nimbra-mode bit rates (3)
  - #2 [10, 20)  2  document
  + #2 [15, 20)  2  document
  + #4 [30, 40)  4  document

Dolby Vision profiles (1)
  - 5  document

Codec plug-ins (2)
  - #1 a          document
  + #3 x\x1B[31m  document

Codec components (1)
  + c2.y  document
)",
              text.output.substr(std::min(text.output.find("\nFeatures"), text.output.size())));

    const Json::Value root = parsed(run("diff --json " + documents).output);
    ASSERT_EQ(12U, root["differences"].size());
    const Json::Value& complexity = root["differences"][2];
    EXPECT_EQ("presets", complexity["section"].asString());
    EXPECT_EQ("private_complexity", complexity["name"].asString());
    EXPECT_EQ(60, complexity["old"]["value"].asInt());
    EXPECT_EQ(70, complexity["new"]["value"].asInt());
    EXPECT_EQ("document", complexity["new"]["from"].asString());
    EXPECT_NE("", complexity["meaning"].asString());
    const Json::Value& row = root["differences"][6];
    EXPECT_EQ(1U, row["new"]["index"].asUInt());
    EXPECT_EQ(15U, row["new"]["value"]["low"].asUInt());
    EXPECT_TRUE(row["old"].isNull());
}

TEST(DiffTest, ComparesEffectsNotTexts) {
    const ScratchDirectory directory;
    const auto write = [&](const char* name, const std::string& text) {
        return " " + directory.write(name, text);
    };
    // The same value as in the built-in document, so only its origin changes.
    const std::string plain = write("a.json", R"({"Video": {"Presets": {"x": 1}}})");
    const std::string moved =
            write("b.json",
                  "/* later */ {\"Video\": {\"Presets\": {\"private_complexity\": "
                  "50, \"x\": 1.5}}} // truncated");
    const std::string rejected = write("c.json", "{");
    const struct {
        std::string arguments;
        int exitCode;
        const char* text;
    } rows[] = {
            {plain + moved, 0, "\nno difference in effect\n"},
            {moved + plain, 0, "\nno difference in effect\n"},
            {plain + rejected, 1, "c.json (rejected)\n"},
            {plain + " none.json", 2, "none.json"},
            {plain + " --variant-a _mirt --variant-b _orvelle", 1,
             "overlay       built-in document 2"},
            {plain + " --variant-a _mirt", 1, "  + c2.kvx.mvhevc.decoder  "},
            {plain + " /dev/stdin < " + directory.path() + "/b.json", 0, "no difference"},
            {plain + " --property-b x", 2, "not of the form NAME=VALUE"},
            {" examples/device examples/device", 0, "no difference"},
            {" examples/device --variant-b _orvelle", 1,
             "/odm/etc/media_orvelle/video_system_specs"},
            {" tests/unit/check/load-bare --dirmap-b "
             "/data/vendor/media:tests/unit/check/load-empty",
             1, "  B has no entries: every component is enabled\n"},
    };
    for (const auto& row : rows) {
        const Result result = run("diff" + row.arguments);
        EXPECT_EQ(row.exitCode, result.exitCode) << row.arguments << "\n" << result.output;
        EXPECT_NE(std::string::npos, result.output.find(row.text)) << row.arguments << "\n"
                                                                   << result.output;
    }
}

TEST(DiffTest, IsColouredOnATerminalOnly) {
    const std::string arguments =
            "diff targetspec/defaults/built_in_document_1.json "
            "targetspec/defaults/built_in_document_2.json";
    EXPECT_NE(std::string::npos,
              runOnTerminal(arguments, 80, "TERM=xterm").output.find("\033[33m~"));
    for (const char* environment : {"TERM=dumb", "TERM=xterm NO_COLOR=1"}) {
        EXPECT_EQ(std::string::npos, runOnTerminal(arguments, 80, environment).output.find('\033'));
    }
}

// The time for long lists that differ everywhere must not grow with the product of their lengths.
TEST(DiffTest, LongListsAreComparedInGoodTime) {
    const ScratchDirectory directory;
    std::string lists[2];
    for (int i = 0; i < 40000; ++i) {
        lists[0] += (i == 0 ? "\"a" : ", \"a") + std::to_string(i) + "\"";
        lists[1] += (i == 0 ? "\"b" : ", \"b") + std::to_string(i) + "\"";
    }
    const auto document = [](const std::string& list) {
        return R"({"Video": {"KC2CodecPlugins": [)" + list + "]}}";
    };
    const Result result = run("diff " + directory.write("a.json", document(lists[0])) + " " +
                              directory.write("b.json", document(lists[1])));
    EXPECT_EQ(1, result.exitCode);
    EXPECT_NE(std::string::npos, result.output.find("Codec plug-ins (80000)"));
}

}  // namespace

}  // namespace kc2::test
