// What the checker reports about device trees: names, places and modes of files, all variants.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "RunTool.h"

namespace kc2::test {

namespace {

namespace fs = std::filesystem;

// A document with one mistake: a feature that is a number.
constexpr char kDocument[] = R"({"Video": {"Features": {"a": 1}, "codecs-available": {
    "decoders": ["c2.kvx.avc.decoder"], "encoders": ["c2.kvx.avc.encoder"]}}})";

class Tree {
public:
    void add(const std::string& path) const {
        fs::create_directories(fs::path(mScratch.path() + path).parent_path());
        mScratch.write(path.substr(1), kDocument);
    }
    void link(const std::string& path, const std::string& target) const {
        fs::create_directories(fs::path(mScratch.path() + path).parent_path());
        fs::create_symlink(target, mScratch.path() + path);
    }
    void pipe(const std::string& path) const {
        fs::create_directories(fs::path(mScratch.path() + path).parent_path());
        mkfifo((mScratch.path() + path).c_str(), 0644);
    }
    void forbid(const std::string& path) const { setMode(path, 0750); }
    void setMode(const std::string& path, mode_t mode) const {
        chmod((mScratch.path() + path).c_str(), mode);
    }
    std::string path() const { return mScratch.path(); }
    Result check(const std::string& options) const {
        return run("check --rootdir " + mScratch.path() + " " + options);
    }

private:
    ScratchDirectory mScratch;
};

TEST(TreeCheckTest, EachMistakeIsReportedOnceForAllVariants) {
    const Tree tree;
    for (const char* const path :
         {"/odm/etc/media_umbrella/video_system_specs.json",
          "/odm/etc/media_orvele/video_system_specs.json",
          "/odm/etc/Media_x/video_system_specs.json", "/odm/etc/media/video_system_specs.json",
          "/vendor/etc/media/video_system_specs.json",
          "/vendor/etc/media/sub/video_system_specs.json",
          "/vendor/etc/media_a/Video_system_specs.json", "/odm/etc/video_system_specs.json",
          "/data/vendor/media/video_private_config.json"}) {
        tree.add(path);
    }
    tree.forbid("/vendor/etc/media/video_system_specs.json");
    tree.forbid("/odm/etc/media_umbrella");
    const std::string output = tree.check("--all-variants").output;
    for (const char* const expected : {
                 "\"umbrella\" in this path contains the chip \"brel\"",
                 "\"orvele\" in this path is not a chip, so built-in document 3 is merged. Did you "
                 "mean \"orvelle\"? (variant \"_orvele\") [chip-name]",
                 "/odm/etc/Media_x/video_system_specs.json:1:1: warning: no variant selects this "
                 "document",
                 "/odm/etc/media/video_system_specs.json:1:1: warning: no variant selects",
                 "/odm/etc/video_system_specs.json:1:1: warning: no variant selects",
                 "/media_a/Video_system_specs.json:1:1: warning: nothing reads this file: a system "
                 "spec document is called video_system_specs.json [document-unselectable]",
                 "video_private_config.json:1:1: warning: nothing reads this file: the private "
                 "file is called video_private_configs.json [private-file-name]",
                 "/vendor/etc/media/video_system_specs.json:1:1: warning: others may not read this "
                 "file (mode bit o+r), so a media service cannot (no variant) [mode]",
                 "/odm/etc/media_umbrella:1:1: warning: others may not search this directory",
                 "the variant \"/sub\" selects /vendor/etc/media/sub/video_system_specs.json",
         }) {
        EXPECT_EQ(1U, countOf(expected, output)) << expected << "\n" << output;
    }
    EXPECT_EQ(4U, countOf("[document-unselectable]", output)) << output;
    EXPECT_EQ(2U, countOf("[chip-name]", output)) << output;
    EXPECT_EQ(2U, countOf("[mode]", output)) << output;
    EXPECT_EQ(4U, countOf("is used as true", output)) << output;  // One for each document read.
}

// A directory must let others search it, and a document let others read it: nothing else counts.
TEST(TreeCheckTest, OneBitOfEachModeMatters) {
    const struct {
        mode_t directory;
        mode_t document;
        std::string found;
    } rows[] = {
            {0711, 0604, ""},
            {0744, 0604, "/odm/etc"},
            {0711, 0711, "/odm/etc/media_x/video_system_specs.json"},
    };
    for (const auto& row : rows) {
        const Tree tree;
        tree.add("/odm/etc/media_x/video_system_specs.json");
        tree.setMode("/odm/etc/media_x/video_system_specs.json", row.document);
        tree.setMode("/odm/etc", row.directory);
        const std::string output = tree.check("--variant _x").output;
        EXPECT_EQ(row.found.empty() ? 0U : 1U, countOf("[mode]", output)) << output;
        EXPECT_EQ(row.found.empty() ? 0U : 1U,
                  countOf("\n" + tree.path() + row.found + ":1:1: warning: others may not", output))
                << output;
        tree.setMode("/odm/etc", 0755);
    }
}

