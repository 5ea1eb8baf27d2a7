// How options and comments change a report of the check command, in each of its formats.

#include <gtest/gtest.h>
#include <json/value.h>
#include <json/writer.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "RunTool.h"
#include "check/FixFiles.h"

namespace kc2::test {

namespace {

// "id@line:column" of each finding, in order.
std::string placesIn(const Json::Value& report) {
    std::string places;
    for (const Json::Value& finding : report["findings"]) {
        places += finding["severity"].asString().substr(0, 1) + ":" + finding["id"].asString() +
                  "@" + finding["line"].asString() + ":" + finding["column"].asString() + " ";
    }
    return places;
}

constexpr char kTwoMistakes[] = R"({"Video": {
    "Features": {"a": 1},
    "Presets": {"c": 1.5, "b": null},
    "codecs-available": {"decoders": ["c2.kvx.avc.decoder"], "encoders": ["c2.kvx.avc.encoder"]}
}})";

TEST(CheckReportTest, TheLastOptionWinsAndNothingHidesARejection) {
    const ScratchDirectory scratch;
    const std::string mistakes = scratch.write("mistakes.json", kTwoMistakes);
    const std::string rejected = scratch.write("rejected.json", "{\"Video\": []}");
    const std::string all = "w:number-as-boolean@2:23 w:real-truncated@3:22 w:null-as-zero@3:32 ";
    const struct {
        std::string arguments;
        int exitCode;
        std::string places;
    } rows[] = {
            {mistakes, 0, all},
            {mistakes + " --werror", 1, all},
            {mistakes + " --min-severity error --werror", 0, ""},
            {mistakes + " --disable all --warning null-as-zero --werror", 1,
             "w:null-as-zero@3:32 "},
            {mistakes + " --error real-truncated --disable null-as-zero --note number-as-boolean",
             1, "n:number-as-boolean@2:23 e:real-truncated@3:22 "},
            {mistakes + " --disable reader --error null-as-zero --warning null-as-zero", 0,
             "w:null-as-zero@3:32 "},
            {mistakes + " --error null-as-zero --disable all", 0, ""},
            {mistakes + " --note all --min-severity warning", 0, ""},
            {mistakes + " --max-findings 1 --error null-as-zero", 1, "e:null-as-zero@3:32 "},
            {rejected + " --disable all --min-severity error --max-findings 1", 1,
             "e:video-not-object@1:11 "},
            {rejected + " --note reader --disable document", 1, "e:video-not-object@1:11 "},
            {rejected + " --error video-not-object", 1, "e:video-not-object@1:11 "},
            {mistakes + " --warning reader --min-severity warning", 0, all},
    };
    for (const auto& row : rows) {
        const Result result = run("check --format json " + row.arguments);
        EXPECT_EQ(row.exitCode, result.exitCode) << row.arguments;
        EXPECT_EQ(row.places, placesIn(parsed(result.output))) << row.arguments;
    }
    for (const auto& [option, words] : std::vector<std::pair<const char*, const char*>>{
                 {"--disable syntax", "\"syntax\" is always an error"},
                 {"--note root-not-object", "always an error"},
                 {"--warning row-overlap",
                  "no check \"row-overlap\". Did you mean \"row-overlaps\""},
                 {"--error documnet", "Did you mean \"document\"?"},
                 {"--min-severity fatal", "fatal"},
                 {"--format xml", "xml"},
                 {"--max-findings -1", "-1"}}) {
        const Result result = run("check none.json " + std::string(option));
        EXPECT_EQ(2, result.exitCode) << option;
        EXPECT_NE(std::string::npos, result.output.find(words)) << result.output;
    }
    const std::string list = run("check --list --error merge --disable allows-nothing").output;
    EXPECT_NE(std::string::npos, list.find("\n  levels-reset               error    Dolby"))
            << list;
    EXPECT_NE(std::string::npos, list.find("\n  allows-nothing             off ")) << list;
}

