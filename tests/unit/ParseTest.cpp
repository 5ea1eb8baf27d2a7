// Reading a document into a store: every value rule, every bad value, every rejected document, and
// what a second document changes.

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <utility>

#include "Device.h"
#include "device/BaseLibrary.h"
#include "hostplatform/HostPlatform.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Limits.h"

namespace kc2::test {

namespace {

class ParseTest : public testing::Test {
protected:
    Device mDevice;
    TargetSpec mSpec;
};

std::string nested(int depth, const std::string& innermost) {
    std::string open;
    std::string close;
    for (int i = 1; i < depth; ++i) {
        open += i % 2 == 0 ? "[" : "{\"a\":";
        close.insert(0, i % 2 == 0 ? "]" : "}");
    }
    return open + innermost + close;
}

// With its array and its root it has two values more.
std::string arrayOf(size_t count, const std::string& value) {
    std::string text = "[" + value;
    for (size_t i = 1; i < count; ++i) {
        text.append(",").append(value);
    }
    return "{\"a\":" + text + "]}";
}

std::string textOf(size_t size) {
    return "{}" + std::string(size - 2, ' ');
}

TEST_F(ParseTest, OneDocumentShowsTheValueRules) {
    host::setLogLevel(0x4);
    updateLogLevel();
    EXPECT_EQ(0u, parse(mSpec, R"(/* before the root */ { // after a brace
        "Ignored": 1,
        "Video": {
            "Features": {"on": true, "off": false, "one": 1, "zero": 0.0, "null": null, "Case": 2.5,
                         "twice": true, "twice": false},
            "Presets": {"leading": 0101, "cut": -3.9, "top": 2147483647, "low": -2147483648,
                        "real top": 2147483647.0, "real low": -2147483648.0,
                        "true": true, "null": null, "whole": 7.0},
            "NimbraModeBitrateTable": [[0, 10, 100], [1, 2], [10, 20, -1], [1, 2, 3, 4],
                                       [2.9, true, null], 5, null, "abc"],
            "DolbyVision": {"profiles": [8, 5, 8, -1, 4.0, 4.5, "9", true, null, [], 4294967295],
                            "max_main_tier_level": 12},
            "KC2CodecPlugins": ["b", 5, "a", null, "b", ["c"]],
            "KC2PreProcessingFilters": {"z": "last", "a": "first", "m": 1},
            "perf-resource-values": {
                "words": ["0x40C00000", " +5DC", "0XfFfzz", "-1", "7FFFFFFF", 16, -16],
                "edges": ["\t-0x80000000", "0xg", "0x", "-0", "1x5", "\r2", "\n\u000B\f3"],
                "empty": [], "null": null, "scalar": 5, "object": {"b": "2", "a": "1"}},
            "codecs-available": {"decoders": ["x", "y", 3], "encoders": ["y"]},
            "OptionalCodecs": ["x", "z"],
            "KC2EncPostProcessingFilters": ["p", {"q": "q"}, "p"],
            "Unknown": [1, 2, 3]
        } /* after */
    } // after the root)"));
    EXPECT_EQ(
            "feature Case 1\nfeature null 0\nfeature off 0\nfeature on 1\nfeature one 1\n"
            "feature twice 0\nfeature zero 0\n"
            "preset cut -3\npreset leading 101\npreset low -2147483648\npreset null 0\n"
            "preset real low -2147483648\npreset real top 2147483647\n"
            "preset top 2147483647\npreset true 1\npreset whole 7\n"
            "perf edges 2147483648 0 0 0 1 2 3\nperf empty\nperf null\nperf object 1 2\nperf "
            "scalar\n"
            "perf words 1086324736 1500 4095 4294967295 2147483647 22 4294967274\n"
            "row 0 10 100\nrow 10 20 4294967295\nrow 2 1 0\n"
            "profile 4\nprofile 5\nprofile 8\nprofile 4294967295\nlevels 12 0\n"
            "plugin b\nplugin a\nplugin b\npre first\npre last\nencpost p\nencpost p\n"
            "codec x\ncodec y\ncodec z\n",
            contentOf(mSpec));
    Lines expected(5, "W/KC2TargetSpec: Unable to queue the json entry due to inappropriate size");
    expected.insert(expected.end(), 2, "D/KC2TargetSpec: mEncPostProcessingFilters p");
    EXPECT_EQ(expected, mDevice.takeLog());
}

// Comments are allowed wherever white space is, with every release of the parser.
TEST_F(ParseTest, ACommentIsWhiteSpace) {
    std::istringstream document(R"({ "Video" : { "Features" : { } , "Presets" : { "a/*b" : 1 ,
        "//\"" : 2 } , "OptionalCodecs" : [ ] , "KC2CodecPlugins" : [ "p\\" , "q" ] } })");
    const std::vector<std::string> tokens(std::istream_iterator<std::string>(document), {});
    for (const char* const comment : {"", " ", "//\n", "//\n", "/**/", "/* \" */", "/*/ ] */",
                                      "// }\n", "//\r", "/* a */ // \"\r\n /* b */"}) {
        SCOPED_TRACE(comment);
        std::string text = comment;
        for (const std::string& token : tokens) {
            text += token + comment;
        }
        TargetSpec spec;
        EXPECT_EQ(0u, parse(spec, text));
        EXPECT_EQ("preset //\" 2\npreset a/*b 1\nplugin p\\\nplugin q\n", contentOf(spec));
    }
    TargetSpec spec;
    EXPECT_EQ(0u, parse(spec, R"({"Video": {"OptionalCodecs": [ /* "x" */ // "y"
        ]}})"))
            << "entries that are all commented out";
}

