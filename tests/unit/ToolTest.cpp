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

TEST(ToolTest, EachCommandWorks) {
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
                    {"show --rootdir examples/device > /dev/full", 2, ""},
                    {"completion zsh > /dev/full", 2, ""},
                    {"check tests/unit/check/*.json > /dev/full", 2, ""},
                    {"check --format sarif tests/unit/check/*.json > /dev/full", 2, ""},
                    {"--help", 0, "Exit codes:"},
                    {"help", 0, "Exit codes:"},
                    {"help show", 0, "Usage: kcodec2_spec show [OPTIONS]"},
                    {"defaults 1", 0, "Built-in document 1"},
                    {"defaults --variant _orvelle", 0, "Built-in document 2"},
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
                    {"--version", 0, "kcodec2_spec "},
            });
}

// The whole message, so that nothing of the option parser's own wording gets through.
TEST(ToolTest, EachWrongCommandLineHasAClearMessage) {
    const std::string commands =
            "show, check, log, diff, report, defaults, formats, explain, schema, lsp, help, man, "
            "completion";
    const std::string noDevice =
            "--rootdir DIR must name the root of the device's file system (--rootdir / is this "
            "machine's own)";
    const std::string noProperty = "--property: the library does not read ";
    const std::string meant = ". Did you mean vendor.media.target_variant?";
    const struct {
        std::string arguments;
        std::string message;
    } rows[] = {
            {"", "a command is missing: " + commands},
            {"chek",
             "there is no command chek. Did you mean check?\nThe commands are " + commands + "."},
            {"help chek",
             "COMMAND: must be show, check, log, diff, report, defaults, formats, "
             "explain, schema, lsp, help, man or completion, not \"chek\". Did you mean "
             "check?"},
            {"'ch\nek\x1b[1m' x",
             "there is no command ch\\x0Aek\\x1B[1m\nThe commands are " + commands + "."},
            {"check --fromat json", "not expected: --fromat. Did you mean --format?"},
            {"show --colour", "not expected: --colour"},
            {"show --varaint x", "not expected: --varaint x. Did you mean --variant?"},
            {"show examples/image/Android.bp",
             "not expected: examples/image/Android.bp. show loads a whole device: name its root "
             "with --rootdir DIR. check FILE checks one document"},
            {"report examples/device --output /dev/null",
             "not expected: examples/device. Did you mean --rootdir examples/device?"},
            {"check --max-findings -1 a",
             "--max-findings: must be a whole number from 0, not \"-1\""},
            {"check --max-findings 1.5 a",
             "--max-findings: must be a whole number from 0, not \"1.5\""},
            {"check --max-findings '' a",
             "--max-findings: must be a whole number from 0, not \"\""},
            {"check --max-findings +3 a",
             "--max-findings: must be a whole number from 0, not \"+3\""},
            {"check --max-findings 0x10 a",
             "--max-findings: must be a whole number from 0, not \"0x10\""},
            {"check --max-findings 99999999999999999999 a",
             "--max-findings: 99999999999999999999 is too large"},
            {"check --format xml a", "--format: must be text, json or sarif, not \"xml\""},
            {"check --format jason a",
             "--format: must be text, json or sarif, not \"jason\". Did you mean json?"},
            {"check --format 1 a", "--format: must be text, json or sarif, not \"1\""},
            {"check --format '' a", "--format: must be text, json or sarif, not \"\""},
            {"check --format", "--format needs a value: text|json|sarif"},
            {"diff --format sarif tests tests",
             "--format: must be text, json or markdown, not \"sarif\""},
            {"check --min-severity worst a",
             "--min-severity: must be note, warning or error, not \"worst\""},
            {"check --min-severity '' a",
             "--min-severity: must be note, warning or error, not \"\""},
            {"check --warning '' a", "--warning: there is no check \"\""},
            {"check --note nope a", "--note: there is no check \"nope\". Did you mean \"name\"?"},
            {"check --disable nope a",
             "--disable: there is no check \"nope\". Did you mean \"name\"?"},
            {"check --error nope a", "--error: there is no check \"nope\". Did you mean \"name\"?"},
            {"check --fix=maybe a", "--fix accepts no value"},
            {"check --rootdir examples/image/Android.bp",
             "--rootdir: Directory is actually a file: examples/image/Android.bp"},
            {"lsp --rootdir no/such", "--rootdir: Directory does not exist: no/such"},
            {"check --werror=3 a", "--werror accepts no value"},
            {"check --dry-run a", "--dry-run requires --fix"},
            {"check --fix -", "--fix cannot change standard input"},
            {"check --fix", "--fix needs FILE or --rootdir"},
            {"check --rootdir examples/device a", "FILE and --rootdir cannot be used together"},
            {"check --variant _x a", "FILE and --variant cannot be used together"},
            {"check --settings", "--settings needs a value: FILE"},
            {"show --log warn",
             "--log: \"warn\" is neither quiet, info nor debug, nor a 32-bit level word"},
            {"show --log 99999999999",
             "--log: \"99999999999\" is neither quiet, info nor debug, nor a 32-bit level word"},
            {"show --json=maybe", "--json accepts no value"},
            {"show --rootdir no/such", "--rootdir: Directory does not exist: no/such"},
            {"show --rootdir tests --rootdir examples", "--rootdir can be given only once"},
            {"show --dirmap vendor:examples",
             "--dirmap: \"vendor:examples\" is not of the form /PREFIX:DIR"},
            {"show --dirmap /vendor:no/such", "--dirmap: Directory does not exist: no/such"},
            {"show --dirmap /vendor:examples/image/Android.bp",
             "--dirmap: Directory is actually a file: examples/image/Android.bp"},
            {"diff --dirmap-b x tests tests", "--dirmap-b: \"x\" is not of the form /PREFIX:DIR"},
            {"diff --property-a =x tests tests",
             "--property-a: \"=x\" is not of the form NAME=VALUE"},
            {"diff --variant-a", "--variant-a needs a value: NAME"},
            {"show --property name", "--property: \"name\" is not of the form NAME=VALUE"},
            {"show --property vendor.media.target_varient=x",
             noProperty + "vendor.media.target_varient" + meant},
            {"show --property ro.vendor.target-variant=x",
             noProperty + "ro.vendor.target-variant" + meant},
            {"show --variant x --property vendor.media.target_variant=x",
             "--variant and --property cannot be used together"},
            {"defaults 4",
             "NUMBER: there is no built-in document 4: 1 (brel, mirt), 2 (orvelle), 3 (all others; "
             "the default)"},
            {"defaults 1 --variant x", "NUMBER and --variant cannot be used together"},
            {"completion", "SHELL is required"},
            {"completion ''", "SHELL: must be bash or zsh, not \"\""},
            {"completion fish", "SHELL: must be bash or zsh, not \"fish\""},
            {"diff", "A is required"},
            {"diff --git", "--git needs a value: ARGUMENT..."},
            {"diff --git 1 2 3 4 5 6 7 8 9 10", "--git accepts at most 9 values"},
            {"diff no/such", "A: Path does not exist: no/such"},
            {"report --output", "--output needs a value: FILE.html"},
            {"report", "--output is required"},
            {"explain", "NAME is required"},
            {"explain a b", "not expected: b"},
            // Without the files of a device: what these do would be another machine's.
            {"show", noDevice},
            {"show --variant _mirt", noDevice},
            {"report --output /dev/null", noDevice},
            {"check", "FILE is missing, or " + noDevice},
            {"check --all-variants", "FILE is missing, or " + noDevice},
            {"explain private_complexity --variant _mirt",
             "--variant has no effect without --rootdir or --dirmap"},
            {"explain private_complexity --property vendor.media.target_variant=_mirt",
             "--property has no effect without --rootdir or --dirmap"},
            {"log --variant _mirt", "--variant has no effect without --rootdir or --dirmap"},
    };
    for (const auto& row : rows) {
        const Result result = run(row.arguments + " < /dev/null");
        EXPECT_EQ(2, result.exitCode) << row.arguments;
        EXPECT_TRUE(
                result.output.starts_with("kcodec2_spec: " + row.message + "\nSee \"kcodec2_spec"))
                << row.arguments << "\n"
                << result.output;
    }
}

