// The tool's small parts: texts, widths on a terminal, places in a document.

#include "base/Spelling.h"
#include "base/Text.h"
#include "base/Utf8.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Terminal.h"
#include "document/Tree.h"
#include "targetspec/reading/ParserText.h"

namespace kc2::test {

namespace {

using namespace tool;

TEST(TextTest, WordsAreReadAsALogOrAPersonWritesThem) {
    const std::pair<const char*, std::optional<uint32_t>> rows[] = {
            {"0x7FA30C04", 0x7FA30C04},
            {"0X10", 0x10},
            {"010", 10},
            {"-1040187392", 0xC2000000},
            {"-2147483648", 0x80000000},
            {"4294967295", UINT32_MAX},
            {"0xFFFFFFFF", UINT32_MAX},
            {"4294967296", {}},
            {"-2147483649", {}},
            {"", {}},
            {"0x", {}},
            {"12 ", {}},
            {"1e3", {}},
            {"0x1g", {}},
            {"99999999999999999999", {}},
    };
    for (const auto& [text, word] : rows) {
        EXPECT_EQ(word, toWord(text)) << text;
    }
    EXPECT_EQ("0x0", hexadecimal(0));
    EXPECT_EQ("0xC2000001", hexadecimal(0xC2000001));
}

TEST(TextTest, NothingIsCutInTheMiddleOfACharacter) {
    const std::string text = "a\u00e4\u4e16\U0001f600";  // Characters of 1, 2, 3 and 4 bytes.
    const size_t whole[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
    for (size_t bytes = 0; bytes < std::size(whole); ++bytes) {
        EXPECT_EQ(text.substr(0, whole[bytes]), clipped(text, bytes)) << bytes;
    }
    const std::pair<const char*, char32_t> characters[] = {{"a", U'a'},
                                                           {"\u00e4", U'\u00e4'},
                                                           {"\u4e16", U'\u4e16'},
                                                           {"\u0080", U'\u0080'},
                                                           {"\u07ff", U'\u07ff'},
                                                           {"\u0800", U'\u0800'},
                                                           {"\uffff", U'\uffff'},
                                                           {"\U00010000", U'\U00010000'},
                                                           {"\U0010ffff", U'\U0010ffff'},
                                                           {"\U0001f600", U'\U0001f600'}};
    for (const auto& [character, code] : characters) {
        EXPECT_EQ(code, codePointOf(character));
    }
    EXPECT_EQ("", clipped("\x80\x80\x80", 2));
    const std::string forty(40, 'x');
    EXPECT_EQ(forty, shortened(forty));
    EXPECT_EQ(forty + "...", shortened(forty + "x"));
    EXPECT_EQ(forty.substr(1) + "...", shortened(forty.substr(1) + "\u00e4"));
    size_t at = 0;
    std::vector<char32_t> decoded;
    for (const std::string torn = text + "\x80\xE4\xB8"; at < torn.size();) {
        decoded.push_back(nextCharacter(torn, &at));
    }
    EXPECT_EQ((std::vector<char32_t>{U'a', 0xE4, 0x4E16, 0x1F600, 0x80, 0x138}), decoded);
}

TEST(TextTest, WidthsAreThoseOfATerminal) {
    const std::pair<const char*, size_t> rows[] = {{"", 0},       {"a", 1},      {"\u00e4", 1},
                                                   {"\u4e16", 2}, {"\uff01", 2}, {"\u0301", 0},
                                                   {"\u0085", 1}};  // Not printable.
    for (const auto& [character, columns] : rows) {
        EXPECT_EQ(columns, columnsOf(character)) << character;
    }
}

TEST(TextTest, DistancesCountMistakesButIgnoreCase) {
    const struct {
        const char* a;
        const char* b;
        size_t distance;
    } rows[] = {
            {"", "", 0},       {"Presets", "presets", 0}, {"Presets", "Preset", 1},
            {"abc", "acb", 1}, {"abcd", "badc", 2},       {"ca", "abc", 3},
            {"abc", "abd", 1}, {"abc", "xyz", 3},         {"kitten", "sitting", 3},
            {"", "abc", 3},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.distance, editDistance(row.a, row.b, 5)) << row.a << " " << row.b;
        EXPECT_EQ(row.distance, editDistance(row.b, row.a, 5)) << row.b << " " << row.a;
        // Beyond the limit, any larger number is right.
        for (size_t limit = 0; limit < row.distance; ++limit) {
            EXPECT_LT(limit, editDistance(row.a, row.b, limit)) << row.a << " " << row.b;
        }
    }
    // Longer words are only equal or not.
    const std::string most(100, 'a');
    EXPECT_EQ(1U, editDistance(most, most.substr(1), 1));
    const std::string longName(101, 'a');
    EXPECT_LT(1U, editDistance(longName, most, 1));
    EXPECT_EQ(0U, editDistance(longName, longName, 3));
    EXPECT_LT(3U, editDistance(longName, longName + "b", 3));
}

TEST(TextTest, TheNearestNameIsTheOneWithMostOfTheWord) {
    const std::vector<std::string> names = {"decoders", "encoders", "diff", "check", "show"};
    const std::pair<const char*, const char*> rows[] = {
            {"decoder", "decoders"},
            {"encoder", "encoders"},
            {"ecoders", "decoders"},
            {"dif", "diff"},
            {"chek", "check"},
            {"Check", "check"},
            {"xyz", ""},
            {"", ""},
            {"sh", ""},
    };
    for (const auto& [word, name] : rows) {
        EXPECT_EQ(name, nearest(word, names)) << word;
    }
}

TEST(TextTest, CommonLettersAreInOneOrder) {
    const std::string most(100, 'a');
    const std::tuple<std::string, std::string, size_t> rows[] = {
            {"", "", 0},          {"a", "", 0},         {"abc", "abc", 3}, {"abc", "axbxc", 3},
            {"abc", "cba", 1},    {"aabb", "abab", 3},  {"Ab", "ab", 1},   {most, most, 100},
            {most + "b", "b", 0}, {"b", most + "b", 0},
    };
    for (const auto& [a, b, common] : rows) {
        EXPECT_EQ(common, commonLetters(a, b)) << a << " " << b;
    }
    // A name of as many letters as mistakes is another one.
    EXPECT_EQ("", nearest("xy", std::vector<std::string>{"x"}));
    EXPECT_EQ("xz", nearest("xy", std::vector<std::string>{"x", "xz", "yx"}));
    EXPECT_EQ("abcdef", nearest("abcxyz", std::vector<std::string>{"abcdef"}, 3));
    EXPECT_EQ("", nearest("abcxyz", std::vector<std::string>{"abcdef"}, 2));
}

// Blanks replace comments, so that every offset and line stays.
TEST(TextTest, CommentsBecomeBlanksAndTheirPlacesAreKnown) {
    const struct {
        const char* text;
        const char* blanked;
        const char* comments;  // "start-limit" of each comment.
    } rows[] = {
            {"1//a", "1   ", "1-4"},
            {"1//a\n2", "1   \n2", "1-4"},
            {"1//a\r\n2", "1   \r\n2", "1-4"},
            {"1//a\r2//b", "1   \r2   ", "1-4 6-9"},
            {"/**/1", "    1", "0-4"},
            {"/***/1", "     1", "0-5"},
            {"/*/1*/2", "      2", "0-6"},
            {"/*a\n\r*/1", "   \n\r  1", "0-7"},
            {"/*//*/1", "      1", "0-6"},
            {"//*a\n1*/", "    \n1*/", "0-4"},
            {"\"//\"", "\"//\"", ""},
            {"\"\\\"//\"", "\"\\\"//\"", ""},
            {"\"\\\\\"//", "\"\\\\\"  ", "4-6"},
            {"\"/*\"/*\"*/\"", "\"/*\"     \"", "4-9"},
            // An incomplete comment stays, and is a syntax error at its place.
            {"1/*a", "1/*a", ""},
            {"/*/", "/*/", ""},
            {"1/2//a", "1/2//a", ""},
            {"\"a//", "\"a//", ""},
            {"/", "/", ""},
            {"//a\n/*", "   \n/*", "0-3"},
    };
    for (const auto& row : rows) {
        std::string text = row.text;
        std::vector<TextRange> comments;
        EXPECT_FALSE(makeFitForParser(text, &comments)) << row.text;
        std::string places;
        for (const TextRange& comment : comments) {
            places += (places.empty() ? "" : " ") + std::to_string(comment.start) + "-" +
                      std::to_string(comment.limit);
        }
        EXPECT_EQ(row.blanked, text) << row.text;
        EXPECT_EQ(row.comments, places) << row.text;
    }
}

TEST(TextTest, TheTreeKnowsWhereEverythingIs) {
    const std::string text =
            R"( {"a\u0062": [1, -2.5e3 ,"x\"]"], "a" : {"b": null, "b": true}, "": {} } x)";
    const Tree tree = treeOf(text);
    EXPECT_EQ(text.size() - 1, tree.limit);
    const auto at = [&](const Span& span) {
        return text.substr(span.start, span.limit - span.start);
    };
    ASSERT_EQ(3U, tree.root.children.size());
    const Node& list = tree.root.children[0];
    EXPECT_EQ("ab", list.key);
    EXPECT_EQ(R"("a\u0062")", at(list.name));
    ASSERT_EQ(3U, list.children.size());
    EXPECT_EQ("-2.5e3", at(list.children[1].value));
    EXPECT_TRUE(list.children[1].isNumber());
    EXPECT_EQ("x\"]", list.children[2].string);
    EXPECT_EQ(R"("x\"]")", at(list.children[2].value));
    EXPECT_FALSE(list.children[2].isNumber());

    // The last member of a name is used.
    const Node* const object = findMember(tree.root, "a");
    ASSERT_NE(nullptr, object);
    ASSERT_NE(nullptr, findMember(*object, "b"));
    EXPECT_EQ("true", at(findMember(*object, "b")->value));
    EXPECT_NE(nullptr, findMember(tree.root, ""));
    EXPECT_EQ(nullptr, findMember(tree.root, "b"));
    EXPECT_EQ(nullptr, findMember(list, ""));

    for (const Node& child : list.children) {
        EXPECT_EQ(&child, findValueAt(tree.root, child.value.start));
        EXPECT_EQ(nullptr, findValueAt(tree.root, child.value.start + 1));
    }
    EXPECT_EQ(nullptr, findValueAt(tree.root, text.size()));
}