TEST_F(ParseTest, OnlyTheBadValueIsSkipped) {
    const char* const noObject = "not an object";
    const char* const noArray = "not an array";
    const char* const noBoolean = "not a boolean";
    const char* const noInteger = "not an integer in the signed 32-bit range";
    const char* const noWord = "not a hexadecimal string in the signed 32-bit range";
    const struct {
        const char* video;
        const char* place;
        const char* reason;
        const char* content;
    } rows[] = {
            {R"("Features": [], "Presets": {"a": 1})", "Video/Features", noObject, "preset a 1\n"},
            {R"("Features": {"a": "true", "b": true})", "Video/Features/a", noBoolean,
             "feature b 1\n"},
            {R"("Features": {"a": {}, "b": true})", "Video/Features/a", noBoolean, "feature b 1\n"},
            {R"("Features": {"a\n\u009B\u00E4": 0, "\u0000\n": "z"})", "Video/Features/\\x00\\x0A",
             noBoolean, "feature a\n\u009B\u00E4 0\n"},
            {R"("Presets": {"a": "1", "b": 2})", "Video/Presets/a", noInteger, "preset b 2\n"},
            {R"("Presets": {"a": 2147483648, "b": 2})", "Video/Presets/a", noInteger,
             "preset b 2\n"},
            {R"("Presets": {"a": -2147483648.5, "b": 2})", "Video/Presets/a", noInteger,
             "preset b 2\n"},
            {R"("Presets": {"a": 2147483647.5, "b": 2})", "Video/Presets/a", noInteger,
             "preset b 2\n"},
            {R"("Presets": {"a": 99999999999999999999, "b": 2})", "Video/Presets/a", noInteger,
             "preset b 2\n"},
            {R"("NimbraModeBitrateTable": [[1, 2, "3"], [4, 5, 6]])",
             "Video/NimbraModeBitrateTable[0]", noInteger, "row 4 5 6\n"},
            {R"("NimbraModeBitrateTable": [{"a": 1, "b": 2, "c": 3}, [4, 5, 6]])",
             "Video/NimbraModeBitrateTable[0]", noArray, "row 4 5 6\n"},
            {R"("DolbyVision": {"max_main_tier_level": "9", "max_high_tier_level": 3})",
             "Video/DolbyVision/max_main_tier_level", noInteger, "levels 0 3\n"},
            {R"("DolbyVision": 7)", "Video/DolbyVision", noObject, ""},
            {R"("perf-resource-values": {"a": ["0x1", ""], "b": ["2"]})",
             "Video/perf-resource-values/a[1]", noWord, "perf b 2\n"},
            {R"("perf-resource-values": {"a": ["0x80000000"], "b": ["2"]})",
             "Video/perf-resource-values/a[0]", noWord, "perf b 2\n"},
            {R"("perf-resource-values": {"a": [true, "x"], "b": ["2"]})",
             "Video/perf-resource-values/a[0]", noWord, "perf b 2\n"},
            {R"("perf-resource-values": {"a": [false], "b": ["2"]})",
             "Video/perf-resource-values/a[0]", noWord, "perf b 2\n"},
            {R"("codecs-available": ["x"], "OptionalCodecs": ["y"])", "Video/codecs-available",
             noObject, "codec y\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.video);
        TargetSpec spec;
        EXPECT_EQ(0u, parse(spec, R"({"Video": {)" + std::string(row.video) + "}}"));
        EXPECT_EQ(row.content, contentOf(spec));
        EXPECT_EQ(Lines{std::string("W/KC2TargetSpec: Skipped ") + row.place + ": " + row.reason},
                  mDevice.takeLog());
    }
}

// A terminal must get neither control characters nor bytes that are not UTF-8. The log cuts long
// lines, so a long name must leave room for the reason.
TEST_F(ParseTest, TheLogShowsANameSafely) {
    const std::string longest(200, 'n');
    const struct {
        std::string name;
        std::string shown;
    } rows[] = {
            {"del\x7F", "del\\x7F"},
            {"\xC2\x80", "\\xC2\\x80"},
            {"\xC2\x9F", "\\xC2\\x9F"},
            {"\xC2\xA0\xC2\xAD", "\xC2\xA0\\xC2\\xAD"},
            {"\xC1\xBF", "\\xC1\\xBF"},
            {"\xC3\xBF\x7F", "\xC3\xBF\\x7F"},
            {"\xC3(", "\\xC3("},
            {"\xC3\xC3\xBF", "\\xC3\xC3\xBF"},
            {"\xE0\x9F\xBF", "\\xE0\\x9F\\xBF"},
            {"\xE0\xA0\x80", "\xE0\xA0\x80"},
            {"\xE2\x80\x8A", "\xE2\x80\x8A"},
            {"\xE2\x80\x8B", "\\xE2\\x80\\x8B"},
            {"\xE2\x80\x8F\xE2\x80\x90", "\\xE2\\x80\\x8F\xE2\x80\x90"},
            {"\xE2\x80\xA7\xE2\x80\xA8", "\xE2\x80\xA7\\xE2\\x80\\xA8"},
            {"\xE2\x80\xAE", "\\xE2\\x80\\xAE"},
            {"\xE2\x80\xAF", "\xE2\x80\xAF"},
            {"\xE2\x81\x9F\xE2\x81\xA0", "\xE2\x81\x9F\\xE2\\x81\\xA0"},
            {"\xE2\x81\xAF\xE2\x81\xB0", "\\xE2\\x81\\xAF\xE2\x81\xB0"},
            {"\xD8\x9C\xEF\xBB\xBF", "\\xD8\\x9C\\xEF\\xBB\\xBF"},
            {"\xED\x9F\xBF", "\xED\x9F\xBF"},
            {"\xED\xA0\x80", "\\xED\\xA0\\x80"},
            {"\xE2\x82", "\\xE2\\x82"},
            {"\xE2\x82 ", "\\xE2\\x82 "},
            {"\xF0\x8F\xBF\xBF", "\\xF0\\x8F\\xBF\\xBF"},
            {"\xF0\x90\x80\x80", "\xF0\x90\x80\x80"},
            {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
            {"\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
            {"\xF5\x80\x80\x80", "\\xF5\\x80\\x80\\x80"},
            {longest, longest},
            {longest + "n", longest + "..."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(0u, parse(mSpec, R"({"Video": {"Features": {")" + row.name + R"(": ""}}})"));
        EXPECT_EQ(Lines{"W/KC2TargetSpec: Skipped Video/Features/" + row.shown + ": not a boolean"},
                  mDevice.takeLog());
    }
}

TEST_F(ParseTest, ARejectedDocumentChangesNothing) {
    ASSERT_EQ(0u, parse(mSpec, R"({"Video": {"Features": {"a": true}, "OptionalCodecs": ["x"]}})"));
    const std::string before = contentOf(mSpec);
    const std::string head = R"({"Video": {"Features": {"b": true}}, "x": )";
    for (const std::string& text : {std::string(),
                                    std::string(" // only a comment"),
                                    std::string("[]"),
                                    std::string("1"),
                                    std::string("\"Video\""),
                                    std::string(R"({"Video": [], "b": 1})"),
                                    std::string(R"({"Video": "Features"})"),
                                    head + "tru}",
                                    head + "1",
                                    head + "'a'}",
                                    head + "01e}",
                                    head + "\"\\u12\"}",
                                    head + "1,,}",
                                    std::string("\xEF\xBB\xBF{}"),
                                    head + "true /* on */ ; \"c\": 1}",
                                    head + "true /* on */ \"c\": 1}",
                                    head + "[1 // one\n 2]}",
                                    head + "1 /* no end }",
                                    head + "1 / 2}",
                                    nested(257, "1"),
                                    nested(256, "[]"),
                                    std::string(256, '['),
                                    std::string(1000, '['),
                                    nested(200000, "1"),
                                    arrayOf(kMaxValues - 1, "1"),
                                    arrayOf(kMaxValues / 3 * 2, "{}"),
                                    textOf(kMaxTextBytes + 1)}) {
        SCOPED_TRACE(text.substr(0, 60));
        EXPECT_EQ(kFailed, parse(mSpec, text));
        EXPECT_EQ(before, contentOf(mSpec));
        EXPECT_EQ(Lines{kStreamErrorLine}, mDevice.takeLog());
    }
}

TEST_F(ParseTest, AcceptsDocumentsWithoutContent) {
    const std::string brackets(2000, '[');
    for (const std::string& text :
         {std::string("{}"), std::string("null"), std::string(R"({"video": []})"),
          std::string(R"({"Video": null})"), std::string(R"({"Video": {}} trailing)"),
          std::string(R"({"Video": {"Features": null, "Presets": null, "DolbyVision": null,
                          "KC2CodecPlugins": 5, "OptionalCodecs": null,
                          "codecs-available": {"decoders": "x", "encoders": null}}})"),
          nested(256, "1"), nested(255, "[]"), nested(255, "{ /* } */ }"),
          // Up to each limit; and long texts with few values.
          arrayOf(kMaxValues - 2, "1"), textOf(kMaxTextBytes),
          "{\"a\": \"" + std::string(2 * kMaxValues, ',') + "\"}",
          "{\"a\": \"\\\"" + brackets + "\", /*" + brackets + "*/ \"b\": // " + brackets +
                  "\n 1}"}) {
        SCOPED_TRACE(text.substr(0, 60));
        EXPECT_EQ(0u, parse(mSpec, text));
        EXPECT_EQ("", contentOf(mSpec));
        EXPECT_EQ(Lines(), mDevice.takeLog());
    }
}

TEST_F(ParseTest, ASecondDocumentAddsButReplacesOnlyTierLevels) {
    const std::string first = R"({"Video": {
        "Features": {"a": false}, "Presets": {"a": 1}, "perf-resource-values": {"a": ["1"]},
        "NimbraModeBitrateTable": [[1, 2, 3]], "KC2CodecPlugins": ["p"],
        "KC2PreProcessingFilters": ["f"], "KC2EncPostProcessingFilters": ["e"],
        "DolbyVision": {"profiles": [5], "max_main_tier_level": 9, "max_high_tier_level": 7},
        "OptionalCodecs": ["c"]}})";
    ASSERT_EQ(0u, parse(mSpec, first));
    ASSERT_EQ(0u, parse(mSpec, R"({"Video": {
        "Features": {"a": true, "b": true}, "Presets": {"a": 2, "b": 2},
        "perf-resource-values": {"a": ["2"], "b": ["2"]},
        "NimbraModeBitrateTable": [[0, 2, 4]], "KC2CodecPlugins": ["o"],
        "KC2PreProcessingFilters": ["d"], "KC2EncPostProcessingFilters": ["d"],
        "codecs-available": {"encoders": ["b"]}}})"));
    const std::string names =
            "feature a 0\nfeature b 1\npreset a 1\npreset b 2\nperf a 1\nperf b 2\n";
    EXPECT_EQ(names + "row 1 2 3\nrow 0 2 4\nprofile 5\nlevels 9 7\nplugin p\nplugin o\n"
                      "pre f\npre d\nencpost e\nencpost d\ncodec b\ncodec c\n",
              contentOf(mSpec));
    ASSERT_EQ(0u, parse(mSpec, R"({"Video": {"DolbyVision": {"profiles": [4]}}})"));
    EXPECT_EQ(0, mSpec.getDVConfigs().maxMainTierLevel);
    EXPECT_EQ(0, mSpec.getDVConfigs().maxHighTierLevel);
    ASSERT_EQ(0u, parse(mSpec, first));
    ASSERT_EQ(0u, parse(mSpec, R"({"Video": {"DolbyVision": {"max_high_tier_level": 3}}})"));
    EXPECT_EQ(names + "row 1 2 3\nrow 0 2 4\nrow 1 2 3\nprofile 4\nprofile 5\nlevels 0 3\n"
                      "plugin p\nplugin o\nplugin p\npre f\npre d\npre f\n"
                      "encpost e\nencpost d\nencpost e\ncodec b\ncodec c\n",
              contentOf(mSpec));
}

