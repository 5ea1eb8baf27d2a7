// The command "log": that its table is what the sources write, and what it prints for logs that the
// library itself has written, in each format and encoding, and for hostile ones.

#include <gtest/gtest.h>
#include <json/value.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "RunTool.h"
#include "device/BaseLibrary.h"
#include "hostplatform/HostPlatform.h"
#include "kc2/TargetSpec.h"

namespace kc2::test {

namespace {

constexpr char kPrivate[] = "/data/vendor/media/video_private_configs.json";
constexpr char kSpecOfTest[] = "/odm/etc/media_test/video_system_specs.json";
constexpr char kTool[] = "/vendor/bin/kcodec2_test";
constexpr char kFallback[] = "/vendor/etc/video_system_specs.json";
constexpr char kVariant[] = " --property vendor.media.target_variant=_test";
constexpr char kValid[] = R"({"Video": {"Features": {"a": true}}})";
constexpr char kTag[] = "E KC2TargetSpec: ";
constexpr char kRejected[] = "E KC2TargetSpec: Couldn't parse json from file stream";
constexpr char kMissing[] =
        "E KC2TargetSpec: Couldn't read target-id, target-id = default is chosen.";
constexpr char kFailed[] =
        "E KC2TargetSpec: Failed to open /vendor/etc/media_x/video_system_specs.json";
constexpr char kFalling[] = "W KC2TargetSpec: Falling back to /vendor/etc/video_system_specs.json";
constexpr char kPath[] =
        "I KC2TargetSpec: Parsing system specs file from: "
        "/odm/etc/media_x/video_system_specs.json";
constexpr char kRow[] = "W KC2TargetSpec: Unable to queue the json entry due to inappropriate size";
constexpr char kNoCodecs[] =
        "W KC2TargetSpec: List of Supported Codecs is Empty. All codecs will be enabled..";

size_t endOfCall(const std::string& text, size_t at) {
    for (int depth = 0; at < text.size(); ++at) {
        depth += text[at] == '(' ? 1 : text[at] == ')' ? -1 : 0;
        if (text[at] == ')' && depth == 0) {
            break;
        }
        for (const size_t start = at; text[start] == '"' && text[++at] != '"';) {
            at += text[at] == '\\' ? 1 : 0;
        }
    }
    return at;
}

// The first cells of the row that belongs to a log call in a source.
std::string rowOf(const std::string& kind, const std::string& call) {
    const size_t quote = call.find('"');
    EXPECT_NE(std::string::npos, quote) << "a log line whose text is not a literal: " << call;
    const std::string text = call.substr(quote + 1, call.find('"', quote + 1) - quote - 1);
    const std::string before = call.substr(0, quote);
    const auto names = [&](const char* word) { return before.find(word) != std::string::npos; };
    const std::string gate = names("kMaskDebugDetail")    ? "0x4"
                             : names("kMaskDebugHeading") ? "0x8"
                             : kind == "INFO"             ? "0x2"
                                                          : "always";
    const std::string tag = names("kTagBufferLayout") ? "Platform_BufferLayout"
                            : names("kTagPlatform")   ? "KC2Platform"
                                                      : "KC2TargetSpec";
    return "| `" + text + "` | `" + tag + "` | " + kind[0] + " | " + gate + " |";
}

TEST(LogCommandTest, TheTableMatchesTheSourcesAndThePage) {
    std::multiset<std::string> written;
    for (const char* directory : {"targetspec", "platform", "device", "log"}) {
        const std::filesystem::path path = std::filesystem::path(KC2_SOURCE_DIR) / directory;
        if (!std::filesystem::exists(path)) {
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
            if (entry.path().filename() == "Log.h" || entry.is_directory()) {
                continue;
            }
            const std::string text = readFile(entry.path());
            EXPECT_EQ(std::string::npos, text.find("__android_log_")) << entry.path();
            constexpr char kMacro[] = "KC2_LOG_";
            for (size_t at = 0; (at = text.find(kMacro, at)) != std::string::npos;) {
                at += sizeof(kMacro) - 1;
                const size_t bracket = text.find('(', at);
                written.insert(rowOf(text.substr(at, bracket - at),
                                     text.substr(bracket, endOfCall(text, bracket) - bracket)));
            }
        }
    }
    const std::string table = run("log --lines").output;
    std::istringstream lines(table);
    std::set<std::string> rows;
    for (std::string line; std::getline(lines, line);) {
        size_t end = 0;
        for (int cells = 0; cells < 5; ++cells) {
            end = line.find('|', end) + 1;
        }
        if (line.starts_with("| `")) {
            rows.insert(line.substr(0, end));
        }
    }
    EXPECT_EQ(std::set<std::string>(written.begin(), written.end()), rows);
    EXPECT_LT(20u, rows.size());
    EXPECT_NE(std::string::npos, readFile(KC2_SOURCE_DIR "/docs/log.md").find(table));
}

Json::Value described(const std::string& log, const std::string& arguments = "") {
    const ScratchDirectory scratch;
    return parsed(run("log --json " + scratch.write("log", log) + " " + arguments).output);
}

// The topics and texts of a load, a line each.
std::string textOf(const Json::Value& load) {
    std::string text;
    for (const Json::Value& conclusion : load["conclusions"]) {
        if (conclusion["topic"] != "no-process") {
            text += conclusion["severity"].asString() + " " + conclusion["topic"].asString() +
                    ": " + conclusion["text"].asString() + "\n";
        }
    }
    return text;
}

std::string textOfAll(const Json::Value& loads) {
    std::string text;
    for (const Json::Value& load : loads) {
        text += textOf(load);
    }
    return text;
}

// Which ends of the load are possible: of the first step the variant's document, the fallback,
// none; that document accepted, rejected; then the nine of the second step.
std::string possibleIn(const Json::Value& load) {
    std::string text;
    for (const char* key : {"variant", "fallback", "none", "accepted", "rejected"}) {
        text += load["systemSpec"][key].asBool() ? 'x' : '-';
    }
    text += ' ';
    for (const Json::Value& outcome : load["outcomes"]) {
        text += outcome["isPossible"].asBool() ? 'x' : '-';
    }
    return text;
}

std::string outcomesOf(const Json::Value& loads) {
    return possibleIn(loads[0]).substr(6);
}

// "11-25 08:00:01.000   77   77 ", and then the line, for each; the time in seconds of that day.
std::string timed(const std::vector<std::string>& lines, int process, int seconds) {
    std::string log;
    for (const std::string& line : lines) {
        char header[64];
        std::snprintf(header, sizeof(header), "11-25 %02d:%02d:%02d.000  %d  %d ", seconds / 3600,
                      seconds / 60 % 60, seconds % 60, process, process);
        log += header + line + "\n";
    }
    return log;
}

std::string other(int seconds) {
    return timed({"I Other: a line"}, 99, seconds);
}

// One load in the middle of a log.
std::string inLog(const std::vector<std::string>& lines) {
    return other(3600) + timed(lines, 77, 3630) + other(3660);
}

// --- Every load that the library can make -------------------------------------------------------

struct TableCase {
    std::string variant;      // Of the property; empty: not set.
    std::string specPath;     // Where the system spec document is; empty: nowhere.
    const char* spec;         // Its text.
    const char* privateText;  // Null: no file; "directory": not readable.
    bool hasTool;
};

// A document with codec components, without, with each kind of line about its values, rejected.
constexpr const char* kTexts[] = {
        R"({"Video": {"OptionalCodecs": ["c"]}})",
        kValid,
        R"({"Video": {"Presets": {"a": "x"}}})",
        R"({"Video": {"NimbraModeBitrateTable": [[1]]}})",
        R"({"Video": {"KC2EncPostProcessingFilters": ["f"]}})",
        R"({"Video": {"Presets": {"a": "x"}, "NimbraModeBitrateTable": [[1]]}})",
        R"({"Video": {"Presets": {"a": "x"}, "KC2EncPostProcessingFilters": ["f"]}})",
        "{",
        "",
};

// Whether the log has lines about it that do not name it: of two such documents in one load a third
// one can have all lines.
bool hasUnnamedLines(const char* text) {
    const std::string all = text != nullptr ? text : "";
    return all.find("Nimbra") != std::string::npos || all.find("Filters") != std::string::npos;
}

std::vector<TableCase> tableCases() {
    const std::string odm = "/odm/etc/media_t/video_system_specs.json";
    const std::string vendor = "/vendor/etc/media_t/video_system_specs.json";
    const std::string standard = "/vendor/etc/media/video_system_specs.json";
    const std::pair<std::string, std::string> places[] = {
            {"", standard}, {"", kFallback},   {"", ""},   {"_t", odm},
            {"_t", vendor}, {"_t", kFallback}, {"_t", ""},
    };
    std::vector<const char*> privateTexts = {nullptr, "directory"};
    privateTexts.insert(privateTexts.end(), std::begin(kTexts), std::end(kTexts));
    std::vector<TableCase> cases;
    for (const auto& [variant, path] : places) {
        for (const char* const spec : kTexts) {
            for (const char* const privateText : privateTexts) {
                for (const bool hasTool : {false, true}) {
                    const bool isClear = !hasUnnamedLines(spec) || !hasUnnamedLines(privateText);
                    if ((!path.empty() && isClear) || (path.empty() && spec == kTexts[0])) {
                        cases.push_back({variant, path, spec, privateText, hasTool});
                    }
                }
            }
        }
    }
    return cases;
}

// The nine ends of the second step, in the order of docs/log.md.
size_t outcomeOf(const TableCase& one) {
    const std::string text = one.privateText != nullptr ? one.privateText : "missing";
    const size_t state = text == "missing"     ? 0
                         : text == "directory" ? 1
                         : text.empty()        ? 2
                         : text == "{"         ? 4
                                               : 3;
    constexpr size_t kWithTool[] = {4, 5, 6, 7, 8};
    constexpr size_t kWithoutTool[] = {0, 0, 1, 2, 3};
    return one.hasTool ? kWithTool[state] : kWithoutTool[state];
}

// The same of a case, as possibleIn() has it.
std::string endOf(const TableCase& one) {
    std::string end(15, '-');
    const bool isRejected = std::string(one.spec) == "{" || std::string(one.spec).empty();
    end[5] = ' ';
    end[one.specPath.empty() ? 2 : one.specPath == kFallback ? 1 : 0] = 'x';
    if (!one.specPath.empty()) {
        end[isRejected ? 4 : 3] = 'x';
    }
    end[6 + outcomeOf(one)] = 'x';
    return end;
}

void playCase(const TableCase& one, const std::string& root) {
    std::filesystem::remove_all(root);
    const auto write = [&](const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
        std::ofstream(root + path) << text;
    };
    write("/vendor/README", "");
    if (!one.specPath.empty()) {
        write(one.specPath, one.spec);
    }
    if (one.hasTool) {
        write(kTool, "");
    }
    if (one.privateText != nullptr && std::string(one.privateText) == "directory") {
        std::filesystem::create_directories(root + kPrivate);
    } else if (one.privateText != nullptr) {
        write(kPrivate, one.privateText);
    }
    host::clearProperties();
    if (!one.variant.empty()) {
        host::setProperty("vendor.media.target_variant", one.variant);
    }
}

// What TargetSpec::Get() logs, and then a component that asks for the codec components.
std::vector<std::string> linesOf(uint32_t level, bool asksForCodecs) {
    std::vector<std::string> lines;
    host::setLogSink([&](int priority, const char* tag, const char* text) {
        lines.push_back(std::string(1, "??VDIWEF"[priority]) + " " + tag + ": " + text);
    });
    host::setLogLevel(level);
    updateLogLevel();
    TargetSpec store;
    store.extractSpecData();
    store.printSpecifications();
    store.extractPrivateData();
    if (asksForCodecs) {
        store.getSupportedCodecs();
    }
    host::setLogSink(nullptr);
    return lines;
}

// Each sequence of lines that a load can write, with everything that can have happened then.
std::map<std::vector<std::string>, std::string> allLoads() {
    const ScratchDirectory scratch;
    const std::string root = scratch.path() + "/tree";
    host::mapDirectory("/", root);
    host::setReadOnly(true);
    std::map<std::vector<std::string>, std::string> loads;
    for (const TableCase& one : tableCases()) {
        playCase(one, root);
        for (const uint32_t level : {0x0, 0x2, 0x4, 0x8, 0xE}) {
            for (const bool asks : {false, true}) {
                std::string& ends = loads[linesOf(level, asks)];
                const std::string end = endOf(one);
                ends.resize(end.size(), '-');
                for (size_t i = 0; i < end.size(); ++i) {
                    ends[i] = end[i] != '-' ? end[i] : ends[i];
                }
            }
        }
    }
    host::setReadOnly(false);
    host::setLogLevel(0);
    host::clearMappings();
    host::clearProperties();
    loads.erase(std::vector<std::string>());
    return loads;
}

TEST(LogCommandTest, TheReportOfEachLoadIsExactlyWhatCanHaveHappened) {
    const auto loads = allLoads();
    EXPECT_LT(300u, loads.size());
    std::string log = other(0);
    int number = 0;
    for (const auto& [lines, ends] : loads) {
        ++number;
        log += timed(lines, 1000 + number, 40 * number) + other(40 * number + 20);
    }
    const Json::Value reports = described(log);
    ASSERT_EQ(loads.size(), reports.size());
    Json::ArrayIndex i = 0;
    for (auto [lines, ends] : loads) {
        if (lines == std::vector<std::string>{kNoCodecs}) {
            ends = "xxxxx -xxx---xx";  // The load may be older than the log.
        }
        EXPECT_EQ(ends, possibleIn(reports[i])) << timed(lines, 1, 0) << textOf(reports[i]);
        ++i;
    }
}

// A log that ends, or begins, in the middle of a load must leave open what it does not show.
TEST(LogCommandTest, APartOfALoadExcludesNothingThatHappened) {
    const auto loads = allLoads();
    size_t number = 0;
    for (const auto& [lines, ends] : loads) {
        if (number++ % 60 != 0) {
            continue;
        }
        for (size_t cut = 1; cut < lines.size(); ++cut) {
            const std::vector<std::string> first(lines.begin(), lines.begin() + cut);
            const std::vector<std::string> last(lines.begin() + cut, lines.end());
            const std::string logs[] = {other(3600) + timed(first, 77, 3630),
                                        timed(last, 77, 3630) + other(3660)};
            for (const std::string& log : logs) {
                const Json::Value reports = described(log);
                for (size_t i = 0; i < ends.size() && !reports.empty(); ++i) {
                    const std::string possible = possibleIn(reports[0]);
                    const bool isTold = ends[i] != 'x' || possible[i] == 'x';
                    EXPECT_TRUE(isTold) << ends << "\n" << possible << "\n" << log;
                }
            }
        }
    }
}

// --- What a log proves ---------------------------------------------------------------------------

TEST(LogCommandTest, WhatIsProvedIsSaidAndWhatIsNotIsLeftOpen) {
    const std::string tag = kTag;
    const struct {
        std::vector<std::string> lines;
        std::vector<std::string> words;
        std::vector<std::string> otherWords = {};  // Which the report must not have.
    } rows[] = {
            {{kRejected}, {"error rejected: either ", "second document is merged is not proved"}},
            {{kRejected, kRejected},
             {"error rejected: the system spec document", "error rejected: the private file"}},
            {{kRejected, kRow}, {"error rejected: the system spec", "private file (/data"}},
            {{kRow, kRejected}, {"1 row of Nimbra", "error rejected: the private file"}},
            {{kRow, "W KC2TargetSpec: Skipped Video/Features/a in the private file: not a boolean"},
             {"skipped: the system spec", "skipped: the private file"}},
            {{"W KC2TargetSpec: Skipped Video/Presets/a in the private file: not an integer", kRow},
             {"json): Video/Presets/a was skipped: not an integer", "json): 1 row of"}},
            {{"W KC2TargetSpec: Skipped Video/Presets/a: not an integer"},
             {"a program itself gave to parseJsonData(), a value was skipped once"}},
            {{kFailed, kFalling,
              tag + "Failed to open /vendor/etc/video_system_specs.json... Exit!", kRejected},
             {"the variant is \"_x\"", "error system-spec: there is no system spec",
              "error rejected: the private file"}},
            {{kMissing, kMissing, kRejected, kMissing, kMissing},
             {"error rejected: the system spec"}},
            {{kMissing, "I chatty: uid=1046(media) identical 3 lines", kRejected},
             {"error rejected: the private file"}},
            {{kMissing, "I chatty: uid=1046(media) expire 30 lines"},
             {"30 lines that the device dropped"}},
            {{kNoCodecs}, {"warning no-codecs: ", "private file, or none"}},
            {{"E Platform_BufferLayout: Format TAMRA_P010 does not contain plane-?"},
             {"plane ? of TAMRA_P010", "have: Y, UV."}},
            {{"E Platform_BufferLayout: 0x127 is not a Tamra color format!"},
             {"plane of 0x127, which is not"}},
            {{"E KC2Platform: NOTE9: Failed to fstat(-1)"}, {"descriptor -1"}},
            {{tag + "\x1b[31mnew line"}, {"\\x1B[31mnew line"}},
            {{"I KC2TargetSpec: Codec plugins:", "E KC2Platform: NOTE9: Failed to fstat(7)",
              "I KC2TargetSpec:        a"},
             {"codec plug-ins, then codec components (1): a", "start of the dump is missing"}},
            {{tag + "       a                         : -0",
              tag + "       b                         : 0"},
             {"a                         : -0"}},
            // Cut lines prove what they show, and the absence of others proves nothing.
            {{tag + "Couldn't parse js"}, {"error gaps: 1 cut line"}},
            {{kFailed, kFalling, tag + "Failed to open /vendor/etc/video_system_specs.json... Ex"},
             {"error system-spec: there is no system spec"}},
            {{kFailed, kFalling, tag + "Failed to open /vendor/etc/vi"},
             {"error system-spec: there is no system spec"}},
            {{tag + "Failed to open /vendor/etc/media_on"},
             {"/vendor/etc/media_on... (cut) does not open"}},
            {{kFailed, "W KC2TargetSpec: Falling back to /ve"}, {"is read"}},
            {{kFailed, kFalling, tag + "Failed to"},
             {"error system-spec: there is no system spec"}},
            {{tag}, {"error gaps: 1 cut line"}},
            {{tag + "F"}, {"error system-spec: the variant's document does not open"}},
            {{"W KC2TargetSpec: Skipped Vid"}, {"error gaps: 1 cut line"}},
            {{"W KC2TargetSpec: Fall"},
             {"error system-spec: the variant's document does not open"}},
            {{"E Platform_BufferLayout: 0x127 is not a Ta"},
             {"error gaps: 1 cut line"},
             {"unknown"}},
            {{std::string(kMissing) + "  "}, {"warning variant"}, {"cut line"}},
            // The bit that lets the path through lets the dump through, too.
            {{kPath}, {"warning unfinished: the load does not end"}},
            {{kPath, "I KC2TargetSpec: Video Core Features:"}, {"note overlay"}, {"unfinished"}},
            {{kPath, kNoCodecs}, {"lines of this load are missing"}, {"unfinished"}},
            // No load writes these: none of their lines proves how one ended.
            {{kPath, "I KC2TargetSpec: Video Core Features:", "D KC2TargetSpec: HW Codec entries:",
              "I KC2TargetSpec:        c2.kvx.avc.decoder", kNoCodecs},
             {"warning mixed: "},
             {"none was merged"}},
            {{"W KC2TargetSpec: Skipped Video/Features/a in the built-in document: not a boolean",
              kNoCodecs},
             {"warning mixed: "},
             {"does not open", "none was merged"}},
            // A dump without the line of the path proves no order: a component may have asked for
            // it.
            {{kRejected, "I KC2TargetSpec: Video Core Features:"},
             {"error rejected: either ", "of a component that has called printSpecifications()"}},
            // The widths show where the heading of the presets is lost.
            {{"I KC2TargetSpec: Video Core Features:",
              "I KC2TargetSpec:        a                         : 1",
              "I KC2TargetSpec:        p                                   : 5",
              "I KC2TargetSpec: Pre processing plugins:"},
             {"features (1): a=1", "presets (1): p=5",
              "Headings are missing (Video Core Presets:"}},
    };
    for (const auto& [lines, words, otherWords] : rows) {
        const std::string log = inLog(lines);
        const Json::Value loads = described(log);
        EXPECT_EQ(1u, loads.size()) << log;
        for (const std::string& word : otherWords) {
            EXPECT_EQ(std::string::npos, textOfAll(loads).find(word)) << word << "\n"
                                                                      << log << textOfAll(loads);
        }
        for (const std::string& word : words) {
            EXPECT_NE(std::string::npos, textOfAll(loads).find(word)) << word << "\n"
                                                                      << log << textOfAll(loads);
        }
    }
}

TEST(LogCommandTest, ALogThatEndsAfterALineLeavesTheNextOneOpen) {
    const std::string log = other(3600) + timed({kFailed, kFalling}, 77, 3630);
    EXPECT_NE(std::string::npos, textOfAll(described(log)).find("opens is not in the log"));
    EXPECT_EQ("-xxxx", possibleIn(described(log)[0]).substr(0, 5));
    EXPECT_EQ("-x-x-", possibleIn(described(log + other(3660))[0]).substr(0, 5));
}

// What a load did not write in the ten seconds around it, it did not write at all.
TEST(LogCommandTest, TenSecondsAroundALoadShowWhatItDidNotWrite) {
    const auto lines = [](int count) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += "I/Other(99): a line\n";
        }
        return text;
    };
    const auto failed = [](int seconds) { return timed({kFailed, kFalling}, 77, seconds); };
    const auto rejected = [](int seconds) { return timed({kRejected}, 77, seconds); };
    const std::string beginning = "--------- beginning of main\n";
    const std::string brief = "E/KC2TargetSpec(77): Couldn't parse json from file stream\n";
    constexpr int kDay = 86400;
    const char* const kEndOpen = "-xxxx";
    const char* const kEndKnown = "-x-x-";
    const char* const kStartOpen = "xxxxx";
    const char* const kStartKnown = "x--xx";
    const struct {
        std::string log;
        const char* possible;  // Of the first step.
    } rows[] = {
            {other(0) + failed(30) + other(39), kEndOpen},
            {other(0) + failed(30) + other(40), kEndKnown},
            {other(0) + failed(30) + other(35) + other(40), kEndKnown},
            {other(0) + failed(30) + other(35) + other(40 + kDay), kEndOpen},
            {other(0) + failed(30) + other(29 + kDay), kEndKnown},
            {other(0) + failed(30) + other(30 + kDay), kEndOpen},
            {other(99) + failed(130) + other(70), kEndOpen},
            {other(99) + failed(130) + other(69) + other(300), kEndOpen},
            {other(0) + failed(30) + timed({kNoCodecs}, 77, 31), kEndKnown},
            {other(0) + rejected(9) + other(60), kStartOpen},
            {other(0) + rejected(10) + other(60), kStartKnown},
            {other(0) + other(kDay) + rejected(9 + kDay) + other(60 + kDay), kStartOpen},
            {other(0) + other(kDay) + rejected(10 + kDay) + other(60 + kDay), kStartKnown},
            {other(0) + other(30) + other(30 + kDay) + rejected(39 + kDay) + other(99 + kDay),
             kStartOpen},
            {beginning + other(0) + beginning + rejected(30) + other(60), kStartOpen},
            {lines(990) + brief + lines(1010), kStartOpen},
            {lines(1010) + brief + lines(1010), kStartKnown},
            {lines(990) + timed({kRejected}, 77, 5) + other(60), kStartOpen},
    };
    for (const auto& [log, possible] : rows) {
        const Json::Value loads = described(log);
        ASSERT_EQ(1u, loads.size()) << log;
        EXPECT_EQ(possible, possibleIn(loads[0]).substr(0, 5)) << log.substr(0, 500);
    }
}

