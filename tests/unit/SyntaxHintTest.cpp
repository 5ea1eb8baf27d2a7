// What the checker reports about texts that are not JSON.

#include <gtest/gtest.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "RunTool.h"

namespace kc2::test {

namespace {

using namespace std::string_literals;

struct Row {
    std::string text;
    const char* position;  // Line:column of the error.
    const char* hint;      // Part of the message.
};

const std::vector<Row> kRows = {
        // Commas and colons.
        {R"({"a": 1 "b": 2})", "1:9",
         "a comma is missing: write it after the value that ends at 1:7"},
        {"{\"a\": 1 // ,\n/* , */ \"b\": 2}", "2:9", "ends at 1:7"},
        {R"(["x" "y"])", "1:6", "ends at 1:4"},
        {"{\"a\": 1, /* c */\n}", "1:8", "there is an extra comma before the '}'"},
        {"[1, 2, // c\n]", "1:6", "there is an extra comma before the ']'"},
        {"[1,, 2]", "1:4", "two commas in a row"},
        {"[, 1]", "1:2", "there is nothing before this comma"},
        {R"({"a": })", "1:7", "a value is missing"},
        {R"({"a"})", "1:5", "\"a\" has no value"},
        {R"({"a" 1})", "1:6", "a ':' is missing"},
        {R"(["a": 1])", "1:5", "belongs in { }, not in the list that opens at 1:1"},
        {R"({"a": 1: 2})", "1:8", "a second ':'"},
        {R"({"a": "b": 2})", "1:10", "a second ':'"},
        {R"({= 1})", "1:2", "'=' is not JSON"},
        {R"({;})", "1:2", "';' is not JSON: remove it"},
        {R"({"a": [- 1]})", "1:8", "a space after the minus sign: write -1"},
        {R"({1: 2})", "1:2", "a name must be in double quotes: \"1\""},
        {R"({[1]})", "1:2", "a name in double quotes is missing"},
        {R"({ {"a": 1}})", "1:3", "a name in double quotes is missing"},
        {R"({"a": 1, })", "1:8", "an extra comma"},
        {R"({"a": [1, })", "1:11", "is still open"},
        {"}", "1:1", "a document starts with '{'"},
        {"hello", "1:1", "a document starts with '{', not with hello"},
        {R"({"a" "b"})", "1:6", "a ':' is missing"},
        {R"({"a" = 1})", "1:6", "write ':' between a name and its value"},
        {R"({"a": 1; "b": 2})", "1:8", "write ',' between values, not ';'"},
        // Strings and names.
        {"{\"a\": [\"x,\n \"y\"]}", "1:8",
         "string that opens at 1:8 runs past the end of its line"},
        {"{\"a\": [\"x\",\n \"y]\n}", "2:2",
         "string that opens at 2:2 runs past the end of its line"},
        {R"({"a": ["x]})", "1:8", "string that opens at 1:8 never ends"},
        {R"({"Video: {"a": 1}})", "1:12", "string that opens at 1:2 ends before this"},
        {R"({Video": {}})", "1:2", "the opening quote of \"Video\" is missing"},
        {R"({Video: {}})", "1:2", "a name must be in double quotes: \"Video\""},
        {R"({"a": high})", "1:7", "text must be in double quotes: \"high\""},
        {"{'a': 1}", "1:2", "not in single ones"},
        {R"({"ä": "C:\media"})", "1:10", "\\m is not an escape"},
        {R"({"a": "\u12"})", "1:8", "four hexadecimal digits"},
        {R"({"a": "\u123G"})", "1:8", "four hexadecimal digits"},
        {R"({"a": "\n\uD9Abc"})", "1:10", "begins a pair"},
        {R"({"a": "\udbFf\u12"})", "1:8", "begins a pair"},
        {R"({"a": "\uD8aB\n\u1234"})", "1:8", "begins a pair"},
        {R"({"a": "\u00e9\uD83D\udE00\/\b\f\n\r\t\"\\", "c": x})", "1:50", "double quotes: \"x\""},
        {R"({"a": "\uD712\uDC00\n\q"})", "1:22", "\\q is not an escape"},
        // Brackets.
        {R"({"a": {"b": [1, 2}})", "1:18", "the '[' that opens at 1:13 is still open"},
        {R"({"a": 1])", "1:8", "write '}' here, not ']'"},
        {"{\"a\": [1, 2]\n", "1:13", "the '{' that opens at 1:1 is still open"},
        {"{\n \"Video\": {\n  \"a\": {\n   \"b\": 1,\n  \"c\": {\n   \"d\": 1\n  }\n }\n}\n", "9:2",
         "the '{' that opens at 3:8 is still open"},
        // Characters that look like others.
        {"{“a”: 1}", "1:2", "left smart quote (U+201C)"},
        {"{\"a\":\u00A01}", "1:6", "no-break space (U+00A0)"},
        {"{\"a\": true\u00A0}", "1:11", "no-break space (U+00A0)"},
        {"{\"a\"：1}", "1:5", "a full-width ':' (U+FF1A)"},
        {"{\"a\": 1，\"b\": 2}", "1:8", "a full-width ',' (U+FF0C)"},
        {"{\"a\": −1}", "1:7", "mathematical minus sign (U+2212)"},
        {"{\"a\": [B4]}", "1:8", "B4"},
        {"{\"a\": [BT, XL]}", "1:8", "BT"},
        {"{\"a\":\u200B 1}", "1:6", "an invisible character (U+200B)"},
        {"{\"a\": 1,\0}"s, "1:9", "a control character"},
        // Files that are not JSON in UTF-8 at all.
        {"", "1:1", "the document is empty"},
        {"// c\n", "2:1", "the document is empty"},
        {"\xEF\xBB\xBF{}", "1:1", "byte order mark"},
        {"\xFF\xFE{\0}\0"s, "1:1", "UTF-16"},
        {"{\0}\0"s, "1:1", "UTF-16"},
        {"version https://git-lfs.github.com/spec/v1\n", "1:1", "git lfs pull"},
        {"<?xml version=\"1.0\"?>", "1:1", "XML"},
        {"{\"a\": 1,\n<<<<<<< HEAD\n\"b\": 2}", "2:1", "a merge mark"},
        {"{\"a\": 1\n=======\n}", "2:1", "a merge mark"},
        // Comments.
        {"# c\n{}", "1:1", "# does not start a comment: write //"},
        {"{\"a\": 1, -- c\n\"b\": 2}", "1:10", "-- does not start a comment: write //"},
        {"{\"a\": /* x /* y */ z */ 1}", "1:20", "the one that opens at 1:7 ends at the first"},
        {"{\"a\": /* x }", "1:7", "the comment never ends"},
        {"{\"a\": / 1}", "1:7", "a lone '/'"},
        {"<!-- c -->\n{}", "1:1", "<!-- --> is not a comment in JSON: write /* */"},
        {"{\"a\": 1, <!-- c -->\n\"b\": 2}", "1:10", "<!-- --> is not a comment"},
        // What was copied from elsewhere.
        {"{\n+    \"a\": 1\n}", "2:1", "the '+' is the mark of a line in a diff: remove it"},
        {"{\n-    \"a\": 1,\n    \"b\": 2\n}", "2:1", "the '-' is the mark of a line in a diff"},
        {"{\"a\": [1,\n-    2,\n+    3]}", "2:1", "the '-' is the mark of a line in a diff"},
        {"{\"a\": 1,\n+    \"b\": 2}", "2:1", "the '+' is the mark of a line in a diff"},
        {"{\"a\": 1,\n@@ -1,2 +1,2 @@\n\"b\": 2}", "2:1", "a line of a diff: remove it"},
        {"diff --git a/x b/x\n", "1:1", "this is a diff, not a document"},
        {R"({"a": ${VALUE}})", "1:7", "a placeholder that nothing has replaced"},
        {R"({"a": @VALUE@})", "1:7", "a placeholder that nothing has replaced"},
        {R"({"a": {{value}}})", "1:8", "\"{{\" is a placeholder that nothing has replaced"},
        {R"({"a": ["0x1", "0x5DC""]})", "1:22", "there are two quotes in a row: remove one"},
        {R"({"a"": 1})", "1:5", "there are two quotes in a row: remove one"},
        {R"({"a": ["", "b""]})", "1:15", "there are two quotes in a row: remove one"},
        // Numbers and words.
        {R"({"a": +5})", "1:7", "write 5"},
        {R"({"a": .5})", "1:7", "write 0.5"},
        {R"({"a": 1_000})", "1:7", "write 1000"},
        {R"({"a": 1,000})", "1:7", "write 1000"},
        {R"({"a": 0x10})", "1:7", "write 16"},
        {R"({"a": [4080FFFF]})", "1:8", "put a perf word in double quotes"},
        {R"({"a": 500ms})", "1:7", "write 500"},
        {"{\"a\": 5µs}", "1:8", "no unit or suffix"},
        {R"({"a": 12e})", "1:7", "12e is not a JSON number"},
        {"12e", "1:1", "12e is not a JSON number"},
        {R"({"a": -12.5kB})", "1:7", "write -12.5, or a string"},
        {R"({"a": -0x1F})", "1:7", "write -31, or"},
        {R"({"a": 0xG})", "1:7", "write it in decimal"},
        {R"({"a": 0x})", "1:7", "write it in decimal"},
        {R"({"a": 0xFFFFFFFFFFFFFFFF})", "1:7", "write 18446744073709551615, or"},
        {R"({"a": 0x10000000000000000})", "1:7", "write it in decimal"},
        {R"({"a": [1.5.2, 1]})", "1:8", "1.5.2 is not a JSON number"},
        {R"({"a": 1e+})", "1:7", "1e+ is not a JSON number"},
        {R"({"a": [1.e5 -2E-3]})", "1:8", "write 1.e5, -2E-3 or what is meant"},
        {R"({"a": [15 7ms]})", "1:8", "write 15, 7ms or 157ms"},
        {"{\"a\": [15\n7]}", "2:1", "ends at 1:9"},
        {R"({"a": "5"ms})", "1:10", "string that opens at 1:7 ends before this"},
        {R"({"a": trueish})", "1:7", "double quotes: \"trueish\""},
        {R"({"a": 1 000 000})", "1:7", "write 1000000"},
        {R"({"a": 12'345})", "1:7", "write 12345"},
        {R"({"a": [1 000]})", "1:8", "write 1000"},
        {R"({"a": 1,0000})", "1:9", "a name"},
        {R"({"a": 1000,000})", "1:12", "a name"},
        {R"({"a": 1,000.000})", "1:9", "a name"},
        {R"({"a": NaN})", "1:7", "write a number"},
        {R"({"a": -Infinity})", "1:7", "write a number"},
        {R"({"a": True})", "1:7", "write true in small letters"},
        {R"({"a": -True})", "1:7", "write true in small letters"},
        {R"({"a": yes})", "1:7", "write true"},
        {R"({"a": None})", "1:7", "write null"},
};