TEST(CheckReportTest, CommentsSuppressFindingsWhereTheyAre) {
    const ScratchDirectory scratch;
    const std::string document = scratch.write("allowed.json", R"({
    // The vendor's tool writes it so. kcodec2_spec: allow null-as-zero
    /* kcodec2_spec: allow document */
    // kcodec2_spec: allow duplicate-member, trailing-text
    "Vidoe": {},
    "Video": {
        "Features": {"a": 1, "b": 1}, // kcodec2_spec: allow number-as-boolean
        "Presets": {"c": null, "// kcodec2_spec: allow null-as-zero": null},
        // kcodec2_spec: allow null-as-zero
        "DolbyVision": {"max_main_tier_level": null, "max_high_tier_level": 1}, //kcodec2_spec:allow
        // kcodec2_spec: allow syntax real-trunkated value
        "codecs-available": {"decoders": ["c2.kvx.avc.decoder"]}
    }
} // kcodec2_spec: allow null-as-zero
)");
    const std::string expected =
            "w:allows-nothing@4:28 w:allows-nothing@4:46 w:null-as-zero@8:26 w:null-as-zero@8:71 "
            "w:allows-nothing@10:81 w:allows-nothing@11:32 w:allows-nothing@11:39 "
            "w:allows-nothing@11:54 "
            "w:allows-nothing@14:26 ";
    const Json::Value report = parsed(run("check --format json " + document).output);
    EXPECT_EQ(expected, placesIn(report)) << report;
    std::string messages;
    for (const Json::Value& finding : report["findings"]) {
        messages += finding["message"].asString() + "\n";
    }
    for (const char* const words :
         {"line 5 has no finding \"duplicate-member\" to allow", "must continue with \"allow\"",
          "Did you mean \"real-truncated\"?", "syntax cannot be allowed",
          "no finding of the group \"value\" to allow"}) {
        EXPECT_NE(std::string::npos, messages.find(words)) << words << messages;
    }
    // Nothing hides what the device rejects; what does nothing is reported, each for its reason.
    const std::string others =
            scratch.write("others.json", R"(/* kcodec2_spec: allow all */{"Video": [1]
    /* kcodec2_spec: allow document

       document */} // kcodec2_spec: deny document
// kcodec2_spec:
//
)");
    EXPECT_EQ(
            "w:allows-nothing@1:24 e:video-not-object@1:40 w:allows-nothing@2:28 "
            "w:allows-nothing@4:8 w:allows-nothing@4:21 w:allows-nothing@5:1 ",
            placesIn(parsed(run("check --format json " + others).output)))
            << run("check " + others).output;
    EXPECT_NE(std::string::npos,
              run("check " + others).output.find("document is already allowed here"));
    // To look for what is meant takes long, so only for so many.
    std::string misspelt = "{} /* kcodec2_spec: allow";
    for (int i = 0; i < 102; ++i) {
        misspelt += " documnet";
    }
    const std::string suggested =
            run("check --format json " + scratch.write("misspelt.json", misspelt + "*/")).output;
    EXPECT_EQ(102U, countOf("there is no check", suggested));
    EXPECT_EQ(100U, countOf("Did you mean", suggested));
    // Nothing is before the first byte.
    const std::string first =
            scratch.write("first.json", "/* kcodec2_spec: allow video-empty */{\"Video\": {}}");
    EXPECT_EQ("", placesIn(parsed(run("check --format json " + first).output)));
    // A comment for a check that is left out is not reported as useless.
    EXPECT_EQ("", placesIn(parsed(run("check --format json --disable all " + document).output)));
}

// Without blanks elsewhere, a comma in a number cannot be told from any other.
TEST(CheckReportTest, CommasBetweenThousandsAreRecognised) {
    const ScratchDirectory scratch;
    for (const auto& [row, isTold] : {std::pair("0, 1,958,400, 5", true), {"0,1,958,400", false}}) {
        const std::string path = scratch.write(
                "rows.json",
                std::string("{\"Video\": {\"NimbraModeBitrateTable\": [[") + row + "]]}}");
        const std::string report = run("check " + path).output;
        EXPECT_NE(std::string::npos, report.find("[row-size]")) << report;
        EXPECT_EQ(isTold, report.find("thousands separators") != std::string::npos) << report;
    }
}