TEST(LogCommandTest, ADumpWithoutItsStartIsNamedByItsFirstEntry) {
    const std::string tag = kTag;
    const Json::Value loads = described(inLog({tag + "       a                         : 1",
                                               tag + "       b                         : 0"}));
    ASSERT_EQ(1u, loads.size());
    size_t dumps = 0;
    for (const Json::Value& conclusion : loads[0]["conclusions"]) {
        if (conclusion["topic"] == "store") {
            EXPECT_EQ(loads[0]["firstLine"].asInt(), conclusion["lines"][0].asInt());
            ++dumps;
        }
    }
    EXPECT_EQ(1u, dumps);
}

TEST(LogCommandTest, ANewLoadBeginsWhereALineCannotFollow) {
    const std::string rejected = timed({kRejected}, 77, 3600);
    const std::vector<std::string> five(5, kMissing);
    const std::string beginning = "--------- beginning of main\n";
    const std::string system = "--------- beginning of system\n";
    const auto at = [](const std::string& time) { return time + "   77   77 " + kRejected + "\n"; };
    constexpr char kOther[] =
            "E KC2TargetSpec: Failed to open "
            "/odm/etc/media_y/video_system_specs.json";
    constexpr char kFeature[] = "W KC2TargetSpec: Skipped Video/Features/a in the system spec: x";
    constexpr char kPreset[] = "W KC2TargetSpec: Skipped Video/Presets/a in the system spec: x";
    const struct {
        std::string log;
        size_t loads;
    } rows[] = {
            {timed(five, 77, 3600), 2},
            {rejected + rejected, 1},
            {rejected + rejected + rejected, 2},
            // Hours apart, or backwards, or in a buffer that begins again: two boots.
            {rejected + timed({kRejected}, 77, 7200), 2},
            {rejected + timed({kRejected}, 77, 3500), 2},
            {beginning + rejected + beginning + rejected, 2},
            {beginning + rejected + "--------- beginning of system\n" + rejected, 1},
            // Queries begin none, and may come hours later.
            {rejected + timed({kNoCodecs}, 77, 50000), 1},
            {timed({kNoCodecs, kRejected}, 77, 3600), 2},
            {timed({"I KC2TargetSpec: Video Core Features:", kFailed}, 77, 3600), 2},
            {timed({kFailed}, 1, 5) + timed({kRejected}, 2, 5) + timed({kFailed}, 1, 5), 3},
            // A minute apart, or a minute backwards, and a second more; over the ends of a day, a
            // month and a year; in seconds since the start.
            {rejected + timed({kRejected}, 77, 3660), 1},
            {rejected + timed({kRejected}, 77, 3661), 2},
            {rejected + timed({kRejected}, 77, 3540), 1},
            {rejected + timed({kRejected}, 77, 3539), 2},
            {at("11-25 08:00:00.500") + at("11-25 08:01:00.500"), 1},
            {at("11-25 08:00:00.500") + at("11-25 08:01:00.625"), 2},
            {at("11-25 08:00:00.625") + at("11-25 08:01:00.500"), 1},
            {at("11-24 23:59:59.000") + at("11-25 00:00:59.000"), 1},
            {at("10-31 23:59:59.000") + at("11-01 00:00:59.000"), 1},
            {at("12-31 23:59:59.000") + at("01-01 00:00:59.000"), 1},
            {at("12-31 23:59:59.000") + at("01-01 00:01:00.000"), 2},
            {at("2026-12-31 23:59:59.000") + at("2027-01-01 00:00:59.000"), 1},
            {at("   12.500") + at("   72.500"), 1},
            {at("   12.5") + at("   72.6"), 2},
            {at("   12.500") + at("11-25 08:00:00.000"), 1},
            // Another path, another variant, lines about sections in another order than a load's.
            {timed({kPath, kOther}, 77, 3600), 2},
            {timed({kOther, kFalling}, 77, 3600), 1},
            {timed({kMissing, kPath}, 77, 3600), 2},
            {timed({kPath, kMissing}, 77, 3600), 2},
            {timed({kFeature, kFeature, kPreset}, 77, 3600), 1},
            {timed({kPreset, kFeature}, 77, 3600), 2},
            // A buffer is another one only until it begins again.
            {beginning + rejected + system + beginning + rejected + system + rejected, 2},
            {"E/Other(1): Couldn't parse json from file stream\n", 0},
    };
    for (const auto& [log, loads] : rows) {
        EXPECT_EQ(loads, described(log).size()) << log;
    }
}

