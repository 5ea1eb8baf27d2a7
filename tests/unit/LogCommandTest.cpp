// The command "log": its table matches the sources; what it reports about logs that the library has
// written, in each form of logcat, and about hostile ones.

#include <gtest/gtest.h>
#include <json/value.h>

#include <filesystem>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "RunTool.h"

namespace kc2::test {

namespace {

constexpr char kPrivate[] = "/data/vendor/media/video_private_configs.json";
constexpr char kSpecOfTest[] = "/odm/etc/media_test/video_system_specs.json";
constexpr char kTool[] = "/vendor/bin/kcodec2_test";
constexpr char kVariant[] = " --property vendor.media.target_variant=_test";
constexpr char kValid[] = R"({"Video": {"Features": {"a": true}}})";

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

// A device tree, the log that the library writes for it, and what the command reports.
class LogOfTreeTest : public testing::Test {
protected:
    // The lines in logcat's brief form.
    std::string logOf(const std::string& arguments) {
        mTree.write("vendor/README", "");
        return run("show --rootdir " + mTree.path() + " " + arguments + " 2>&1 >/dev/null | cat")
                .output;
    }

    Json::Value told(const std::string& log, const std::string& arguments = "") {
        return parsed(run("log --json " + mScratch.write("log", log) + " " + arguments).output);
    }

    // The topics and texts of the first load, one per line.
    static std::string textOf(const Json::Value& json) {
        std::string text;
        for (const Json::Value& conclusion : json[0]["conclusions"]) {
            text += conclusion["severity"].asString() + " " + conclusion["topic"].asString() +
                    ": " + conclusion["text"].asString() + "\n";
        }
        return text;
    }

    // Which of the nine outcomes are possible, in their order.
    static std::string outcomesOf(const Json::Value& json) {
        std::string text;
        for (const Json::Value& outcome : json[0]["outcomes"]) {
            text += outcome["isPossible"].asBool() ? 'x' : '-';
        }
        return text;
    }

    ScratchDirectory mTree;
    ScratchDirectory mScratch;
};

TEST_F(LogOfTreeTest, EachOutcomeOfTheSecondStepIsAmongThePossibleOnes) {
    constexpr char kNoLine[] = "x-x-xxxx-";
    constexpr char kRejected[] = "-x-x----x";
    const struct {
        const char* tool;
        const char* privateText;  // Null: no file.
        const char* possible;
    } rows[] = {
            {nullptr, nullptr, kNoLine},
            {nullptr, "", kRejected},
            {nullptr, kValid, kNoLine},
            {nullptr, "{", kRejected},
            {"", nullptr, kNoLine},
            {"", "", kNoLine},
            {"", kValid, kNoLine},
            {"", "{", kRejected},
            {"", R"({"Video": {"Presets": {"p": "1"}}})", "--x----x-"},
    };
    for (const auto& row : rows) {
        // With the info lines on, the dump proves which document a line is about; so does a line
        // about the missing variant.
        for (const std::string& arguments : {std::string("--log info") + kVariant, std::string()}) {
            ScratchDirectory tree;
            tree.write(std::string(kSpecOfTest).substr(1), kValid);
            tree.write("vendor/etc/media/video_system_specs.json", kValid);
            if (row.privateText != nullptr) {
                tree.write(std::string(kPrivate).substr(1), row.privateText);
            }
            if (row.tool != nullptr) {
                tree.write(std::string(kTool).substr(1), row.tool);
            }
            const std::string log = run("show --rootdir " + tree.path() + " " + arguments +
                                        " 2>&1 >/dev/null | cat")
                                            .output;
            EXPECT_EQ(row.possible, outcomesOf(told(log))) << log;
            // The tree that wrote the log contradicts nothing; once emptied, it does where it can.
            const std::string beside = textOf(told(log, "--rootdir " + tree.path()));
            EXPECT_EQ(std::string::npos, beside.find("contradiction")) << beside;
        }
    }
}

TEST_F(LogOfTreeTest, EveryFormOfLogcatGivesTheSameReport) {
    mTree.write(std::string(kSpecOfTest).substr(1),
                R"({"Video": {"Features": {"a": "x", "b": true}, "Presets": {"c": 5},
                    "NimbraModeBitrateTable": [[1], [2]], "KC2CodecPlugins": ["plug"],
                    "OptionalCodecs": ["c2.kvx.avc.decoder"],
                    "KC2EncPostProcessingFilters": ["grain"]}})");
    mTree.write(std::string(kPrivate).substr(1), "{");
    const std::string brief = logOf(std::string("--log debug") + kVariant);
    const std::string expected = textOf(told(brief));
    for (const char* words :
         {"variant is \"_test\"", "Video/Features/a was skipped: not a boolean", "2 rows of",
          "filter \"grain\"", "features (1): b=1", "presets (1): c=5", "codec plug-ins (1): plug",
          "components (1): c2.kvx", "the private file (/data/vendor/media/video_private_configs"}) {
        EXPECT_NE(std::string::npos, expected.find(words)) << words << "\n" << expected;
    }
    const auto rewritten =
            [&](const std::function<std::string(char, std::string, std::string)>& form) {
                std::istringstream lines(brief);
                std::string log = "--------- beginning of main\n";
                for (std::string line; std::getline(lines, line);) {
                    const size_t bracket = line.find('(');
                    log += form('I', "Other", "       not ours : 1");
                    log += form(line[0], line.substr(2, bracket - 2),
                                line.substr(line.find("): ") + 3));
                }
                return log;
            };
    using S = std::string;
    const std::vector<std::function<S(char, S, S)>> forms = {
            [](char p, S tag, S text) { return p + ("/" + tag + "  ( 77): " + text + "\r\n"); },
            [](char p, S tag, S text) { return p + ("/" + tag + "(1046: 77): " + text + "\n"); },
            [](char p, S tag, S text) { return p + ("/" + tag + "  : " + text + "\n"); },
            [](char p, S tag, S text) { return p + ("( 77) " + text + "  (" + tag + ")\n"); },
            [](char, S tag, S text) { return tag == "Other" ? S("noise\n") : text + "\n"; },
            [](char p, S tag, S text) {
                return S("11-25 08:11:21.123 ") + p + "/" + tag + "( 77): " + text + "\n";
            },
            [](char p, S tag, S text) {
                return S("11-25 08:11:21.123   77   78 ") + p + " " + tag + " : " + text + "\n";
            },
            [](char p, S tag, S text) {
                return S("2026-11-25 08:11:21.123456 +0100  media   77   78 ") + p + " " + tag +
                       ": " + text + "\n";
            },
            [](char p, S tag, S text) {
                return S("\033[38;5;40m    1764058281.123   77   78 ") + p + " " + tag + ": " +
                       text + "\033[0m\n";
            },
            [](char p, S tag, S text) {
                return S("[ 11-25 08:11:21.123   77:   78 ") + p + "/" + tag + "  ]\n" + text +
                       "\n\n";
            },
    };
    for (size_t i = 0; i < forms.size(); ++i) {
        const Json::Value json = told(rewritten(forms[i]));
        EXPECT_EQ(1u, json.size()) << i;
        EXPECT_EQ(expected, textOf(json)) << i;
    }
}