// Which documents a load reads is the heading of the report: a clean tree has no findings.
TEST(CheckReportTest, AHeadingSaysWhichDocumentsALoadReads) {
    const std::string tree =
            "check --rootdir examples/device --property vendor.media.target_variant=_orvelle ";
    const Json::Value load = parsed(run(tree + "--format json --disable merge").output);
    EXPECT_EQ(0U, load["findings"].size()) << load;
    ASSERT_EQ(1U, load["loads"].size());
    EXPECT_EQ("_orvelle", load["loads"][0]["variant"].asString());
    EXPECT_EQ("examples/device/odm/etc/media_orvelle/video_system_specs.json",
              load["loads"][0]["systemSpec"]["path"].asString());
    // The checks that were findings before are accepted, with one line.
    const std::string without = run(tree + "--disable merge").output;
    const std::string former =
            run(tree + "--disable merge --disable system-spec --error overlay --note overlay")
                    .output;
    EXPECT_EQ(
            "kcodec2_spec: naming the check \"system-spec\" has no effect: it is now the heading "
            "of "
            "the report\n"
            "kcodec2_spec: naming the check \"overlay\" has no effect: it is now the heading of "
            "the "
            "report\n" +
                    without,
            former);
    const ScratchDirectory scratch;
    const std::string comment = scratch.write(
            "former.json",
            "{\"Video\": {\"Features\": {\"a\": true}} // kcodec2_spec: allow overlay\n}");
    EXPECT_NE(std::string::npos, run("check " + comment).output.find("\n0 errors, 0 warnings"));
}

TEST(CheckReportTest, NamesOfAnyBytesStayApart) {
    const ScratchDirectory scratch;
    const std::string text =
            "{\"Video\": {\"KC2CodecPlugins\": [\"lib\xE9.so\", \"lib\xE9.so\", "
            "\"lib\\\\xE9.so\", \"lib\\\\xE9.so\", \"\xC3\xA4\xED\xA0\x80\", "
            "\"\xC3\xA4\xED\xA0\x80\", \"\\u001b[31m\", \"\\u001b[31m\"]}}";
    const std::string path = scratch.write("\xE9\033[1m \\xE9.json", text);
    const std::string quoted = "'" + path + "'";
    const std::string messages[] = {"lib\\xE9.so", "lib\\\\xE9.so", "\xC3\xA4\\xED\\xA0\\x80",
                                    "\\x1B[31m"};

    const Json::Value json = parsed(run("check --disable name --format json " + quoted).output);
    ASSERT_EQ(4u, json["findings"].size()) << json;
    for (Json::ArrayIndex i = 0; i < 4; ++i) {
        const Json::Value& finding = json["findings"][i];
        EXPECT_EQ(0u, finding["message"].asString().find("\"" + messages[i] + "\"")) << finding;
        EXPECT_EQ(scratch.path() + "/\\xE9\\x1B[1m \\\\xE9.json", finding["path"].asString());
        EXPECT_EQ(finding["line"], finding["endLine"]);
        EXPECT_LT(finding["column"].asInt(), finding["endColumn"].asInt());
        EXPECT_LT(finding["related"][0]["column"].asInt(), finding["column"].asInt());
    }

    const Json::Value sarif = parsed(run("check --disable name --format sarif " + quoted).output);
    const Json::Value& results = sarif["runs"][0]["results"];
    ASSERT_EQ(4u, results.size()) << sarif;
    for (Json::ArrayIndex i = 0; i < 4; ++i) {
        const Json::Value& result = results[i];
        EXPECT_EQ(0u, result["message"]["text"].asString().find("\"" + messages[i] + "\""));
        EXPECT_EQ("listed-twice",
                  sarif["runs"][0]["tool"]["driver"]["rules"][result["ruleIndex"].asInt()]["id"]
                          .asString());
        const Json::Value& place = result["locations"][0]["physicalLocation"];
        EXPECT_EQ("file://" + scratch.path() + "/%E9%1B%5B1m%20%5CxE9.json",
                  place["artifactLocation"]["uri"].asString());
        EXPECT_EQ(json["findings"][i]["endColumn"], place["region"]["endColumn"]);
        EXPECT_EQ(1u, result["relatedLocations"].size());
    }
    EXPECT_EQ(std::string::npos, run("check " + quoted).output.find('\033'));
}