// --- Logs as people send them --------------------------------------------------------------------

// Some lines of each kind; `form` writes one in some format.
using Form = std::function<std::string(char priority, std::string tag, std::string text)>;

std::string logIn(const Form& form) {
    const std::vector<std::pair<const char*, const char*>> lines = {
            {"Parsing system specs file from: /odm/etc/media_test/video_system_specs.json", "I"},
            {"Skipped Video/Features/a in the system spec: not a boolean", "W"},
            {"Unable to queue the json entry due to inappropriate size", "W"},
            {"Video Core Features:", "I"},
            {"       b                         : 1", "I"},
            {"Video Core Presets:", "I"},
            {"       c                                   : 5", "I"},
            {"Pre processing plugins:", "I"},
            {"Codec plugins:", "I"},
            {"       plug", "I"},
            {"HW Codec entries:", "D"},
            {"       c2.kvx.avc.decoder", "I"},
            {"Couldn't parse json from file stream", "E"},
    };
    std::string log;
    for (const auto& [text, priority] : lines) {
        log += form('I', "Other", "       not ours : 1") + form(*priority, "KC2TargetSpec", text);
    }
    return log;
}

std::string inUtf16(const std::string& text, bool isBig) {
    std::string result;
    for (const char c : text) {
        result += isBig ? std::string{'\0', c} : std::string{c, '\0'};
    }
    return result;
}

