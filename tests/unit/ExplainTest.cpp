// kcodec2_spec explain: every kind of name, and that the checks' examples are right.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "RunTool.h"
#include "check/Checks.h"

namespace kc2::test {

namespace {

// One document in a scratch directory, written byte by byte.
void writeTo(const ScratchDirectory& scratch, const std::string& name, const char* text) {
    std::ofstream(scratch.path() + "/" + name, std::ios::binary) << text;
}

std::vector<std::string> allChecks() {
    std::vector<std::string> ids;
    std::istringstream list(run("check --list").output);
    for (std::string line; std::getline(list, line);) {
        if (line.starts_with("  ")) {
            ids.push_back(line.substr(2, line.find(' ', 2) - 2));
        }
    }
    return ids;
}

// Whether a report has a finding of that check, in a file whose name ends so.
bool isReported(const std::string& report, const std::string& id, const std::string& file = "") {
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(file + ":") != std::string::npos && line.ends_with("[" + id + "]")) {
            return true;
        }
    }
    return false;
}

TEST(ExplainTest, AnExampleHasItsMistakeAndTheFixedOneHasNot) {
    const ScratchDirectory scratch;
    // All checks that a document can reach; a change that adds one adds a document with it.
    const std::string reached = run("check tests/unit/check/*.json").output;
    std::vector<std::string> ids;
    for (const std::string& id : allChecks()) {
        const tool::Check* const check = tool::findCheck(id);
        ASSERT_NE(nullptr, check) << id;
        const bool isShown = *check->mistake != '\0';
        EXPECT_TRUE(isShown || !isReported(reached, id) || id == "nesting-too-deep") << id;
        if (isShown) {
            writeTo(scratch, id + ".bad", check->mistake);
            writeTo(scratch, id + ".good", check->fixed);
            ids.push_back(id);
        }
    }
    const std::string report = run("check " + scratch.path() + "/*.bad").output;
    const std::string mended = run("check " + scratch.path() + "/*.good").output;
    for (const std::string& id : ids) {
        EXPECT_TRUE(isReported(report, id, "/" + id + ".bad")) << id;
        EXPECT_FALSE(isReported(mended, id, "/" + id + ".good")) << id;
    }
    EXPECT_NE(std::string::npos, mended.find("\n0 errors, 0 warnings")) << mended;
}

TEST(ExplainTest, ExplainsEveryKindOfName) {
    const std::string device =
            " --rootdir tests/unit/check/load-traps --property vendor.media.target_variant=";
    expectAnswers("explain ",
                  {
                          {"private_complexity", 0, "  built-in  50 (brel, mirt, document 1)\n"},
                          {"private_set_cpu_affinity", 0,
                           "  built-in  not set (brel, mirt, document 1)\n"},
                          {"private_perf_resource_values_video_decode", 0,
                           "  built-in  [\"0x40800000\",\"0x5DC\"] (other chips, document 3)\n"},
                          {"DolbyVision", 0, "replaces both levels"},
                          {"TAMRA_TP10", 0, "Y UV Y_META UV_META"},
                          {"0x7FA30C09", 0, "TAMRA_TP10"},
                          {"real-truncated", 0, "  fixed     {\"Video\": {\"Presets\""},
                          {"'parse json from file'", 0,
                           "Couldn't parse json from file stream\n  log       E"},
                          {"'E/KC2TargetSpec( 4): Failed to open /x... Exit!'", 0,
                           "Failed to open %s... Exit!"},
                          {"'Skipped Video/Presets/a in the system spec: not an integer'", 0,
                           "Skipped %s in %s: %s\n"},
                          // Whole lines with their values and headers, and parts of lines.
                          {"'0x127 is not a Tamra color format!'", 0, "  values    0x127\n"},
                          {"'11-25 08:00:01.120  6  6 E Platform_BufferLayout: Format A does not "
                           "contain plane-7'",
                           0, "  values    A, 7\n"},
                          {"'I/KC2TargetSpec( 4):        private_enc_cvp_enable    : 1'", 0,
                           "  values    private_enc_cvp_enable, 1\nprivate_enc_cvp_enable\n"},
                          {"'private_complexity : 60'", 0, "private_complexity\n  meaning"},
                          {"'not a boolean'", 0, "Skipped %s in %s: %s\n"},
                          {"real-truncatd", 1, "Did you mean real-truncated?"},
                          {"nv12", 1, "Did you mean TAMRA_NV12?"},
                          {"'\x1b[31m'", 1, "about \"\\x1B[31m\""},
                          {"no_such_name" + device, 1, "no document sets it"},
                  });
}

// The first document that sets a name wins; the other's value is reported as lost.
TEST(ExplainTest, ShowsWhichDocumentSetsANameAndWhichLoses) {
    const ScratchDirectory scratch;
    const std::string system = "/vendor/etc/media";
    const std::string data = "/data/vendor/media";
    std::filesystem::create_directories(scratch.path() + system);
    std::filesystem::create_directories(scratch.path() + data);
    writeTo(scratch, system + "/video_system_specs.json",
            R"({"Video": {"Presets": {"both": 1, "first": 2}}})");
    writeTo(scratch, data + "/video_private_configs.json",
            R"({"Video": {"Presets": {"both": 3, "last": 4}, "OptionalCodecs": ["c2.a.b.decoder"]}})");
    const std::string spec = "system spec, /vendor/etc/media/video_system_specs.json: ";
    const std::string file = "private file, /data/vendor/media/video_private_configs.json: ";
    const struct {
        const char* name;
        std::string text;
    } rows[] = {
            {"both", "set by the system spec\n            " + spec + "Presets: 1\n            " +
                             file + "Presets: 3 (has no effect)\n"},
            {"first", "set by the system spec\n            " + spec + "Presets: 2\n"},
            {"last", "set by the private file\n            " + file + "Presets: 4\n"},
            {"c2.a.b.decoder", "set by the private file\n            " + file + "lists it\n"},
    };
    for (const auto& row : rows) {
        const auto [output, exitCode] =
                run(std::string("explain ") + row.name + " --rootdir " + scratch.path());
        EXPECT_EQ(0, exitCode);
        EXPECT_NE(std::string::npos, output.find(row.text)) << output;
    }
}

}  // namespace

}  // namespace kc2::test