// --- Fixes ---

std::string modeOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(0, stat(path.c_str(), &status));
    std::ostringstream text;
    text << std::oct << (status.st_mode & 07777);
    return text.str();
}

constexpr char kFixable[] =
        "\xEF\xBB\xBF{ // \"x\" , }\r\n"
        "\t\"Video\": {\n"
        "        \"features\": {\"private_enc_cvp_enabel\": true,  },\r\n"
        "        \"Presets\": {\"private_complexity\" :+5 /* , */ \"x1\":2},\n"
        "        \"KC2CodecPlugins\": [\"a\" \"b\"\n, // c\n],\n"
        "        \"perf-resource-values\": {\"a\": [0x40800000, 16], \"b\": [\"0x1\", \"2\"]}\n"
        "    }\n"
        "}";
constexpr char kFixed[] =
        "{ // \"x\" , }\r\n"
        "\t\"Video\": {\n"
        "        \"Features\": {\"private_enc_cvp_enable\": true  },\r\n"
        "        \"Presets\": {\"private_complexity\" :5, /* , */ \"x1\":2},\n"
        "        \"KC2CodecPlugins\": [\"a\", \"b\"\n // c\n],\n"
        "        \"perf-resource-values\": {\"a\": [\"0x40800000\", 16], \"b\": [\"0x1\", "
        "\"2\"]}\n"
        "    }\n"
        "}";

TEST(CheckReportTest, FixChangesWhatIsCertainAndNothingElse) {
    const ScratchDirectory scratch;
    const std::string path = scratch.write("spec.json", kFixable);
    const std::string link = scratch.path() + "/link.json";
    std::filesystem::create_symlink("spec.json", link);
    ASSERT_EQ(0, chmod(path.c_str(), 01640));

    const Result shown = run("check --fix --dry-run " + path + " > " + scratch.path() + "/diff");
    EXPECT_EQ(1, shown.exitCode);
    EXPECT_EQ(kFixable, readFile(path));
    scratch.write("patched.json", kFixable);
    EXPECT_EQ(
            0,
            std::system(
                    ("cd " + scratch.path() + " && patch --binary -s patched.json diff").c_str()));
    EXPECT_EQ(kFixed, readFile(scratch.path() + "/patched.json"));

    EXPECT_EQ(0, run("check --fix " + link).exitCode);
    EXPECT_EQ(kFixed, readFile(path));
    EXPECT_EQ("1640", modeOf(path));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(std::string::npos, run("check --fix " + link).output.find(": fixed"));

    // Where two readings are possible, a person must decide.
    for (const std::string uncertain :
         {R"({"Video": {"KC2CodecPlugins": ["a",, "b"]}})", R"({"Video": {"Presets": {"a" 1}})",
          R"({"Video": {"KC2CodecPlugins": ["a "b"]}})", R"({"Video": {"Presets": {"a": 0x10,}}})",
          R"({"Video": {"Presets": {"private_complexit1": 1}}})",
          R"({"Video": {"Presetz": {}, "Presetx": {}}})",
          R"({"Video": {"Presetz": {}, "Presets": {}}})",
          R"({"Video": {"perf-resource-values": {"a": [1.5, -1, 016]}}})",
          R"({"Video": {"presets": {}}} // kcodec2_spec: allow section-misspelt)"}) {
        scratch.write("uncertain.json", uncertain);
        run("check --fix " + scratch.path() + "/uncertain.json");
        EXPECT_EQ(uncertain, readFile(scratch.path() + "/uncertain.json"));
    }
}