std::string threadtime(char p, const std::string& tag, const std::string& text) {
    return std::string("11-25 08:11:21.123   77   78 ") + p + " " + tag + " : " + text + "\n";
}

using S = std::string;

// How each format writes a line.
std::vector<std::pair<const char*, Form>> allForms() {
    const auto after = [](const S& prefix) {
        return [prefix](char p, const S& tag, const S& text) {
            return prefix + threadtime(p, tag, text);
        };
    };
    const auto long_ = [](const S& prefix) {
        return [prefix](char p, const S& tag, const S& text) {
            return prefix + "[ 11-25 08:11:21.123   77:   78 " + p + "/" + tag + "  ]\n" + prefix +
                   text + "\n" + prefix + "\n";
        };
    };
    const auto withoutTag = [](const S& header) {
        return [header](char p, const S& tag, const S& text) {
            return tag == "Other" ? S("\n") : (header.empty() ? S() : p + header) + text + "\n";
        };
    };
    const auto number = std::make_shared<int>(0);
    return {
            {"brief",
             [](char p, S tag, S text) { return p + ("/" + tag + "  ( 77): " + text + "\r\n"); }},
            {"brief, user",
             [](char p, S tag, S text) {
                 return p + ("/" + tag + "( 1046:   77): " + text + "\n");
             }},
            {"tag", [](char p, S tag, S text) { return p + ("/" + tag + "  : " + text + "\n"); }},
            {"process",
             [](char p, S tag, S text) { return p + ("(   77) " + text + "  (" + tag + ")\n"); }},
            {"process, user",
             [](char p, S tag, S text) {
                 return p + ("( 1046:   77) " + text + "  (" + tag + ")\n");
             }},
            {"process, name",
             [](char p, S tag, S text) {
                 return p + ("(media:   77) " + text + "  (" + tag + ")\n");
             }},
            {"thread", withoutTag("(   77:   78) ")},
            {"thread, user", withoutTag("( 1046:   77:   78) ")},
            {"raw", withoutTag("")},
            {"time",
             [](char p, S tag, S text) {
                 return S("11-25 08:11:21.123 ") + p + "/" + tag + "( 77): " + text + "\n";
             }},
            {"time, user",
             [](char p, S tag, S text) {
                 return S("11-25 08:11:21.123 ") + p + "/" + tag + "( 1046:   77): " + text + "\n";
             }},
            {"threadtime", threadtime},
            {"year, zone, user",
             [](char p, S tag, S text) {
                 return S("2026-11-25 08:11:21.123456 +0100  media   77   78 ") + p + " " + tag +
                        ": " + text + "\n";
             }},
            {"epoch, colour",
             [](char p, S tag, S text) {
                 return S("\033[38;5;40m    1764058281.123   77   78 ") + p + " " + tag + ": " +
                        text + "\033[0m\n";
             }},
            {"long", long_("")},
            {"long, user",
             [](char p, S tag, S text) {
                 return S("[ 11-25 08:11:21.123  1046:   77:   78 ") + p + "/" + tag + "  ]\n" +
                        text + "\n\n";
             }},
            {"IDE, old",
             [](char p, S tag, S text) {
                 return S("2026-11-25 08:11:21.123 77-78/? ") + p + "/" + tag + ": " + text + "\n";
             }},
            {"IDE, older",
             [](char p, S tag, S text) {
                 return S("11-25 08:11:21.123 77-78/com.vendor.media ") + p + "/" + tag + ": " +
                        text + "\n";
             }},
            {"IDE, new",
             [](char p, S tag, S text) {
                 return S("2026-11-25 08:11:21.123    77-78    ") + tag +
                        "           pid-77               " + p + "  " + text + "\n";
             }},
            {"quoted", after("> ")},
            {"quoted twice", after("> > ")},
            {"quoted long", long_("> ")},
            {"CI", after("2026-11-25T08:11:22.0000001Z ")},
            {"CI in brackets", after("[2026-11-25 08:11:22] ")},
            {"CI, clock", after("[08:11:22] ")},
            {"grep -n",
             [number](char p, S tag, S text) {
                 return std::to_string(++*number) + ":" + threadtime(p, tag, text);
             }},
            {"grep -C", after("17-")},
            {"grep, two files", after("logs/logcat.txt:")},
            {"grep -n, two files", after("logcat.txt:17:")},
            {"system log", after("Nov 25 08:00:01 phone logcat[12]: ")},
            {"CI, device", after("[phone-1] ")},
            {"cat -n",
             [number](char p, S tag, S text) {
                 return "    " + std::to_string(++*number) + "\t" + threadtime(p, tag, text);
             }},
            {"numbered brief",
             [number](char p, S tag, S text) {
                 return std::to_string(++*number) + ":" + p + "/" + tag + "(   77): " + text + "\n";
             }},
    };
}