// The parser reads nothing after the root, and as much of a word there as is a value.
TEST(TextTest, TheTreeEndsWhereTheParserEnds) {
    const std::pair<const char*, size_t> rows[] = {
            {"null[1]", 4}, {"truefalse", 4}, {"nullx", 4},      {"12abc", 2},
            {"1.5.2", 3},   {"-x", 1},        {" {} {}", 4},     {"[1]]", 3},
            {"null ,", 5},  {"\"a\"b", 3},    {"{\"\":1,}x", 7},
    };
    for (const auto& [text, limit] : rows) {
        EXPECT_EQ(limit, treeOf(text).limit) << text;
        EXPECT_TRUE(treeOf(text).errors.empty()) << text;
    }
}

// A text that is torn, or no JSON at all, has a tree up to its first error without a fix.
TEST(TextTest, TheTreeOfTornTextsComesToItsEnd) {
    const std::string whole = R"({"a": [1, {"b\\": "c"}], "d": "e"})";
    for (size_t size = 0; size < whole.size(); ++size) {
        const std::string torn = whole.substr(0, size);
        const Source source("torn", torn);
        const Tree tree = treeOfRejected(source, torn, torn.size());
        ASSERT_EQ(1U, tree.errors.size()) << torn;
        EXPECT_LE(tree.errors[0].span.limit, size) << torn;
        EXPECT_LE(tree.root.value.limit, size);
        EXPECT_LE(treeOf(torn).limit, size);
    }
    for (const char* const text : {"]", "}", ":", ",", "{]", "[}", "{:", "{\"", "[\"\\", "{,,1}"}) {
        EXPECT_EQ(1U, treeOfRejected(Source("odd", text), text, strlen(text)).errors.size())
                << text;
        EXPECT_LE(treeOf(text).limit, std::string_view(text).size()) << text;
    }
}

// Reading goes on as if a certain fix were made.
TEST(TextTest, EachSyntaxErrorIsFoundWhereTheOnesBeforeHaveACertainFix) {
    const struct {
        const char* text;
        const char* places;  // Offset of each error; with "+" where it has a fix.
    } rows[] = {
            {R"({"a": true "b": false "c": true})", "11+ 22+ "},
            {"\xEF\xBB\xBF{\"a\": [1,], \"b\": +2}", "0+ 11+ 20+ "},
            {R"(["a" "b"])", "5+ "},
            {"[\"a\nb\" \"c\"]", "7+ "},
            {R"(["a" "b", x])", "5+ 10 "},
            {"[1 2]", "1 "},
            {"[1\n2]", "3+ "},
            {"[{} []]", "4+ "},
    };
    for (const auto& row : rows) {
        const Source source("errors", row.text);
        std::string places;
        for (const SyntaxHint& error : treeOfRejected(source, row.text, strlen(row.text)).errors) {
            places += std::to_string(error.span.start) + (error.fixes.empty() ? " " : "+ ");
        }
        EXPECT_EQ(row.places, places) << row.text;
    }
}

}  // namespace

}  // namespace kc2::test