TEST(CheckReportTest, FixStaysInsideTheRootDirectory) {
    const ScratchDirectory scratch;
    const std::string name = "vendor/etc/media/video_system_specs.json";
    const std::string spec = scratch.write("tree/" + name, kFixable);
    const std::string outside = scratch.write("outside/" + name, kFixable);
    EXPECT_EQ(0, run("check --fix --rootdir " + scratch.path() + "/tree").exitCode);
    EXPECT_EQ(kFixed, readFile(spec));

    const std::string mapped = " --dirmap /vendor:" + scratch.path() + "/outside/vendor";
    for (const std::string& arguments :
         {"--rootdir " + scratch.path() + "/tree" + mapped, mapped, std::string(), std::string("-"),
          scratch.path() + "/none.json"}) {
        EXPECT_EQ(2, run("check --fix " + arguments).exitCode) << arguments;
    }
    EXPECT_EQ(kFixable, readFile(outside));
    EXPECT_EQ(2, run("check --dry-run " + outside).exitCode);
}

// The private file is the same for each variant.
TEST(CheckReportTest, FixWithAllVariantsFixesEachFileOnce) {
    const ScratchDirectory scratch;
    const char* const names[] = {"odm/etc/media_a/video_system_specs.json",
                                 "vendor/etc/media_b/video_system_specs.json",
                                 "data/vendor/media/video_private_configs.json"};
    for (const char* const name : names) {
        scratch.write(name, kFixable);
    }
    const std::string command = "check --all-variants --disable tree --rootdir " + scratch.path();
    const std::string diff = run(command + " --fix --dry-run").output;
    const std::string fixed = run(command + " --fix").output;
    for (const char* const name : names) {
        EXPECT_EQ(kFixed, readFile(scratch.path() + "/" + name));
        const std::string path = scratch.path() + "/" + name;
        EXPECT_EQ(1U, countOf("--- " + path + "\n", diff)) << diff;
        EXPECT_EQ(1U, countOf(path + ": fixed\n", fixed)) << fixed;
    }
}

// As somebody may have set it; empty where there is none.
std::string attributeOf(const std::string& path, const char* name = "user.kept") {
    char value[16];
    const ssize_t size = getxattr(path.c_str(), name, value, sizeof value);
    return std::string(value, size > 0 ? static_cast<size_t>(size) : 0);
}

TEST(CheckReportTest, FixNeedsForceForLinkedAndReadOnlyFiles) {
    namespace fs = std::filesystem;
    const ScratchDirectory scratch;
    const std::string linked = scratch.write("linked.json", kFixable);
    const std::string other = scratch.path() + "/other.json";
    const std::string readOnly = scratch.write("read-only.json", kFixable);
    fs::create_hard_link(linked, other);
    ASSERT_EQ(0, chmod(readOnly.c_str(), 0444));
    const bool hasAttributes = setxattr(readOnly.c_str(), "user.kept", "value", 5, 0) == 0 &&
                               setxattr(readOnly.c_str(), "user.other", "b", 1, 0) == 0;
    for (const std::string option : {"", " --dry-run"}) {
        expectAnswers("check --fix" + option,
                      {{" " + linked, 2, "not fixed: it has 2 hard links, and the others would"},
                       {" " + readOnly, 2, "not fixed: it is read-only; --force fixes it"}});
    }
    EXPECT_EQ(kFixable, readFile(linked));
    EXPECT_EQ(kFixable, readFile(readOnly));

    EXPECT_EQ(0, run("check --fix --force " + linked + " " + readOnly).exitCode);
    EXPECT_EQ(kFixed, readFile(linked));
    EXPECT_EQ(kFixable, readFile(other));
    EXPECT_EQ(kFixed, readFile(readOnly));
    EXPECT_EQ("444", modeOf(readOnly));
    EXPECT_EQ(hasAttributes ? "value" : "", attributeOf(readOnly));
    EXPECT_EQ(hasAttributes ? "b" : "", attributeOf(readOnly, "user.other"));
}