TEST(LogCommandTest, EveryFormatAndEncodingIsRead) {
    const S expected = textOfAll(described(logIn(threadtime)));
    for (const char* words : {"variant is \"_test\"", "Video/Features/a was skipped", "1 row of",
                              "features (1): b=1", "presets (1): c=5", "plug-ins (1): plug",
                              "components (1): c2.kvx", "rejected: the private file"}) {
        EXPECT_NE(S::npos, expected.find(words)) << words << "\n" << expected;
    }
    for (const auto& [name, form] : allForms()) {
        const Json::Value loads = described(logIn(form));
        EXPECT_EQ(1u, loads.size()) << name;
        EXPECT_EQ(expected, textOfAll(loads)) << name;
        const S time = loads[0]["time"].asString();
        EXPECT_TRUE(time.empty() || time.starts_with("11-25 08:11:21") ||
                    time.starts_with("2026-11-25 08:11:21") || time.starts_with("1764058281."))
                << name << ": " << time;
    }
    const S plain = logIn(threadtime);
    for (const S& encoded :
         {S("\xEF\xBB\xBF") + plain, S("\xFF\xFE") + inUtf16(plain, false), inUtf16(plain, false),
          S("\xFE\xFF") + inUtf16(plain, true), inUtf16(plain, true), inUtf16(plain, false) + "x",
          S(plain).insert(plain.find("11-25", plain.size() / 2), "\xEF\xBB\xBF")}) {
        EXPECT_EQ(expected, textOfAll(described(encoded)));
    }
    S large = plain;  // Of several blocks.
    for (int i = 0; i < 2000; ++i) {
        large.insert(0, threadtime('I', "Other", "a line"));
    }
    EXPECT_EQ(described(large), described(inUtf16(large, true)));
    // A second half alone, a pair, and a first half alone.
    const auto withName = [](S log, const S& name) {
        const S old = name[0] == '\0' ? S("p\0l\0u\0g\0", 8) : S("plug");
        return log.replace(log.find(old), old.size(), name);
    };
    const S halves("\0\xDE\x3D\xD8\0\xDE\x3D\xD8", 8);
    EXPECT_EQ(textOfAll(described(withName(plain, "\uFFFD\U0001F600\uFFFD"))),
              textOfAll(described(withName(inUtf16(plain, false), halves))));
    // The first and the last character of each length in UTF-8, and of each kind of half.
    const S ends(
            "\0\x08\x80\0\xFF\x07\xFF\xD7\0\xE0\xFF\xFF\0\xD8\0\xDC\xFF\xDB\xFF\xDF"
            "\0\xDC\xFF\xDF\0\xD8\xFF\xDB\0\xE0",
            30);
    EXPECT_EQ(
            textOfAll(described(withName(plain,
                                         "\u0800\u0080\u07FF\uD7FF\uE000\uFFFF\U00010000\U0010FFFF"
                                         "\uFFFD\uFFFD\uFFFD\uFFFD\uE000"))),
            textOfAll(described(withName(inUtf16(plain, false), ends))));
}