TEST(TreeCheckTest, AMissingDocumentHasItsReason) {
    const Tree tree;
    tree.link("/vendor/etc/media_a/video_system_specs.json", "nowhere");
    tree.link("/vendor/etc/media_b/video_system_specs.json", "video_system_specs.json");
    tree.link("/vendor/etc/media_c", "/nowhere");
    tree.add("/vendor/etc/media_f");
    tree.pipe("/odm/etc/media_p/video_system_specs.json");
    tree.link("/odm/etc/media_l/video_system_specs.json", "nowhere");
    tree.add("/vendor/etc/media_l/video_system_specs.json");
    tree.link("/odm/etc/media_m", "/nowhere");
    const struct {
        std::string variant;
        const char* reason;
    } rows[] = {
            {"_a", "(it is a link to nowhere)"},
            {"_b", "(it is a link in a loop, or one that leads out of the tree)"},
            {"_c", "(/vendor/etc/media_c is a link to nowhere)"},
            {"_d", "(/vendor/etc/media_d does not exist)"},
            {"_f", "(Not a directory)"},
            {"_p",
             "/odm/etc/media_p/video_system_specs.json:1:1: error: it is a pipe: a load waits"},
            {"_l",
             "since /odm/etc/media_l/video_system_specs.json is a link to nowhere, and that "
             "opens\n"},
            {"_m", "(/vendor/etc/media_m does not exist; /odm/etc/media_m is a link to nowhere)"},
            {"_" + std::string(300, 'e'), "(the path is too long)"}};
    for (const auto& row : rows) {
        const std::string output =
                tree.check("--property vendor.media.target_variant=" + row.variant).output;
        EXPECT_NE(std::string::npos, output.find(row.reason)) << row.reason << "\n" << output;
    }
}

// It is followed as deep as documents are searched, and no deeper; each finding is reported once.
TEST(TreeCheckTest, ALinkToItsOwnDirectoryEndsTheSearch) {
    const Tree tree;
    tree.add("/vendor/etc/media/video_system_specs.json");
    tree.add("/vendor/etc/other/video_system_specs.json");
    tree.link("/vendor/etc/loop", ".");
    const std::string output = tree.check("--all-variants").output;
    EXPECT_EQ(1U, countOf("/other/video_system_specs.json:1:1: warning: no variant", output))
            << output;
    EXPECT_EQ(1U, countOf("[document-unselectable]", output)) << output;
    EXPECT_EQ(1U, countOf("System spec document", output)) << output;
}

// People put documents beside the right directories; a search of everything would take too long.
TEST(TreeCheckTest, DocumentsAreLookedForToADepth) {
    const struct {
        const char* directory;
        const char* name;
        size_t depth;
    } rows[] = {{"/odm", "video_system_spec.json", 2},
                {"/odm/etc", "video_system_spec.json", 3},
                {"/vendor", "video_system_spec.json", 2},
                {"/vendor/etc", "video_system_spec.json", 3},
                {"/product/etc", "video_system_spec.json", 3},
                {"/system/etc", "video_system_spec.json", 3},
                {"/system_ext/etc", "video_system_spec.json", 3},
                {"/data", "video_private_configs.json", 1},
                {"/data/media", "video_private_configs.json", 2},
                {"/data/vendor", "video_private_configs.json", 3}};
    for (const auto& row : rows) {
        const Tree tree;
        std::string path = row.directory;
        for (const char* const below : {"/a", "/b", "/c", "/d"}) {
            tree.add(path + "/" + row.name);
            path += below;
        }
        const std::string output = tree.check("--all-variants").output;
        EXPECT_EQ(row.depth, countOf("nothing reads this file", output)) << output;
    }
}