TEST_F(LogOfTreeTest, WhatIsProvedIsReportedAndTheRestIsLeftOpen) {
    const std::string e = "E KC2TargetSpec: ";
    const std::string w = "W KC2TargetSpec: ";
    const std::string rejected = e + "Couldn't parse json from file stream";
    const std::string row = w + "Unable to queue the json entry due to inappropriate size";
    const std::string missing = e + "Couldn't read target-id, target-id = default is chosen.";
    const std::string failed = e + "Failed to open /vendor/etc/media_x/video_system_specs.json";
    const std::string exit = e + "Failed to open /vendor/etc/video_system_specs.json... Exit!";
    const struct {
        std::vector<std::string> lines;
        std::vector<std::string> words;
    } rows[] = {
            {{rejected}, {"error rejected: either ", "does not say which"}},
            {{rejected, rejected},
             {"error rejected: the system spec document was", "error rejected: the private file"}},
            {{rejected, row}, {"error rejected: the system spec", "skipped: the private file"}},
            {{row, rejected}, {"skipped: the system spec", "error rejected: the private file"}},
            {{row, w + "Skipped Video/Features/a: not a boolean"},
             {"skipped: the system spec", "skipped: the private file"}},
            {{w + "Skipped Video/Presets/a in the private file: not an integer", row},
             {"the private file (/data/vendor/media/video_private_configs.json): Video/Presets/a "
              "was skipped: not an integer",
              "json): 1 row of"}},
            {{failed, w + "Falling back to /vendor/etc/video_system_specs.json", exit, rejected},
             {"the variant is \"_x\"", "error system-spec: there is no system spec",
              "error rejected: the private file"}},
            {{missing, missing, rejected, missing, missing},
             {"there 4 times, which is one load", "error rejected: the system spec"}},
            {{missing, "I chatty: uid=1046(media) identical 3 lines", rejected},
             {"there 4 times, which is one load", "error rejected: the private file"}},
            {{missing, "I chatty: uid=1046(media) expire 30 lines"},
             {"there once; one load writes it 4 times", "30 lines that the device dropped"}},
            {{w + "List of Supported Codecs is Empty. All codecs will be enabled.."},
             {"warning no-codecs: "}},
            {{"E Platform_BufferLayout: Format TAMRA_P010 does not contain plane-?"},
             {"plane ? of TAMRA_P010", "have: Y, UV."}},
            {{"E Platform_BufferLayout: 0x127 is not a Tamra color format!"},
             {"plane of 0x127, which is not"}},
            {{"E KC2Platform: NOTE9: Failed to fstat(-1)"}, {"descriptor -1"}},
            {{e + "Couldn't parse js", e + "\x1b[31mnew line"},
             {"1 cut line: what", "\\x1B[31mnew line"}},
            {{"I KC2TargetSpec: Codec plugins:", "E KC2Platform: NOTE9: Failed to fstat(7)",
              "I KC2TargetSpec:        a"},
             {"codec plug-ins, then codec components (1): a", "bit 0x8", "dump is cut off"}},
    };
    for (const auto& [lines, words] : rows) {
        std::string log;
        for (const std::string& line : lines) {
            log += "11-25 08:11:21.123   77   78 " + line + "\n";
            log += "11-25 08:11:21.123   99   99 I Other: line\n";
        }
        const Json::Value json = told(log);
        EXPECT_EQ(1u, json.size()) << log;
        for (const std::string& word : words) {
            EXPECT_NE(std::string::npos, textOf(json).find(word)) << word << "\n" << textOf(json);
        }
    }
    // Two processes, and two loads with one process number.
    const std::string two = "E/KC2TargetSpec(1): Failed to open /vendor/etc/media_x/v\n";
    EXPECT_EQ(
            3u,
            told(two + "E/KC2TargetSpec(2): Couldn't parse json from file stream\n" + two).size());
    EXPECT_EQ(0u, told("E/Other(1): Couldn't parse json from file stream\n").size());
}