// Runs the tool where no file can get an extended attribute, as on some file systems.
Result runWithoutAttributes(const ScratchDirectory& scratch, const std::string& arguments) {
    const pid_t child = fork();
    if (child == 0) {
        sock_filter rules[] = {
                BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fsetxattr, 0, 1),
                BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | ENOTSUP),
                BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        };
        const sock_fprog program = {.len = std::size(rules), .filter = rules};
        if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
            prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
            std::_Exit(126);
        }
        const Result result = run(arguments);
        scratch.write("output", result.output);
        std::_Exit(result.exitCode);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {readFile(scratch.path() + "/output"), WEXITSTATUS(status)};
}

TEST(CheckReportTest, FixKeepsAttributesUnlessForced) {
    const ScratchDirectory scratch;
    const std::string path = scratch.write("spec.json", kFixable);
    if (setxattr(path.c_str(), "user.kept", "value", 5, 0) != 0) {
        GTEST_SKIP() << "the file system has no extended attributes";
    }
    const Result kept = runWithoutAttributes(scratch, "check --fix " + path);
    if (kept.exitCode == 126) {
        GTEST_SKIP() << "system calls cannot be made to fail here";
    }
    EXPECT_EQ(2, kept.exitCode);
    EXPECT_EQ(0U, kept.output.find("kcodec2_spec: " + path +
                                   ": not fixed: its attribute user.kept cannot be kept ("))
            << kept.output;
    EXPECT_NE(std::string::npos, kept.output.find("); --force drops it\n")) << kept.output;
    EXPECT_EQ(kFixable, readFile(path));
    const Result forced = runWithoutAttributes(scratch, "check --fix --force " + path);
    EXPECT_EQ(0, forced.exitCode);
    EXPECT_EQ(0U, forced.output.find("kcodec2_spec: " + path + ": fixed\n")) << forced.output;
    EXPECT_EQ(kFixed, readFile(path));
    EXPECT_EQ("", attributeOf(path));

    EXPECT_EQ("it has changed meanwhile", tool::replaceFile(path, kFixable, "{}", false));
    EXPECT_EQ(kFixed, readFile(path));
    // What is not fixed shows in the exit code, whatever comes after it.
    const std::string linked = scratch.write("linked.json", kFixable);
    std::filesystem::create_hard_link(linked, scratch.path() + "/other.json");
    const std::string fine = scratch.write("fine.json", kFixable);
    EXPECT_EQ(2, run("check --fix " + linked + " " + fine).exitCode);
    EXPECT_EQ(kFixed, readFile(fine));
}

TEST(CheckReportTest, PatchAppliesTheDiffOfAnyName) {
    const ScratchDirectory scratch;
    for (const std::string name : {"plain.json", "with blanks .json", "a\tb.json", "del\x7F.json",
                                   "q\"\\.json", "\xC3\xA4 \xE9.json"}) {
        const std::string path = scratch.write(name, kFixable);
        const Result shown =
                run("check --fix --dry-run '" + path + "' > " + scratch.path() + "/diff");
        EXPECT_EQ(1, shown.exitCode) << name;
        const bool isQuoted = name.find_first_of("\t\x7F\"\xE9") != std::string::npos;
        EXPECT_EQ(isQuoted ? "--- \"" : "--- /", readFile(scratch.path() + "/diff").substr(0, 5));
        // patch refuses names from the root.
        const size_t levels = static_cast<size_t>(std::count(path.begin(), path.end(), '/'));
        EXPECT_EQ(0, std::system(("cd " + scratch.path() + " && patch --binary -s -p" +
                                  std::to_string(levels) + " < diff")
                                         .c_str()))
                << name;
        EXPECT_EQ(kFixed, readFile(path)) << name;
    }
}

// --- On a terminal ---

