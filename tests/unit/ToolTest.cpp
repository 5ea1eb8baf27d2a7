// The host tool, run as its users run it.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "RunTool.h"
#include "check/CheckRows.h"
#include "platform/FormatRows.h"
#include "targetspec/reading/Limits.h"

namespace kc2::test {

namespace {

TEST(ToolTest, EachCommandRuns) {
    const std::string tree = "show --rootdir examples/device ";
    const std::string variant = "--property vendor.media.target_variant=";
    expectAnswers(
            "",
            {
                    {tree + variant + "_orvelle", 0, "max_main_tier_level  9  system spec\n"},
                    {tree + variant + "_orvelle", 0, "libkc2_plugin_frame_dump.so  private file\n"},
                    {tree + variant + "_orvelle", 0,
                     "private_perf_resource_values_video_encode  0x40800000=0xFFF 0x40C00000=0x1  "
                     "system"},
                    {tree + "--log info", 0, "I/KC2TargetSpec("},
                    {"show --rootdir tests " + variant + "_mirt", 0,
                     "built-in document 1 (\"mirt\" in the"},
                    {"show --json --rootdir examples/device", 0, "\"private_complexity\" : \n"},
                    {"show --rootdir no/such/directory", 2,
                     "Directory does not exist: no/such/directory"},
                    {"show --dirmap vendor:examples", 2, "not of the form /PREFIX:DIR"},
                    {"show --property name", 2, "not of the form NAME=VALUE"},
                    {"show --colour", 2, "--colour"},
                    {"show --log warn", 2, "\"warn\" is neither quiet, info nor debug"},
                    {"show --rootdir examples/device > /dev/full", 2, ""},
                    {"check --disable unreadable none.json", 2,
                     "\"unreadable\" is always an error"},
                    {"", 2, "subcommand is required"},
                    {"--help", 0, "Exit codes:"},
                    {"defaults 1", 0, "Built-in document 1"},
                    {"defaults --variant _orvelle", 0, "Built-in document 2"},
                    {"defaults 4", 2,
                     "there is no built-in document 4: 1 (brel, mirt), 2 (orvelle), 3 (all"},
                    {"formats", 0,
                     "TAMRA_TP10                0x7FA30C09  2141391881  5       Y UV Y_META"},
                    {"formats 2141391881", 0, "TAMRA_TP10"},
                    {"formats 0x7fa30c09", 0, "TAMRA_TP10"},
                    {"formats 0X07FA30C09", 0, "TAMRA_TP10"},
                    {"formats 7FA30C09", 1, "7FA30C09 is"},
                    {"formats 0x", 1, "0x is"},
                    {"formats 0x17FA30C09", 1, "0x17FA30C09 is"},
                    {"formats 0x7FA30C09h", 1, "0x7FA30C09h is"},
                    {"formats -- -1040187392", 0, "RGBA8888_CMPR"},
                    {"formats TAMRA_TP1", 1, "Did you mean TAMRA_TP10?"},
                    {"formats nv12", 1, "Did you mean TAMRA_NV12?"},
                    // A third of the letters plus one may be wrong, but no more.
                    {"formats RGBA_xxxx", 1, "Did you mean RGBA_FP16?"},
                    {"formats RGBAxxxxx", 1, "\"kcodec2_spec formats\" lists them."},
                    {"show --rootdir tests/unit/check/load-variant " + variant + "trail", 0,
                     "/vendor/etc/video_system_specs.json (fallback: /vendor/etc/mediatrail/"},
                    {"formats 0x127", 1,
                     "0x127 is not a pixel format of the video core. \"kcodec2_spec formats\""},
                    {"formats 026", 1, "026 is not a pixel format"},
                    {"formats rgba_fp16", 0, "RGBA_FP16"},
                    {"chek", 2, "not expected: chek. Did you mean check?"},
                    {"check --fromat json", 2, "Did you mean --format?"},
                    {"--version", 0, "kcodec2_spec "},
                    {"check --rootdir examples/device README.md", 2, "--rootdir"},
            });
}

// tests/unit/check/ has documents and device trees, each with its report in expected/.
TEST(ToolTest, EachTrapIsReportedAtItsPlace) {
    const std::filesystem::path directory = KC2_SOURCE_DIR "/tests/unit/check";
    std::vector<std::pair<std::string, std::string>> checks = {
            // Arguments, report.
            {"--rootdir load-traps --property vendor.media.target_variant=_test", "load-traps"},
            {"--rootdir load-variant --property vendor.media.target_variant=trail", "load-variant"},
            {"--rootdir load-variant --property vendor.media.target_variant=/trial",
             "load-misspelt"},
            {"--rootdir load-seeded --property vendor.media.target_variant=_mirt", "load-seeded"},
            {"--rootdir load-bare --property vendor.media.target_variant=_orvelle", "load-bare"},
            {"--rootdir load-bare --dirmap /data/vendor/media:load-empty", "load-empty"},
            {"--rootdir load-rejected", "load-rejected"},
            {"no-codecs.json no-video.json --format json", "json"},
    };
    // Every field of the store for scripts, with the document that set it.
    EXPECT_EQ(readFile(directory / "expected/show.txt"),
              run("show --json --rootdir load-traps --property vendor.media.target_variant=_test",
                  "tests/unit/check")
                      .output);
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() == ".json") {
            checks.emplace_back(entry.path().filename(), entry.path().stem());
        }
    }
    EXPECT_LT(20u, checks.size());
    for (const auto& [arguments, name] : checks) {
        const std::string report = readFile(directory / "expected" / (name + ".txt"));
        EXPECT_NE("", report) << name;
        const Result result = run("check --disable mode " + arguments, "tests/unit/check");
        EXPECT_EQ(report, result.output) << arguments;
        EXPECT_EQ(report.find(": error: ") != std::string::npos ? 1 : 0, result.exitCode) << name;
    }
}