// A load waits for a pipe; the tool must not.
TEST(TreeCheckTest, NoCommandWaitsAtAPipe) {
    const Tree tree;
    tree.pipe("/vendor/etc/media/video_system_specs.json");
    for (const auto& [command, answer] : std::vector<std::pair<std::string, const char*>>{
                 {"check --rootdir ", "it is a pipe: a load waits here"},
                 {"show --rootdir ", "(a pipe: a load waits here until"},
                 {"explain private_complexity --rootdir ", "set by the built-in document 3"},
                 {"diff --variant-b _orvelle ", "(a pipe: a load waits here until"},
                 {"report --output - --rootdir ", "it is a pipe: a load waits here"}}) {
        const std::string output = run(command + tree.path()).output;
        EXPECT_NE(std::string::npos, output.find(answer)) << command << "\n" << output;
    }
}

TEST(TreeCheckTest, MisusedOptionsAreReported) {
    expectAnswers(
            "check ",
            {
                    {"--rootdir examples/device --property vendor.media.taget_variant=_orvelle", 2,
                     "Did you mean vendor.media.target_variant?"},
                    {"--rootdir examples/device --dirmap /oem:tests", 0,
                     "--dirmap /oem:tests has no effect"},
                    {"examples/device", 2, "For a device tree write --rootdir examples/device"},
                    {"- < examples/device/vendor/etc/media/video_system_specs.json", 0, "0 errors"},
                    {"- < tests/unit/check/syntax-comma.json", 1, "standard input:5:23: error"},
                    {"--all-variants --fix", 2, "--fix needs FILE or --rootdir"},
                    {"--rootdir examples/device --force", 2, "--force requires --fix"},
            });
    const Result fine =
            run("check --werror --all-variants --rootdir examples/device --dirmap "
                "/odm:examples/device/odm");
    EXPECT_EQ(0, fine.exitCode) << fine.output;
    EXPECT_EQ(std::string::npos, fine.output.find("no effect")) << fine.output;
    // Which directories the library reads in, directly or through another one.
    for (const auto& [mapping, isUsed] : std::vector<std::pair<std::string, bool>>{
                 {"/:tests", true},
                 {"/odm:tests", true},
                 {"/odm/etc/media:tests", true},
                 {"/odm/etc/media_x:tests", true},
                 {"/odm/etc/med:tests", false},
                 {"/odm/lib:tests", false},
                 {"/vendor/etc/media_x/y:tests", true},
                 {"/vendor/etc/video_system_specs.json:tests", true},
                 {"/data/vendor/media/:tests", true},
                 {"/data/vendor/medi:tests", false},
                 {"/vendor/bin:tests", true},
                 {"/system:examples/device/vendor/", true},
                 {"/system:examples/device/vendor/etc/media", true},
                 {"/system:examples/device", true},
                 {"/system:tests/unit/check", false}}) {
        const std::string output = run("show --rootdir examples/device --dirmap " + mapping).output;
        EXPECT_EQ(isUsed ? 0U : 1U, countOf("--dirmap " + mapping + " has no effect", output))
                << mapping;
    }
    // A property sets the variant as the option does, and no other property does.
    const std::string log =
            "log tests/unit/transcripts/phone.log --rootdir tests/unit/transcripts/tree";
    const std::string set = run(log + " --variant _onyx").output;
    EXPECT_EQ(set, run(log + " --property vendor.media.target_variant=_onyx").output);
    EXPECT_NE(set, run(log).output);
    EXPECT_EQ(
            "kcodec2_spec: --property x.y has no effect: the library reads only "
            "vendor.media.target_variant\n" +
                    run(log).output,
            run(log + " --property x.y=_onyx").output);
}

// A tree may have hundreds of variants whose names differ in a digit: to name all of them to each
// that misses its document would be a report of a hundred thousand lines.
TEST(TreeCheckTest, NamesTheNearestVariantOnly) {
    const Tree tree;
    for (const char* const variant : {"_trail10", "_trail1", "_trail2", "_other"}) {
        tree.add(std::string("/odm/etc/media") + variant + "/video_system_specs.json");
    }
    tree.link("/odm/etc/media_trail3/video_system_specs.json", "nowhere.json");
    tree.link("/odm/etc/media_trail4/video_system_specs.json", "nowhere.json");
    const Result result = tree.check("--all-variants");
    EXPECT_EQ(2U, countOf("[variant-nearby]", result.output)) << result.output;
    for (const char* const missing : {"_trail3", "_trail4"}) {
        const std::string message = std::string("the variant \"_trail1\" would select it, \"") +
                                    missing + "\" does not";
        EXPECT_EQ(1U, countOf(message, result.output)) << result.output;
    }
}

}  // namespace

}  // namespace kc2::test