TEST(CheckReportTest, ATerminalGetsExcerptsThatFit) {
    const ScratchDirectory scratch;
    const std::string document = scratch.write(
            "wide.json",
            "{\"Video\": {\"Presets\": {\"\xE6\x97\xA5\xE6\x9C\xAC\t\": 1.5}, \"Features\": {"
            "\"0123456789012345678901234567890123456789\": 1, \"e\xCC\x81\": 1}}}\n");
    const Result plain = runOnTerminal("check " + document, 200, "TERM=dumb");
    EXPECT_NE(std::string::npos,
              plain.output.find("\n     1 | {\"Video\": {\"Presets\": {\"\xE6\x97\xA5\xE6\x9C\xAC"
                                "    \": 1.5},"))
            << plain.output;
    EXPECT_NE(std::string::npos, plain.output.find("\n       | " + std::string(35, ' ') + "^~~\n"))
            << plain.output;
    EXPECT_EQ(plain.output,
              runOnTerminal("check " + document, 200, "TERM=xterm NO_COLOR=1").output);

    const Result coloured = runOnTerminal("check " + document, 40, "TERM=xterm");
    EXPECT_NE(std::string::npos, coloured.output.find("\033[35mwarning:\033[0m"));
    std::istringstream lines(coloured.output);
    size_t excerpts = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.find(" | ") != std::string::npos) {
            EXPECT_GE(40 + 5, static_cast<int>(line.size())) << line;  // With wide characters.
            ++excerpts;
        }
    }
    EXPECT_LE(6u, excerpts);
}

// The part of a line that is shown ends with what still fits, and the mark is under its text.
TEST(CheckReportTest, AnExcerptIsAsWideAsTheReport) {
    const ScratchDirectory scratch;
    const std::string feature = "{\"Video\": {\"Features\": {\"a\": 1}}} // ";
    const std::string wide(100 - feature.size() - 2, '-');
    const std::string japanese = "\xE6\x97\xA5";
    const std::string above = std::string(1'000'000, '\n');
    const struct {
        std::string text;
        std::string excerpt;
    } rows[] = {
            {feature + wide + japanese, "     1 | " + feature + wide + japanese + "\n"},
            {feature + wide + "-" + japanese, "     1 | " + feature + wide + "-\n"},
            {above + feature,
             "1000001 | " + feature + "\n        | " + std::string(29, ' ') + "^\n"},
    };
    for (const auto& row : rows) {
        const std::string report = run("check " + scratch.write("wide.json", row.text)).output;
        EXPECT_NE(std::string::npos, report.find("\n" + row.excerpt)) << report;
    }
    // Half of the columns are for what is before the mark: each of these characters has two.
    const auto faces = [](size_t count) {
        std::string text;
        for (; count > 0; --count) {
            text += "\xF0\x9F\x98\x80";
        }
        return text;
    };
    const std::string cut =
            run("check " + scratch.write("faces.json",
                                         "{\"Video\": {\"Features\": {\"" + faces(60) + "\": 1}}}"))
                    .output;
    EXPECT_NE(std::string::npos, cut.find("\n     1 | " + faces(23) + "\": 1}}}\n       | " +
                                          std::string(49, ' ') + "^\n"))
            << cut;
    const std::string narrow =
            runOnTerminal("check " + scratch.write("narrow.json", feature + wide), 20, "TERM=dumb")
                    .output;
    EXPECT_NE(std::string::npos,
              narrow.find("\n     1 | s\": {\"a\": 1}}} // --\n       |           ^\n"))
            << narrow;
}

TEST(CheckReportTest, HelpFitsAnyTerminal) {
    for (const unsigned short columns : {30, 60, 80, 200}) {
        for (const std::string command : {"", "check ", "show ", "formats "}) {
            std::istringstream help(
                    runOnTerminal(command + "--help", columns, "TERM=xterm").output);
            size_t longest = 0;
            for (std::string line; std::getline(help, line);) {
                const size_t start = std::min(line.find_first_not_of(' '), line.size());
                const bool isOneWord = line.find(' ', start) == std::string::npos;
                longest = std::max(longest, isOneWord ? 0 : line.size());
            }
            EXPECT_GE(columns, longest) << command;
            EXPECT_LE(columns / 2, static_cast<int>(longest)) << command;
        }
    }
}

