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
            {" tests/unit/check/load-bare --format markdown --dirmap-b "
             "/data/vendor/media:tests/unit/check/load-empty",
             1, "\nCodec components: B has no entries: every component is enabled\n"},
    };
    for (const auto& row : rows) {
        const Result result = run("diff" + row.arguments);
        EXPECT_EQ(row.exitCode, result.exitCode) << row.arguments << "\n" << result.output;
        EXPECT_NE(std::string::npos, result.output.find(row.text)) << row.arguments << "\n"
                                                                   << result.output;
    }
}

std::string inVideo(const std::string& sections) {
    return "{\"Video\": {" + sections + "}}";
}

// What no query shows is listed, but it is no difference. Each pair is compared in both directions.
TEST(DiffTest, WhatNoQueryShowsIsNoDifference) {
    const ScratchDirectory directory;
    const auto rows = [](const char* table) {
        return std::string("\"NimbraModeBitrateTable\": ") + table;
    };
    const std::string base = rows("[[0, 10, 1], [10, 20, 2]]");
    const std::string features = "\"Features\": {\"f\": ";
    const struct {
        std::string a;
        std::string b;
        size_t seen;
        size_t unseen;
    } pairs[] = {
            {"\"perf-resource-values\": {\"p\": []}", "", 0, 1},
            {"\"perf-resource-values\": {\"p\": []}",
             "\"perf-resource-values\": {\"p\": [\"0x1\"]}", 1, 0},
            {features + "false}", "", 0, 1},
            {features + "false}", features + "true}", 1, 0},
            {features + "true}", "", 1, 0},
            {"\"Presets\": {\"z\": 0}", "", 1, 0},
            // Rows that do not touch in another order, rows that overlap in another order.
            {base, rows("[[10, 20, 2], [0, 10, 1]]"), 0, 2},
            {rows("[[0, 15, 1], [10, 20, 2]]"), rows("[[10, 20, 2], [0, 15, 1]]"), 2, 0},
            {rows("[[0, 15, 1], [10, 20, 1]]"), rows("[[10, 20, 1], [0, 15, 1]]"), 0, 2},
            // Rows that no value reaches.
            {base, rows("[[0, 10, 1], [10, 20, 2], [5, 15, 3]]"), 0, 1},
            {base, rows("[[7, 7, 3], [0, 10, 1], [9, 3, 4], [10, 20, 2]]"), 0, 2},
            {base, rows("[[5, 15, 3], [0, 10, 1], [10, 20, 2]]"), 1, 0},
            {base, rows("[[0, 10, 7], [10, 20, 2], [5, 10, 3]]"), 2, 1},
            // A row in two parts of the same rate, of another rate, with a gap.
            {base, rows("[[0, 4, 1], [4, 10, 1], [10, 20, 2]]"), 0, 3},
            {base, rows("[[0, 4, 1], [4, 10, 5], [10, 20, 2]]"), 3, 0},
            {base, rows("[[0, 4, 1], [5, 10, 1], [10, 20, 2]]"), 3, 0},
            {rows("[[0, -1, 1]]"), rows("[[0, -2, 1]]"), 2, 0},
            // A row whose rate is the answer for values in no row.
            {base, rows("[[0, 10, 1], [10, 20, 2], [30, 40, -1]]"), 0, 1},
            // Lists and sets are returned whole.
            {"\"KC2CodecPlugins\": [\"a\", \"b\"]", "\"KC2CodecPlugins\": [\"b\", \"a\"]", 2, 0},
            {"\"KC2PreProcessingFilters\": [\"a\"]", "\"KC2PreProcessingFilters\": [\"a\", \"a\"]",
             1, 0},
            {"\"OptionalCodecs\": [\"a\", \"b\"]", "\"OptionalCodecs\": [\"b\", \"a\"]", 0, 0},
            {"\"OptionalCodecs\": [\"a\"]", "", 1, 0},
            {"\"DolbyVision\": {\"profiles\": [5]}", "\"DolbyVision\": {\"profiles\": [5, 5]}", 0,
             0},
            {"\"DolbyVision\": {\"max_main_tier_level\": 1}", "\"DolbyVision\": {}", 1, 0},
    };
    for (const auto& pair : pairs) {
        const std::string a = directory.write("a.json", inVideo(pair.a));
        const std::string b = directory.write("b.json", inVideo(pair.b));
        for (const std::string& documents : {a + " " + b, b + " " + a}) {
            const Result result = run("diff --json " + documents);
            const Json::Value root = parsed(result.output);
            EXPECT_EQ(pair.seen, root["differences"].size()) << pair.a << "\n" << result.output;
            EXPECT_EQ(pair.unseen, root["sameAnswers"].size()) << pair.b << "\n" << result.output;
            EXPECT_EQ(pair.seen == 0 ? 0 : 1, result.exitCode);
        }
    }
}