TEST(LogCommandTest, WhatIsNoLogIsSaidToBeNone) {
    const ScratchDirectory scratch;
    const S start = "E/KC2TargetSpec(77): Failed to open /odm/etc/media_";
    const S end = "/video_system_specs.json";
    const S longest = start + S(2048 - start.size() - end.size(), 'x') + end + "\n";
    const struct {
        S log;
        int exitCode;
        const char* words;
    } rows[] = {
            {"", 2, "the log is empty"},
            {"some text\nand more\n", 2, "none of 2 lines is in a format of logcat"},
            {S("\x1F\x8B\x08\0\0", 5), 2, "gzip file: unpack"},
            {S("PK\x03\x04") + S(40, '\0'), 2, "zip file: unpack"},
            {S("7z\xBC\xAF\x27\x1C") + S(40, '\0'), 2, "7z file: unpack"},
            {S("log") + S(254, '\0') + "ustar" + S(255, '\0'), 2, "tar archive: unpack"},
            {S("\x89PNG\r\n\x1A\n") + S(40, '\0'), 2, "a picture"},
            {"\xEF\xBB\xBF", 2, "the log is empty"},
            {"\r\n\n", 2, "the log is empty"},
            {timed({"E KC2TargetSpec:"}, 77, 5), 1, "the line of a fault is cut"},
            {timed({"I Host: " + timed({kRejected}, 1, 5)}, 77, 5), 2, "1 line with a tag"},
            {S(5000, '\0'), 2, "binary"},
            {"BZh91AY", 2, "a bzip2 file: use \"bzcat"},
            {S("\xFD") + "7zXZ", 2, "an xz file: use \"xzcat"},
            {"\x28\xB5\x2F\xFD", 2, "a zstd file: use \"zstdcat"},
            {"\xFF\xD8\xFF\xE0", 2, "a picture"},
            {"%PDF-1.7\n", 2, "a PDF document"},
            // One byte of twenty may be anything; of UTF-16 one character of ten.
            {S(19, 'a') + "\x01", 2, "none of 1 line"},
            {S(18, 'a') + "\x01", 2, "binary"},
            {"\t\f\b\033\r", 2, "none of 1 line"},
            {inUtf16(S(9, 'a') + "\x01", false), 2, "none of 1 line"},
            {inUtf16(S(8, 'a') + "\x01\x01", false), 2, "binary"},
            {inUtf16("ab", true), 2, "none of 1 line"},
            {inUtf16("a", true), 2, "binary"},
            // The longest line that is read, and one byte more.
            {longest, 1, "x/video_system_specs.json does not open"},
            {S(longest).insert(longest.find('x'), "x"), 1, "specs.jso... (cut) does not open"},
            {"--------- beginning of main\n", 0, "No line of the library is in the 1 line of"},
            {other(5), 0, "No line of the library"},
            {"{\"tag\": \"KC2TargetSpec\", \"message\": \"Failed to open /x\"},\n", 2,
             "1 line with a tag or a text of the library, but in no known format. The first is "
             "line 1: {"},
            {other(5) + "12;KC2TargetSpec;x\n", 2, "line 2: 12;KC2TargetSpec;x"},
            {timed({kRejected}, 77, 5) + "12;KC2TargetSpec;x\n", 1, "is line 2: 12;KC2TargetSpec"},
            {"E/KC2TargetSpec: Couldn't parse json from file stream\n", 1, "-v threadtime"},
    };
    for (const auto& [log, exitCode, words] : rows) {
        const Result result = run("log " + scratch.write("log", log));
        EXPECT_EQ(exitCode, result.exitCode) << log;
        EXPECT_NE(S::npos, result.output.find(words)) << words << "\n" << result.output;
    }
}

