// kcodec2_spec explain: every kind of name, and that the checks' examples are right.

#include <gtest/gtest.h>
#include <json/value.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>

#include "RunTool.h"
#include "catalogue/HeaderTexts.h"
#include "check/CheckRows.h"

namespace kc2::test {

namespace {

// One document in a scratch directory, written byte by byte.
void writeTo(const ScratchDirectory& scratch, const std::string& name, const char* text) {
    std::ofstream(scratch.path() + "/" + name, std::ios::binary) << text;
}

// Each example has its mistake, and its fixed form has none. Every check that a document of
// tests/unit/check can reach has an example.
TEST(ExplainTest, AnExampleHasItsMistakeAndItsFixedFormDoesNot) {
    const ScratchDirectory scratch;
    const std::string reached = run("check tests/unit/check/*.json").output;
    for (const tool::Check& check : tool::kChecks) {
        const std::string id = check.id;
        if (*check.mistake != '\0') {
            writeTo(scratch, id + ".bad", check.mistake);
            writeTo(scratch, id + ".good", check.fixed);
        } else {
            EXPECT_TRUE(reached.find("[" + id + "]") == std::string::npos ||
                        id == "nesting-too-deep")
                    << id;
        }
    }
    const Json::Value report =
            parsed(run("check --format json " + scratch.path() + "/*.bad").output);
    std::map<std::string, std::string> findings;
    for (const Json::Value& finding : report["findings"]) {
        const std::string path = finding["path"].asString();
        findings[path.substr(path.rfind('/') + 1)] += describe(finding);
    }
    const Result fixed = run("check " + scratch.path() + "/*.good");
    std::string text;
    for (const tool::Check& check : tool::kChecks) {
        const std::string id = check.id;
        const size_t found = findings[id + ".bad"].find(" [" + id + "]\n");
        EXPECT_EQ(*check.mistake != '\0', found != std::string::npos) << id;
        text += *check.mistake != '\0' ? id + "\n" + findings[id + ".bad"] : "";
    }
    EXPECT_EQ("0 errors, 0 warnings, 0 notes\n", fixed.output);
    EXPECT_EQ(0, fixed.exitCode);
    expectFile("examples.txt", text);
}

TEST(ExplainTest, ExplainsEveryKindOfName) {
    const std::string device =
            " --rootdir tests/unit/check/load-traps --property vendor.media.target_variant=";
    expectAnswers(
            "explain ",
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
                    {"'Skipped Video/Presets/a: not a boolean'", 0,
                     "  values    Video/Presets/a, not a boolean\n"},
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
                    {"'not a boolean'", 0, "Skipped %s in %s: %s"},
                    {"real-truncatd", 1, "Did you mean real-truncated?"},
                    {"nv12", 1, "Did you mean TAMRA_NV12?"},
                    {"P01", 1, "Did you mean TAMRA_P010?"},
                    {"Featuers", 1, "Did you mean Features?"},
                    {"P0", 1, "unknown name \"P0\".\n"},
                    {"complexity", 1, "Did you mean private_complexity?"},
                    {"c2.kvx.avc", 1, "Did you mean c2.kvx.avc.decoder or c2.kvx.avc.encoder?"},
                    // Names are near as in "check", and other words for a codec are known.
                    {"private_max_render_rate", 1, "private_max_supported_render_rate?"},
                    {"private_perf_res_vals_video_enc", 1, "values_video_encode?"},
                    {"private_slice_size_MB_Mode", 1,
                     "Did you mean private_max_slice_size_MB_Mode or "
                     "private_min_slice_size_MB_Mode?"},
                    {"private_enc_bitrate", 1, "Did you mean private_enc_all_intra_bitrate?"},
                    {"private_zoom", 1, "unknown name \"private_zoom\".\n"},
                    {"h264", 1, "Did you mean c2.kvx.avc.decoder?"},
                    {"c2.kvx.h265.enc", 1, "Did you mean c2.kvx.hevc.encoder?"},
                    {"c2.kvx.mpeg2.decoder", 1, "unknown name \"c2.kvx.mpeg2.decoder\".\n"},
                    {"'\x1b[31m'", 1, "unknown name \"\\x1B[31m\""},
                    {"no_such_name" + device, 1, "no document sets it"},
            });
}

// What the library does is said by its headers, which the tool contains.
TEST(ExplainTest, ExplainsNamesBesideDocuments) {
    expectAnswers(
            "explain ",
            {
                    {"mirt", 0, "  chip      built-in document 1; \"kcodec2_spec defaults 1\""},
                    {"orvelle", 0, "c2.kvx.mvhevc.decoder\n"},
                    {"vendor.media.target_variant", 0, "  see       readTargetVariant: "},
                    {"kcodec2_test", 0,
                     "  see       extractPrivateData: Where the codec test tool"},
                    {"/vendor/bin/kcodec2_test", 0, "is first seeded with"},
                    {"/data/vendor/media/video_private_configs.json", 0,
                     "extractPrivateData: Second"},
                    {"/odm/etc/media_x/video_system_specs.json", 0, "extractSpecData: First step"},
                    {"isFeatureEnabled", 0, "  returns   the switch of the feature"},
                    {"'kc2::TargetSpec::getPresetValue()'", 0, "  value     receives the preset;"},
                    {"Get", 0, "            Safe to call from any thread. Threads that arrive"},
                    {"AlignmentFor", 0, "  returns   the alignment of buffer sizes"},
                    {"SPEC_NO_LIST", 0, "SPEC_NO_LIST = -2\n  meaning   The output list is null"},
                    {"0xFFFFFFFF", 0, "getNimbraModeBitRateValue: the row's bit rate"},
                    {"4294967295", 0, "0xFFFFFFFF\n  see       "},
                    {"-- -1", 0, "0xFFFFFFFF\n  see       "},
                    {"Y", 0, "  meaning   luma\n  format    TAMRA_NV12\n"},
                    {"RGB_META", 0, "  format    RGBA1010102_CMPR\n"},
                    {"'not an integer in the signed 32-bit range'", 0,
                     "  check     tier-level-not"},
                    {"'W/KC2TargetSpec( 4): Skipped Video/Presets/a in the system spec: not an "
                     "integer "
                     "in the signed 32-bit range'",
                     0, "  check     preset-not-integer: "},
                    {"perf", 0, "  group     of checks: Perf words\n  check     perf-odd-length: "},
                    {"codec", 0, "  check     codec-misspelt: "},
                    {".secure", 0, "  component c2.kvx.avc.decoder.secure\n"},
                    {".low_latency", 0, "  check     variant-without-base: "},
                    {"0xFFFFFFFE", 1, "unknown name"},
                    {"secure", 1, "unknown name"},
            });
}

// Each comment is read with its declaration, and none is lost.
TEST(ExplainTest, EachCommentOfTheHeadersHasItsName) {
    const std::regex commented(R"((\w+)(?: = -?\w+)?[;,] +///<|\*/\n[^;{(=/]*?(\w+)[(;])");
    size_t count = 0;
    for (const auto& file : std::filesystem::directory_iterator(KC2_SOURCE_DIR "/include/kc2")) {
        const std::string header = readFile(file.path());
        for (std::sregex_iterator at(header.begin(), header.end(), commented);
             at != std::sregex_iterator(); ++at) {
            const std::string name = (*at)[1].str() + (*at)[2].str();
            EXPECT_FALSE(tool::headerTextsOf(name).empty()) << name;
            ++count;
        }
    }
    EXPECT_LT(60u, count);
    std::string texts;
    for (const tool::HeaderText& text : tool::headerTexts()) {
        texts += text.name + ": " + text.declaration + "\n";
        for (const tool::HeaderParagraph& paragraph : text.paragraphs) {
            texts += "    " + paragraph.title + ": " + paragraph.text + "\n";
        }
    }
    expectFile("header-texts.txt", texts);
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