TEST(SyntaxHintTest, EachMistakeHasItsHintAtItsPlace) {
    const ScratchDirectory scratch;
    std::string command = "check --format json";
    for (size_t i = 0; i < kRows.size(); ++i) {
        command += " " + scratch.write(std::to_string(i) + ".json", kRows[i].text);
    }
    const Json::Value report = parsed(run(command).output);
    std::vector<int> findings(kRows.size());
    std::vector<std::string> messages(kRows.size());
    for (const Json::Value& finding : report["findings"]) {
        const std::string path = finding["path"].asString();
        const size_t i = std::stoul(path.substr(path.rfind('/') + 1));
        const Row& row = kRows.at(i);
        ++findings[i];
        EXPECT_EQ("syntax", finding["id"].asString()) << row.text;
        EXPECT_EQ(row.position, finding["line"].asString() + ":" + finding["column"].asString())
                << row.text;
        messages[i] = describe(finding);
        EXPECT_NE(std::string::npos, messages[i].find(row.hint)) << row.text << "\n" << messages[i];
    }
    EXPECT_EQ(std::vector<int>(kRows.size(), 1), findings);  // One mistake, one finding.
    std::string text;
    for (size_t i = 0; i < kRows.size(); ++i) {
        text += kRows[i].text + "\n" + messages[i];
    }
    expectFile("syntax-hints.txt", text);
}