// A system spec document that sets nothing is a mistake; as the private file it is legal, but keeps
// the built-in document out.
TEST(CheckReportTest, ADocumentThatSetsNothingIsAsSevereAsItsPlace) {
    const ScratchDirectory scratch;
    const std::string spec =
            scratch.write("vendor/etc/media/video_system_specs.json",
                          R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})");
    const struct {
        const char* text;
        const char* id;  // In a system spec document.
    } rows[] = {
            {"{}", "[no-video]"},
            {"null", "[no-video]"},
            {R"({"Features": {"vendor_a": true}})", "[no-video]"},
            {R"({"Vdeo": {"Features": {"vendor_a": true}}})", "[no-video]"},
            {R"({"Video": {}})", "[video-empty]"},
            {R"({"Video": null})", "[video-empty]"},
    };
    for (const auto& row : rows) {
        const Result alone = run("check " + scratch.write("spec.json", row.text));
        EXPECT_EQ(1, alone.exitCode) << row.text;
        EXPECT_NE(std::string::npos, alone.output.find(row.id)) << alone.output;
        const std::string file =
                scratch.write("data/vendor/media/video_private_configs.json", row.text);
        for (const std::string& arguments : {file, "--rootdir " + scratch.path()}) {
            const Result result = run("check --disable mode " + arguments);
            EXPECT_EQ(0, result.exitCode) << row.text;
            EXPECT_NE(std::string::npos, result.output.find("[private-file-empty]"))
                    << result.output;
            EXPECT_NE(std::string::npos, result.output.find("no built-in document is read"))
                    << result.output;
            EXPECT_NE(std::string::npos, result.output.find("\n0 errors, 1 warning,"))
                    << result.output;
        }
    }
}

TEST(CheckReportTest, ThousandsOfFindingsAreSummedUp) {
    const ScratchDirectory scratch;
    std::string text = "{\"Video\": {\"Features\": {\"a\": \"\"}, \"KC2CodecPlugins\": [\"a\"";
    for (int i = 0; i < 150; ++i) {
        text += ", 1";
    }
    const std::string document = scratch.write("many.json", text + "]}}");
    const std::string all = run("check " + document).output;
    EXPECT_NE(std::string::npos, all.find("\n     150  error    element-not-string\n"
                                          "       1  error    feature-not-boolean\n"
                                          "51 findings not shown; --max-findings 0 prints all\n"
                                          "151 errors, 0 warnings, 0 notes\n"))
            << all;
    EXPECT_EQ(100U, countOf("^", all));
    // A hundred can be looked through: they are not summed up.
    std::string hundred = text;
    hundred.resize(text.size() - 51 * std::string(", 1").size());
    EXPECT_NE(std::string::npos, run("check " + scratch.write("hundred.json", hundred + "]}}"))
                                         .output.find(" ^\n100 errors, 0 warnings, 0 notes\n"));
    const std::string other = scratch.write("other.json", text + "]}}");
    EXPECT_EQ(200U, countOf("^", run("check " + document + " " + other).output));
    EXPECT_EQ(151U, countOf("^", run("check --max-findings 0 " + document).output));
    EXPECT_EQ(151U, parsed(run("check --format json " + document).output)["findings"].size());
    const std::string few = run("check --max-findings 2 " + document).output;
    EXPECT_NE(std::string::npos,
              few.find("\n149 findings not shown; --max-findings 0 prints all\n151 errors"))
            << few;
    EXPECT_EQ(2, std::count(few.begin(), few.end(), '^'));
    // Of checks with as many findings, in the order of their names.
    EXPECT_NE(std::string::npos,
              run("check --max-findings 1 " + scratch.write("mistakes.json", kTwoMistakes))
                      .output.find("\n       1  warning  null-as-zero\n"
                                   "       1  warning  number-as-boolean\n"
                                   "       1  warning  real-truncated\n"
                                   "2 findings not shown;"));
}

}  // namespace

}  // namespace kc2::test