TEST_F(LogOfTreeTest, APulledDocumentThatIsNotThePhonesIsFound) {
    const std::string spec = std::string(kSpecOfTest).substr(1);
    const std::string tree = "--rootdir " + mTree.path();
    mTree.write(spec, R"({"Video": {"Features": {"b": true},
        "Presets": {"c": "5"}}})");
    const std::string log = logOf(std::string("--log info") + kVariant);
    const Json::Value same = told(log, tree);
    EXPECT_EQ(std::string::npos, textOf(same).find("contradiction")) << textOf(same);
    const std::string places = same[0]["places"].toStyledString();
    EXPECT_NE(std::string::npos, places.find(spec + ":2:26: Presets/c must")) << places;
    EXPECT_NE(std::string::npos, places.find(spec + ":1:30")) << places;
    const std::pair<const char*, const char*> others[] = {
            {R"({"Video": {"Features": {"b": false}, "Presets": {"c": "5"}}})", "makes it 0"},
            {R"({"Video": {"Features": {}, "Presets": {"c": "5"}}})", "does not have"},
            {R"({"Video": {"Features": {"b": true}, "Presets": {"c": 5}}})", "leaves the line"},
            {R"({"Video": {"Features": {"b": true, "d": 1}, "Presets": {"c": "5", "e": "6"}}})",
             "no line of the log is about"},
            {"{", "but no line of the log says so"},
    };
    for (const auto& [text, words] : others) {
        mTree.write(spec, text);
        const std::string beside = textOf(told(log, tree));
        EXPECT_NE(std::string::npos, beside.find("error contradiction: ")) << text;
        EXPECT_NE(std::string::npos, beside.find(words)) << text << "\n" << beside;
    }
}

TEST(LogCommandTest, AHostileLogCostsLittleAndShowsNoRawByte) {
    const std::string tool =
            // In KiB of address space, of which AddressSanitizer reserves terabytes.
            std::string("| (ulimit -v ${KC2_TOOL_MEMORY:-300000}; ") + kToolCommand + " log)";
    // One line of 200 MB; 50,000 lines of as many processes; binary.
    EXPECT_NE(std::string::npos, run("--version >/dev/null; head -c 200000000 /dev/zero " + tool)
                                         .output.find("No line"));
    const Result many =
            run("--version >/dev/null; seq -f 'E/KC2TargetSpec(%.0f): Failed to open /x\x1b[2J' "
                "50000 " +
                tool + " 2>&1 | tail -c 2000");
    EXPECT_NE(std::string::npos, many.output.find("/x\\x1B[2J")) << many.output;
    EXPECT_NE(std::string::npos, many.output.find("more than is kept"));
    const std::string binary =
            run("--version >/dev/null; head -c 3000000 /dev/urandom " + tool).output;
    for (const char c : many.output + binary) {
        EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= ' ');
    }
}

}  // namespace

}  // namespace kc2::test