TEST(ToolTest, TheVariantHasOneOption) {
    const std::string orvelle = "/odm/etc/media_orvelle/video_system_specs.json";
    const std::string device = "--rootdir examples/device --variant ";
    expectAnswers(
            "",
            {
                    {"show " + device + "_orvelle", 0, "System spec document  " + orvelle},
                    {"check " + device + "_orvelle", 0, "media_orvelle"},
                    {"explain private_enc_c2d_rotation " + device + "_orvelle", 0, orvelle},
                    {"report --output - " + device + "_none", 0, ">_none</th>"},
                    {"diff examples/device --variant-a _orvelle --variant-b ''", 1,
                     "A  examples/device (variant _orvelle)"},
                    {"log tests/unit/transcripts/phone.log " + device + "_mirt", 1, "media_mirt"},
                    {"show " + device + "_orvele", 0,
                     "there is no document for the variant \"_orvele\". Did you mean "
                     "\"_orvelle\"?\n"},
                    {"show --rootdir examples/image --variant wholly_other", 0,
                     "There are documents for "},
                    {"explain private_complexity " + device + "_orvele", 0,
                     "Did you mean \"_orvelle\"?\n"},
                    // A property that is not like it may be anything.
                    {"show --property ro.build.type=user " + device + "_orvelle", 2,
                     "cannot be used together"},
                    {"show --rootdir examples/device --property ro.build.type=user", 0,
                     "--property ro.build.type has no effect: the library reads only "
                     "vendor.media.target_variant\n"},
                    {"show --rootdir /", 0, "System spec document  "},
            });
}