// This machine's parser accepts these; a later release may not.
TEST(SyntaxHintTest, RawControlCharactersInStringsAreReportedOncePerString) {
    const ScratchDirectory scratch;
    const std::string path =
            scratch.write("a.json",
                          "{\"Video\": {\"Features\": {\"a\nb\nc\": true,\t\"\\\"\t\": "
                          "true, \"c\": /* \"\n */ true}}}");
    const std::string output = run("check " + path).output;
    EXPECT_NE(std::string::npos,
              output.find(":1:27: warning: a string has an unescaped line break"))
            << output;
    EXPECT_NE(std::string::npos, output.find(":3:14: warning: a string has an unescaped tab"))
            << output;
    size_t count = 0;
    for (size_t at = 0; (at = output.find("[control-character]", at)) != std::string::npos; ++at) {
        ++count;
    }
    EXPECT_EQ(2U, count);
}

TEST(SyntaxHintTest, ALimitIsReportedAtTheByteThatExceedsIt) {
    const ScratchDirectory scratch;
    const std::string file = scratch.write("a.json", std::string(256, '[') + std::string(256, ']'));
    const std::string report = run("check --format json " + file).output;
    EXPECT_NE(std::string::npos, report.find(R"("column":256,"endColumn":257,)")) << report;
}

// JsonCpp up to 1.9.5 rejects the document; a later release on this machine must not hide that.
TEST(SyntaxHintTest, ANumberOutOfRangeIsReportedWithEveryRelease) {
    const ScratchDirectory scratch;
    const Result result =
            run("check --werror " +
                scratch.write("a.json", R"({"Video": {"Presets": {"a": 1e308, "b": 1e999}}})"));
    EXPECT_EQ(1, result.exitCode);
    EXPECT_NE(std::string::npos, result.output.find(":1:41: ")) << result.output;
    EXPECT_TRUE(result.output.find("[number-too-large]") != std::string::npos ||
                result.output.find("error: '1e999' is not a number") != std::string::npos)
            << result.output;
}

// A phone rejects the document; the library of this machine must not hide that.
TEST(SyntaxHintTest, ANumberTooNearToZeroIsAnErrorWithEveryLibrary) {
    const ScratchDirectory scratch;
    const std::string file = scratch.write("a.json", R"({"Video": {"Presets": {"a": 1e-400}}})");
    EXPECT_EQ(std::string::npos, run("check " + file).output.find("the device uses it as"));
    const Result result = run("check --disable all " + file);
    EXPECT_EQ(1, result.exitCode);
    EXPECT_TRUE(result.output.find("[number-too-small]") != std::string::npos ||
                result.output.find("error: '1e-400' is not a number") != std::string::npos)
            << result.output;
}

}  // namespace

}  // namespace kc2::test