// --- Beside the documents of the phone -----------------------------------------------------------

class LogOfTreeTest : public testing::Test {
protected:
    // A load of the tree in the middle of a log.
    std::string logOf(const std::string& arguments) {
        mTree.write("vendor/README", "");
        const std::string brief =
                run("show --rootdir " + mTree.path() + " " + arguments + " 2>&1 >/dev/null | cat")
                        .output;
        std::istringstream lines(brief);
        std::vector<std::string> texts;
        for (std::string line; std::getline(lines, line);) {
            texts.push_back(line.substr(0, 1) +
                            " KC2TargetSpec: " + line.substr(line.find("): ") + 3));
        }
        return inLog(texts);
    }

    void writeAt(const char* devicePath, const std::string& text) {
        mTree.write(std::string(devicePath).substr(1), text);
    }

    std::string beside(const std::string& log) {
        return textOfAll(described(log, "--rootdir " + mTree.path()));
    }

    ScratchDirectory mTree;
};

TEST_F(LogOfTreeTest, EachOutcomeIsPossibleBesideItsOwnTree) {
    const struct {
        const char* tool;
        const char* privateText;  // Null: no file.
        const char* withTree;     // What log and tree leave possible.
    } rows[] = {
            {nullptr, nullptr, "x-x-xxxx-"},
            {nullptr, "", "-x-------"},
            {nullptr, kValid, "--x----x-"},
            {nullptr, "{", "---x----x"},
            {"", nullptr, "----xxxx-"},
            {"", "", "------x--"},
            {"", kValid, "-------x-"},
            {"", "{", "--------x"},
            {"", R"({"Video": {"Presets": {"p": "1"}}})", "-------x-"},
    };
    for (const auto& row : rows) {
        for (const std::string& arguments :
             {std::string("--log debug") + kVariant, std::string()}) {
            std::filesystem::remove_all(mTree.path() + "/vendor");
            std::filesystem::remove_all(mTree.path() + "/data");
            writeAt(kSpecOfTest, kValid);
            writeAt("/vendor/etc/media/video_system_specs.json", kValid);
            if (row.privateText != nullptr) {
                writeAt(kPrivate, row.privateText);
            }
            if (row.tool != nullptr) {
                writeAt(kTool, row.tool);
            }
            const std::string log = logOf(arguments);
            if (log.find("KC2") != std::string::npos) {
                const Json::Value loads = described(log, "--rootdir " + mTree.path());
                EXPECT_EQ(row.withTree, outcomesOf(loads)) << log;
                EXPECT_EQ(std::string::npos, textOfAll(loads).find("contradiction"))
                        << log << textOfAll(loads);
            }
        }
    }
}

TEST_F(LogOfTreeTest, ADocumentThatIsNotThePhonesIsFound) {
    writeAt(kSpecOfTest, R"({"Video": {"Features": {"b": true},
        "Presets": {"c": "5"}}})");
    const std::string log = logOf(std::string("--log info") + kVariant);
    const std::string same = beside(log);
    EXPECT_EQ(std::string::npos, same.find("contradiction")) << same;
    EXPECT_NE(std::string::npos, same.find("decides nothing: /data/vendor/media")) << same;
    const std::string places =
            described(log, "--rootdir " + mTree.path())[0]["places"].toStyledString();
    EXPECT_NE(std::string::npos, places.find("video_system_specs.json:2:26: Presets/c must"))
            << places;
    EXPECT_NE(std::string::npos, places.find("video_system_specs.json:1:30")) << places;
    // Of a name that occurs twice the last value is the one.
    writeAt(kSpecOfTest, R"({"Video": {"Features": {"b": false, "b": true}}})");
    const std::string last = described(logOf(std::string("--log info") + kVariant),
                                       "--rootdir " + mTree.path())[0]["places"]
                                     .toStyledString();
    EXPECT_NE(std::string::npos, last.find("video_system_specs.json:1:42")) << last;
    const std::pair<const char*, const char*> others[] = {
            {R"({"Video": {"Features": {"b": false}, "Presets": {"c": "5"}}})", "makes it 0"},
            {R"({"Video": {"Features": {}, "Presets": {"c": "5"}}})", "does not have"},
            {R"({"Video": {"Features": {"b": true}, "Presets": {"c": 5}}})", "does not log"},
            {R"({"Video": {"Features": {"b": true, "d": 1}, "Presets": {"c": "5", "e": "6"}}})",
             "no line of the log is about"},
            {"{", "but no line of the log says so"},
    };
    for (const auto& [text, words] : others) {
        writeAt(kSpecOfTest, text);
        const std::string besides = beside(log);
        EXPECT_NE(std::string::npos, besides.find("error contradiction: ")) << text;
        EXPECT_NE(std::string::npos, besides.find(words)) << text << "\n" << besides;
    }
}

TEST_F(LogOfTreeTest, WhatTheTreeDisprovesIsSaidOnce) {
    writeAt(kSpecOfTest, R"({"Video": {"Features": {"b": true}}})");
    const std::string path = std::string("I KC2TargetSpec: Parsing system specs file from: ");
    const std::string rejected =
            beside(inLog({path + kSpecOfTest, kRejected, "I KC2TargetSpec: Video Core Features:"}));
    EXPECT_NE(std::string::npos, rejected.find("the library accepts the tree's")) << rejected;
    EXPECT_EQ(std::string::npos, rejected.find("the dump does not show")) << rejected;
    const std::string failed =
            run("log " + mTree.write("log", inLog({path + kSpecOfTest, kFalling})) + " --rootdir " +
                mTree.path())
                    .output;
    EXPECT_NE(std::string::npos, failed.find("does not open on the phone")) << failed;
    EXPECT_EQ(std::string::npos, failed.find("[line 0]")) << failed;
}