// A device whose /vendor and /odm are links, and links that lead out of the tree.
TEST(ToolTest, LinksStayInTheTree) {
    namespace fs = std::filesystem;
    std::string pattern = fs::temp_directory_path() / "kc2-links-XXXXXX";
    const fs::path top = mkdtemp(pattern.data());
    const fs::path root = top / "root";
    const fs::path vendorMedia = root / "system/vendor/etc/media";
    fs::create_directories(vendorMedia);
    fs::create_directories(root / "system/vendor/odm/etc/media_a");
    fs::create_directory_symlink("/system/vendor", root / "vendor");
    fs::create_directory_symlink("/vendor/odm", root / "odm");
    const std::string name = "video_system_specs.json";
    const auto write = [](const fs::path& path, const std::string& feature) {
        std::ofstream(path) << R"({"Video":{"Features":{")" + feature + R"(":true}}})";
    };
    write(top / name, "outside");
    write(root / "system/vendor/odm/etc/media_a" / name, "feature_a");
    const auto link = [&](const std::string& variant, const fs::path& target) {
        fs::create_directories(vendorMedia.string() + variant);
        fs::create_symlink(target, vendorMedia.string() + variant + "/" + name);
    };
    link("_absolute", "/odm/etc/media_a/" + name);
    link("_relative", "../../odm/etc/media_a/" + name);
    link("_host", top / name);
    link("_up", "../../../../../../../../.." + (top / name).string());
    link("_loop", "/vendor/etc/media_loop/" + name);
    link("_none", "/nowhere");
    link("_file", "/odm/etc/media_a/" + name + "/../" + name);
    const struct {
        const char* variant;
        bool isRead;
    } rows[] = {{"_a", true},   {"_absolute", true}, {"_relative", true}, {"_host", false},
                {"_up", false}, {"_loop", false},    {"_none", false},    {"_file", false}};
    for (const auto& row : rows) {
        const Result result = run("show --rootdir " + root.string() +
                                  " --property vendor.media.target_variant=" + row.variant);
        EXPECT_EQ(row.isRead, result.output.find("feature_a") != std::string::npos)
                << row.variant << "\n"
                << result.output;
        EXPECT_EQ(std::string::npos, result.output.find("outside")) << row.variant;
    }
    // A mapped directory, with a link to a directory that no option maps.
    const std::string vendorOnly = "show --dirmap /vendor:" + (root / "system/vendor").string() +
                                   " --property vendor.media.target_variant=";
    EXPECT_NE(std::string::npos, run(vendorOnly + "_relative").output.find("feature_a"));
    EXPECT_EQ(std::string::npos, run(vendorOnly + "_host").output.find("outside"));
    fs::remove_all(top);
}