// README.md names each command, and no other.
TEST(ToolTest, TheReadmeNamesEachCommand) {
    const std::string readme = readFile(KC2_SOURCE_DIR "/README.md");
    const std::string help = run("--help").output;
    const std::regex row("\n  ([a-z]+) {2,}");
    size_t commands = 0;
    for (std::sregex_iterator at(help.begin() + static_cast<ptrdiff_t>(help.find("Subcommands:")),
                                 help.end(), row);
         at != std::sregex_iterator(); ++at) {
        const std::string name = (*at)[1];
        EXPECT_TRUE(readme.find("kcodec2_spec " + name) != std::string::npos ||
                    readme.find("`" + name + "`") != std::string::npos)
                << name;
        ++commands;
    }
    EXPECT_EQ(13u, commands);
    const std::regex named("kcodec2_spec ([a-z]+)");
    for (std::sregex_iterator at(readme.begin(), readme.end(), named); at != std::sregex_iterator();
         ++at) {
        EXPECT_NE(std::string::npos, help.find("\n  " + (*at)[1].str() + " ")) << (*at)[0];
    }
}

// Each command's help ends with its own exit codes.
TEST(ToolTest, EachHelpListsTheExitCodesOfItsCommand) {
    const std::pair<const char*, bool> commands[] = {
            {"show", false},   {"check", true},     {"log", true},     {"diff", true},
            {"report", false}, {"defaults", false}, {"formats", true}, {"explain", true},
            {"schema", false}, {"help", false},     {"man", false},    {"completion", false}};
    for (const auto& [command, canFind] : commands) {
        const std::string help = run(std::string(command) + " --help").output;
        const size_t codes = help.find("Exit codes: 0 ");
        ASSERT_NE(std::string::npos, codes) << help;
        EXPECT_EQ(canFind, help.find("; 1 ", codes) != std::string::npos) << help;
        EXPECT_NE(std::string::npos, help.find("; 2 ", codes)) << help;
        EXPECT_EQ(std::string::npos, help.find("Excludes")) << help;
        EXPECT_EQ(std::string::npos, help.find("TEXT")) << help;
    }
    EXPECT_NE(std::string::npos, run("check --help").output.find("; - is standard"));
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
        const bool hasError = report.find(": error: ") != std::string::npos ||
                              report.find("\"severity\":\"error\"") != std::string::npos;
        EXPECT_EQ(hasError ? 1 : 0, result.exitCode) << name;
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

// The library's own lines contain names as documents write them; a terminal would obey them.
TEST(ToolTest, TheLogOnStandardErrorIsEscaped) {
    const ScratchDirectory root;
    std::filesystem::create_directories(root.path() + "/vendor/etc");
    root.write("vendor/etc/video_system_specs.json",
               R"({"Video": {"Features": {"f\u001b[31m\u009b": true}, "Presets": {"p\u0007": 1},
                             "KC2CodecPlugins": ["l\u202e"]}})");
    const Result result = run("show --log debug --rootdir " + root.path() +
                              " --variant \"$(printf 'v\\033]0;')\"");
    EXPECT_EQ(0, result.exitCode);
    for (const char* shown :
         {"KC2TargetSpec", "f\\x1B[31m\\xC2\\x9B", "p\\x07", "l\\xE2\\x80\\xAE", "v\\x1B]0;"}) {
        EXPECT_NE(std::string::npos, result.output.find(shown)) << shown << "\n" << result.output;
    }
    for (const char* raw : {"\x1b", "\x07", "\xC2\x9B", "\xE2\x80\xAE"}) {
        EXPECT_EQ(std::string::npos, result.output.find(raw));
    }
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

// The exported header has for component authors what the rows have for the library.
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