TEST_F(LogOfTreeTest, OnlyAFileThatIsInTheTreeDecides) {
    mTree.write("vendor/README", "");
    // Not pulled: nothing contradicts.
    const std::string unknown =
            "the system spec document (no line names it: give the variant with --variant)";
    const std::pair<std::vector<std::string>, std::string> absent[] = {
            {{kRejected}, unknown},
            {{kPath, "I KC2TargetSpec: Video Core Features:"},
             "/odm/etc/media_x/video_system_specs.json"},
            {{kFailed, kFalling}, kFallback},
    };
    for (const auto& [lines, document] : absent) {
        const std::string text = beside(inLog(lines));
        EXPECT_EQ(std::string::npos, text.find("contradiction")) << text;
        EXPECT_NE(std::string::npos, text.find("note tree: compared with: no document; not in the "
                                               "tree, and so decides nothing: " +
                                               document + ", " + kPrivate + "\n"))
                << text;
    }
    // The line proves a private file, also where it is the only one; perhaps nobody has pulled it.
    const std::string noCodecs = beside(inLog({kNoCodecs}));
    EXPECT_NE(std::string::npos, noCodecs.find("; the phone has a private file")) << noCodecs;
    EXPECT_EQ(std::string::npos, noCodecs.find("contradiction")) << noCodecs;
    writeAt(kPrivate, R"({"Video": {"OptionalCodecs": ["c"]}})");
    EXPECT_NE(std::string::npos, beside(inLog({kNoCodecs})).find("json does"));
    // Either document by the log alone: the file in the tree is rejected, so it is the one.
    writeAt(kPrivate, "{");
    EXPECT_NE(std::string::npos,
              beside(inLog({kRejected})).find("error rejected: the private file"));
    writeAt(kFallback, kValid);
    EXPECT_NE(std::string::npos, beside(other(3600) + timed({kFailed, kFalling}, 77, 3630))
                                         .find("warning system-spec: "));
    constexpr char kVendorPath[] =
            "I KC2TargetSpec: Parsing system specs file from: "
            "/vendor/etc/media_x/video_system_specs.json";
    for (const char* const next : {kFailed, kFalling}) {  // Either line shows that it is tried.
        EXPECT_EQ("-x-x-", possibleIn(described(other(3600) + timed({kVendorPath, next}, 77, 3630),
                                                "--rootdir " + mTree.path())[0])
                                   .substr(0, 5));
    }
    // A file that the load itself may have written.
    writeAt(kPrivate, run("defaults").output);
    EXPECT_EQ("--x-xxxx-", outcomesOf(described(inLog({kMissing, kMissing, kMissing, kMissing}),
                                                "--rootdir " + mTree.path())));
}

// --- What is read first --------------------------------------------------------------------------

TEST(LogCommandTest, TheFirstLineOfALoadSaysWhatIsWrongAndFewFollow) {
    const ScratchDirectory scratch;
    std::vector<std::string> skipped(20, "");
    for (size_t i = 0; i < skipped.size(); ++i) {
        skipped[i] = "W KC2TargetSpec: Skipped Video/Features/f" + std::to_string(i) +
                     " in the private file: not a boolean";
    }
    const std::string pull = std::string("adb pull ") + kPrivate + "; kcodec2_spec check";
    const struct {
        std::vector<std::string> lines;
        std::string first;
    } rows[] = {
            {{kMissing, kMissing, kMissing, kMissing, kRejected},
             "1 error, 1 warning: private file rejected: " + pull},
            {{kPath, kRejected},
             "1 error, 1 warning: system spec document or private file rejected: " + pull +
                     " video_private_configs.json; adb pull /odm/etc/media_x/video_system_specs"},
            {skipped, "20 errors: values of the private file skipped: " + pull},
            {{kFailed, kFalling},
             "1 warning: /vendor/etc/media_x/video_system_specs.json does not"},
            {{"I KC2TargetSpec: Parsing system specs file from: "
              "/odm/etc/media_x/video_system_specs.json",
              "I KC2TargetSpec: Video Core Features:"},
             "no fault in these lines: the system spec document is /odm/etc/media_x/video_"},
    };
    for (const auto& [lines, first] : rows) {
        const std::string output = run("log " + scratch.write("log", inLog(lines))).output;
        EXPECT_NE(std::string::npos, output.substr(0, output.find('\n')).find(first)) << output;
        const auto count = std::count(output.begin(), output.end(), '\n');
        EXPECT_GE(first.starts_with("no fault") ? 1 : 24, count) << output;
        const size_t advice = output.find(pull);
        EXPECT_EQ(std::string::npos,
                  advice != std::string::npos ? output.find(pull, advice + 1) : advice)
                << output;
    }
}

// A service that is started again and again writes the same lines each time.
TEST(LogCommandTest, EqualLoadsAreDescribedOnce) {
    const ScratchDirectory scratch;
    const std::string log = other(5) + timed({kRejected}, 11, 20) + timed({kFailed}, 12, 40) +
                            timed({kRejected}, 13, 60) + timed({kRejected}, 14, 80) + other(99);
    const std::string output = run("log " + scratch.write("log", log)).output;
    const size_t detail = output.find("rejected as a whole");
    EXPECT_NE(std::string::npos, detail);
    EXPECT_EQ(std::string::npos, output.find("rejected as a whole", detail + 1)) << output;
    EXPECT_NE(std::string::npos,
              output.find("Process 13, 11-25 00:01:00.000 (line 4): the same as process 11 (line "
                          "2)\nProcess 14, 11-25 00:01:20.000 (line 5): the same as"))
            << output;
}

TEST(LogCommandTest, AHostileLogCostsLittleAndShowsNoRawByte) {
    const std::string tool =
            // In KiB of address space, of which AddressSanitizer reserves terabytes.
            std::string("| (ulimit -v ${KC2_TOOL_MEMORY:-300000}; ") + kToolCommand + " log)";
    // One line of 300 MB, also quoted and in UTF-16; 50,000 lines of as many processes; binary.
    for (const char* start : {"", "> ", "\\377\\376"}) {
        const Result large = run("--version >/dev/null; (printf '" + std::string(start) +
                                 "'; head -c 300000000 /dev/zero | tr '\\0' x) " + tool + " 2>&1");
        EXPECT_EQ(2, large.exitCode);
        EXPECT_NE(std::string::npos, large.output.find("none of 1 line is in a format of logcat"))
                << large.output;
    }
    const Result many =
            run("--version >/dev/null; seq -f 'E/KC2TargetSpec(%.0f): Failed to open /x\x1b[2J' "
                "50000 " +
                tool + " 2>&1 | tail -c 2000");
    EXPECT_NE(std::string::npos, many.output.find("/x\\x1B[2J")) << many.output;
    EXPECT_NE(std::string::npos, many.output.find("the log is too long"));
    // One process with too many lines, and one whose next load finds no more room.
    const std::string rejected =
            "echo \"E/KC2TargetSpec(6): Couldn't parse json from file stream\"";
    const Result calls = run("--version >/dev/null; (" + rejected + "; " + rejected +
                             "; seq -f 'E/KC2Platform(7): NOTE9: Failed to fstat(%.0f)' 150000; " +
                             rejected + ") " + tool + " 2>&1 | grep -c '\\[too-long\\]'");
    EXPECT_EQ("2\n", calls.output);
    const std::string binary =
            run("--version >/dev/null; head -c 3000000 /dev/urandom " + tool + " 2>&1").output;
    for (const char c : many.output + binary) {
        EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= ' ');
    }
}

}  // namespace

}  // namespace kc2::test