TEST(DiffTest, SaysWhatIsStoredDifferently) {
    const ScratchDirectory directory;
    const std::string a =
            directory.write("a.json", inVideo(R"("Features": {"f": false}, "Presets": {"p": 1},
                                  "NimbraModeBitrateTable": [[0, 10, 1]])"));
    const std::string b = directory.write(
            "b.json", inVideo(R"("NimbraModeBitrateTable": [[0, 4, 1], [4, 10, 1]])"));
    const Result result = run("diff " + a + " " + b);
    EXPECT_EQ(
            R"(
Presets (1)
  - p  1  document

Stored differently, same answers: Features (1)
  - f  off  document
      a private file could set it in B, but not in A

Stored differently, same answers: Nimbra-mode bit rates (3)
  - #1 [0, 10)  1  document
  + #1 [0, 4)   1  document
  + #2 [4, 10)  1  document
)",
            result.output.substr(std::min(result.output.find("\nPresets"), result.output.size())));
}

// A device ignores a rejected document, so two of them have no effect that could differ.
TEST(DiffTest, RejectedDocumentsAreNoMatch) {
    const ScratchDirectory directory;
    const std::string bad = directory.write("bad.json", "{");
    const std::string worse = directory.write("worse.json", "");
    const std::string none = directory.write("none.json", "{}");
    const std::string warning = "warning: the device ignores the system spec document of ";
    expectAnswers("diff ",
                  {
                          {bad + " " + worse, 2, "nothing to compare"},
                          {bad + " " + bad + " --json", 2, "nothing to compare"},
                          {bad + " " + none, 1, warning + bad},
                          {none + " " + bad, 1, "but a device rejects the document of B\n"},
                          {none + " " + bad + " --format markdown", 1,
                           "**no difference in effect, but a device rejects the document of B**"},
                          {bad + " " + none, 1, "but a device rejects the document of A\n"},
                          {none + " /dev/null", 0, "\nno difference in effect\n"},
                          {bad + " /dev/null", 1, warning + bad},
                          {"tests/unit/check/load-seeded tests/unit/check/load-seeded", 0,
                           warning + "tests/unit/check/load-seeded"},
                  });
}

// What git passes, to an external diff driver and by the line of docs/diff.md for git difftool.
TEST(DiffTest, GitNamesTheChipAndAlwaysGetsZero) {
    const ScratchDirectory directory;
    const std::string a = directory.write("a.json", inVideo(R"("Presets": {"p": 1})"));
    const std::string b = directory.write("b.json", inVideo(R"("Presets": {"p": 2})"));
    const std::string bad = directory.write("bad.json", "{");
    const std::string mirt = "odm/etc/media_mirt/video_system_specs.json ";
    const auto driver = [](const std::string& before, const std::string& after) {
        return before + " 0123456 100644 " + after + " 89abcde 100644";
    };
    const std::string one = "private overlay       built-in document 1\n";
    const std::string two = "private overlay       built-in document 2\n";
    expectAnswers(
            "diff --git ",
            {
                    {mirt + a + " " + b, 0, one},
                    {mirt + driver(a, b), 0, "  ~ p  1 -> 2  document\n"},
                    {mirt + driver(a, b) + " --format json", 0, "\"title\" : \"a/odm/etc"},
                    {mirt + driver("/dev/null", b), 0,
                     "A  /dev/null\n   system spec document  none\n"},
                    {mirt + driver(a, "/dev/null"), 0, "  - p  1  document\n"},
                    {mirt + driver(bad, b), 0, "specs.json (rejected)\n"},
                    {mirt + driver(bad, bad), 0, "nothing to compare"},
                    {mirt + driver(a, "/no/such/file"), 0, "/no/such/file cannot be read"},
                    {mirt + driver(a, b) + " vendor/etc/media_orvelle/x.json similarity", 0, two},
                    {mirt, 0, mirt.substr(0, mirt.size() - 1) + " is not merged\n"},
                    {mirt + driver(a, b) + " --variant-b _orvelle", 0, two},
                    // Directories above the device's own name no chip.
                    {"brel/vendor/etc/media_orvelle/x.json " + a + " " + b, 0, two},
                    {"specs/orvelle.json " + a + " " + b, 0, two},
                    {mirt + a, 2, "--git needs the arguments that git passes"},
                    {mirt + a + " " + b + " -- " + a, 2, "A and --git cannot be used together"},
            });
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

    // The same of rows, with which a query that finds nothing goes through all of them.
    std::string tables[2];
    for (uint32_t i = 0; i < 20000; ++i) {
        const std::string bounds = "[" + std::to_string(i) + "," + std::to_string(i) + ",";
        for (uint32_t side = 0; side < 2; ++side) {
            tables[side] += (i == 0 ? "" : ",") + bounds + std::to_string(side) + "]";
        }
    }
    const auto table = [](const std::string& rows) {
        return R"({"Video": {"NimbraModeBitrateTable": [)" + rows + "]}}";
    };
    const Result rows = run("diff " + directory.write("a.json", table(tables[0])) + " " +
                            directory.write("b.json", table(tables[1])));
    EXPECT_EQ(1, rows.exitCode);
    EXPECT_NE(std::string::npos, rows.output.find("too long to compare what they return"));
    EXPECT_NE(std::string::npos, rows.output.find("\nNimbra-mode bit rates (40000)\n"));
}

}  // namespace

}  // namespace kc2::test