TEST(ToolTest, WhatShipsHasNoMistakes) {
    for (const char* what :
         {"targetspec/defaults/*.json examples/device/*/etc/*/*.json", "--rootdir examples/device",
          "--rootdir examples/device --property vendor.media.target_variant=_orvelle",
          "--rootdir examples/image", "--rootdir examples/image --all-variants",
          "--rootdir examples/consumer/device --property vendor.media.target_variant=/kestrel",
          "--rootdir tests/unit/check/load-bare --property vendor.media.target_variant=_orvelle "
          "--disable spec-missing"}) {
        const Result result = run(std::string("check --werror ") + what);
        EXPECT_EQ(0, result.exitCode) << what << "\n" << result.output;
    }
    EXPECT_EQ(1, run("check --werror tests/unit/check/changed.json").exitCode);
    const Result missing = run("check no/such/document.json");
    EXPECT_EQ(2, missing.exitCode);
    EXPECT_EQ(
            "no/such/document.json:1:1: error: the file cannot be read: No such file or directory "
            "[unreadable]\n1 error, 0 warnings, 0 notes\n",
            missing.output);
}

// The exported header documents the same planes as the rows of the format table.
TEST(ToolTest, TheHeaderNamesThePlanesOfEachFormat) {
    const std::string header = readFile(KC2_SOURCE_DIR "/include/kc2/PixFormat.h");
    for (const Platform::FormatRow& row : Platform::kFormatRows) {
        std::string planes;
        for (const auto plane : row.planes) {
            planes += (planes.empty() ? "" : ", ") + std::string(Platform::planeName(plane));
        }
        const std::regex line(row.name + std::string(" =\\s+\\w+;\\s+///< ") + planes +
                              "(\n|; Android's)");
        EXPECT_TRUE(std::regex_search(header, line)) << row.name << ": " << planes;
    }
}

// A document that is too large is rejected at the place where it exceeds the limit.
TEST(ToolTest, ADocumentBeyondTheLimitsIsRejectedAtItsPlace) {
    const ScratchDirectory scratch;
    std::string values = "{\"Video\": {\"a\": [0";
    for (size_t value = 4; value < kMaxValues; ++value) {  // Four are there already.
        values += ",0";
    }
    const struct {
        std::string text;
        const char* report;
    } rows[] = {
            {std::string(kMaxTextBytes + 1, ' '), ":1:33554433: error: "},
            {values + ",0]}}", ":1:2097163: error: "},
    };
    for (const auto& row : rows) {
        const Result result = run("check " + scratch.write("large.json", row.text));
        EXPECT_EQ(1, result.exitCode);
        EXPECT_NE(std::string::npos, result.output.find(row.report)) << result.output;
        const bool isLong = row.text[0] == ' ';
        EXPECT_NE(std::string::npos,
                  result.output.find(isLong ? "[document-too-long]" : "[too-many-values]"));
    }
    const Result most = run("check " + scratch.write("most.json", values + "]}}"));
    EXPECT_EQ(0, most.exitCode) << most.output;
}

// Those without a document that shows them, too.
TEST(ToolTest, EveryCheckIsTested) {
    std::string tests;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(KC2_SOURCE_DIR "/tests/unit")) {
        tests += entry.is_regular_file() ? readFile(entry.path()) : "";
    }
    for (const tool::Check& check : tool::kChecks) {
        EXPECT_TRUE(*check.mistake != '\0' ||
                    tests.find("[" + std::string(check.id) + "]") != std::string::npos)
                << check.id;
    }
}

TEST(ToolTest, ThePageOfTheChecksIsWhatTheToolPrints) {
    EXPECT_EQ(readFile(KC2_SOURCE_DIR "/docs/checks.md"), run("check --list --markdown").output);
}

}  // namespace

}  // namespace kc2::test