#ifdef __cpp_exceptions  // Without exceptions the program ends when its stream would throw.
TEST_F(ParseTest, ThrowsNothingForAStreamThatHasThrown) {
    mDevice.write("/empty.json", "");
    std::ifstream atItsEnd(mDevice("/empty.json"));
    atItsEnd.setstate(std::ios::eofbit);
    EXPECT_THROW(atItsEnd.exceptions(std::ios::eofbit), std::ios::failure);
    EXPECT_EQ(kFailed, mSpec.parseJsonData(atItsEnd));
    EXPECT_EQ(std::ios::eofbit, atItsEnd.rdstate());
    EXPECT_EQ(Lines{kStreamErrorLine}, mDevice.takeLog());
}
#endif

TEST_F(ParseTest, ReadsTheStreamThatItIsGiven) {
    mDevice.write("/a.json", "skip {\"Video\": {\"OptionalCodecs\": [\"a\xFF\"]}}");
    std::ifstream fromTheMiddle(mDevice("/a.json"));
    fromTheMiddle.seekg(5);
    EXPECT_EQ(0u, mSpec.parseJsonData(fromTheMiddle));
    EXPECT_EQ("codec a\xFF\n", contentOf(mSpec));
    EXPECT_TRUE(fromTheMiddle.is_open() && fromTheMiddle.good());
    EXPECT_EQ(kFailed, mSpec.parseJsonData(fromTheMiddle)) << "nothing is left";

    std::ifstream atItsEnd(mDevice("/a.json"));
    atItsEnd.seekg(0, std::ios::end);
    atItsEnd.setstate(std::ios::eofbit);
    EXPECT_EQ(kFailed, mSpec.parseJsonData(atItsEnd)) << "end of file alone is not a failed stream";

    // The flag alone, with all of the text left.
    std::ifstream flagged(mDevice("/a.json"));
    flagged.seekg(5);
    flagged.setstate(std::ios::eofbit);
    TargetSpec fromFlagged;
    EXPECT_EQ(0u, fromFlagged.parseJsonData(flagged));
    EXPECT_EQ("codec a\xFF\n", contentOf(fromFlagged));
    EXPECT_EQ(std::ios::eofbit, flagged.rdstate());

    std::ifstream directory(mDevice("/directory/file").substr(0, mDevice("/").size() + 9));
    ASSERT_TRUE(directory.is_open());
    directory.exceptions(std::ios::badbit);
    EXPECT_EQ(kFailed, mSpec.parseJsonData(directory));
    EXPECT_TRUE(directory.good() && directory.exceptions() == std::ios::badbit);
    EXPECT_EQ("codec a\xFF\n", contentOf(mSpec));
    // A complete document, blanks, and a read error before their end: the process's memory, up to a
    // page that is not mapped.
    const size_t size = size_t{64} << 10;
    char* const memory = static_cast<char*>(
            mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    munmap(memory + size, size);
    const std::string text = R"({"Video": {"OptionalCodecs": ["b"]}})";
    std::fill(memory, memory + size, ' ');
    std::copy(text.begin(), text.end(), memory);
    std::ifstream tornOff("/proc/self/mem");
    tornOff.seekg(reinterpret_cast<std::streamoff>(memory));
    EXPECT_EQ(kFailed, mSpec.parseJsonData(tornOff));
    munmap(memory, size);

    EXPECT_EQ("codec a\xFF\n", contentOf(mSpec));
    EXPECT_EQ(Lines(4, kStreamErrorLine), mDevice.takeLog());

    for (const size_t length : {8191, 8192, 8193, 16384}) {  // Around the size of a block.
        std::string padded = R"({"Video": {"OptionalCodecs": ["last"]}})";
        padded.insert(0, length - padded.size(), ' ');
        TargetSpec spec;
        EXPECT_EQ(0u, parse(spec, padded));
        EXPECT_EQ("codec last\n", contentOf(spec)) << length;
    }

    std::ifstream failed;
    failed.setstate(std::ios::badbit);
    TargetSpec builtIn;
    TargetSpec expected;
    EXPECT_EQ(0u, builtIn.parseJsonData(failed));
    EXPECT_EQ(0u, parse(expected, TargetSpec::getPrivateConfig()));
    EXPECT_EQ(contentOf(expected), contentOf(builtIn));
}

// Only the assigned key makes a built-in document contain values that are skipped.
TEST_F(ParseTest, ASkippedValueIsLoggedWithTheBuiltInDocument) {
    const char* const key = std::exchange(targetSpecPresets, "codecs-available");
    std::ifstream failed;
    failed.setstate(std::ios::failbit);
    EXPECT_EQ(0u, mSpec.parseJsonData(failed));
    targetSpecPresets = key;
    const std::string reason =
            " in the built-in document: not an integer in the signed 32-bit range";
    EXPECT_EQ((Lines{"W/KC2TargetSpec: Skipped Video/codecs-available/decoders" + reason,
                     "W/KC2TargetSpec: Skipped Video/codecs-available/encoders" + reason}),
              mDevice.takeLog());
}

TEST_F(ParseTest, LooksKeysUpThroughTheGlobals) {
    const struct {
        const char** key;
        const char* text;
        const char* document;
    } rows[] = {
            {&targetSpecRoot, "Video", R"({"k": {"OptionalCodecs": ["x"]}})"},
            {&targetSpecFeatures, "Features", R"({"Video": {"k": {"x": true}}})"},
            {&targetSpecPresets, "Presets", R"({"Video": {"k": {"x": 1}}})"},
            {&targetSpecNimbraModeBitRate, "NimbraModeBitrateTable",
             R"({"Video": {"k": [[1, 2, 3]]}})"},
            {&targetSpecDV, "DolbyVision", R"({"Video": {"k": {"profiles": [1]}}})"},
            {&targetSpecCodecPlugins, "KC2CodecPlugins", R"({"Video": {"k": ["x"]}})"},
            {&targetSpecPreProcessingFilters, "KC2PreProcessingFilters",
             R"({"Video": {"k": ["x"]}})"},
            {&targetSpecDVProfiles, "profiles", R"({"Video": {"DolbyVision": {"k": [1]}}})"},
            {&targetSpecDVMaxMainTierLevel, "max_main_tier_level",
             R"({"Video": {"DolbyVision": {"k": 1}}})"},
            {&targetSpecDVMaxHighTierLevel, "max_high_tier_level",
             R"({"Video": {"DolbyVision": {"k": 1}}})"},
            {&targetSpecPreProcessingFilterCodecName, "codec_name", nullptr},
            {&targetSpecPreProcessingFilterLibName, "lib_name", nullptr},
            {&targetSpecPreProcessingFilterInputStreams, "input_streams", nullptr},
            {&targetSpecPreProcessingFilterOutputStreams, "output_streams", nullptr},
            {&targetSpecSupportedCodecs, "codecs-available",
             R"({"Video": {"k": {"encoders": ["x"]}}})"},
            {&targetSpecAvailableDecoders, "decoders",
             R"({"Video": {"codecs-available": {"k": ["x"]}}})"},
            {&targetSpecAvailableEncoders, "encoders",
             R"({"Video": {"codecs-available": {"k": ["x"]}}})"},
            {&targetSpecSupportedEncPostProcessingFilters, "KC2EncPostProcessingFilters",
             R"({"Video": {"k": ["x"]}})"},
            {&targetSpecOptionalCodecs, "OptionalCodecs", R"({"Video": {"k": ["x"]}})"},
            {&targetSpecPerfResourceValues, "perf-resource-values",
             R"({"Video": {"k": {"x": []}}})"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_STREQ(row.text, *row.key);
        if (row.document != nullptr) {
            TargetSpec spec;
            EXPECT_EQ(0u, parse(spec, row.document));
            EXPECT_EQ("", contentOf(spec));
            *row.key = "k";
            EXPECT_EQ(0u, parse(spec, row.document));
            EXPECT_NE("", contentOf(spec));
            *row.key = nullptr;
            TargetSpec unread;
            EXPECT_EQ(0u, parse(unread, row.document)) << "a null key names no member";
            std::string document = row.document;
            document.erase(document.find("\"k\"") + 1, 1);
            TargetSpec unnamed;
            EXPECT_EQ(0u, parse(unnamed, document));
            EXPECT_EQ(contentOf(unread), contentOf(unnamed)) << "not even the one without a name";
            *row.key = row.text;
        }
    }
}

}  // namespace

}  // namespace kc2::test
