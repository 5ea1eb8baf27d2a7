// kcodec2_spec report: the text of its page. scripts/check-report.py opens it in a browser.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "RunTool.h"
#include "platform/Version.h"

namespace kc2::test {

namespace {

namespace fs = std::filesystem;

constexpr char kSpec[] = "/video_system_specs.json";

// As a person reads it: with the marks that the style adds, without tags and links, single blanks.
std::string textOf(std::string html) {
    html = std::regex_replace(html, std::regex("<td[^>]*class=\"none[^>]*>"), "$&–");
    html = std::regex_replace(html, std::regex("<td[^>]*differs\">"), "$&≠");
    html = std::regex_replace(html, std::regex("<a [^>]*>[^<]*</a>"), "");
    html = std::regex_replace(html, std::regex("<span class=\"count\">([^<]*)</span>"), "$1");
    html = std::regex_replace(html, std::regex("<(/?)(small|span)[^>]*>"), " ");
    html = std::regex_replace(html, std::regex("<[^>]*>"), "");
    html = std::regex_replace(html, std::regex(" +"), " ");
    html.erase(0, html.find_first_not_of(' '));
    return html.erase(html.find_last_not_of(' ') + 1);
}

std::vector<std::string> allOf(const std::string& text, const char* pattern) {
    const std::regex regex(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at) {
        found.push_back((*at)[1]);
    }
    return found;
}

// The rows of the matrix, each as its cells.
std::vector<std::vector<std::string>> matrixOf(const std::string& page) {
    const size_t start = page.find("<table class=\"matrix\">");
    std::vector<std::vector<std::string>> rows;
    for (const std::string& row :
         allOf(page.substr(start, page.find("</table>", start) - start), "<tr[^>]*>(.*)</tr>")) {
        rows.emplace_back();
        for (const std::string& cell : allOf(row, "(<t[hd][^>]*>.*?)</t[hd]>")) {
            rows.back().push_back(textOf(cell));
        }
    }
    return rows;
}

std::string joined(const std::vector<std::vector<std::string>>& rows) {
    std::string text;
    for (const std::vector<std::string>& row : rows) {
        for (const std::string& cell : row) {
            text += cell + (&cell == &row.back() ? "\n" : " | ");
        }
    }
    return text;
}

TEST(ReportTest, MarksWhatDiffersFromTheFirstColumn) {
    const ScratchDirectory tree;
    tree.write(std::string("vendor/etc/media") + kSpec, R"({"Video": {
        "Features": {"same": true, "turned": true, "gone": false},
        "NimbraModeBitrateTable": [[0, 10, 1], [5, 20, 2], [30, 40, 3]],
        "KC2CodecPlugins": ["a", "b", "b"], "DolbyVision": {"profiles": [10]}}})");
    tree.write(std::string("odm/etc/media_b<b>") + kSpec, R"({"Video": {
        "Features": {"same": true, "turned": false, "<i>\u0007\"": true},
        "NimbraModeBitrateTable": [[0, 10, 1], [5, 20, 4]],
        "KC2CodecPlugins": ["b", "new", "b", "a"], "DolbyVision": {"profiles": [9, 10]},
        "OptionalCodecs": ["c2.x"]}})");
    tree.write("data/vendor/media/video_private_configs.json",
               R"({"Video": {"Presets": {"from <private>": -1}}})");
    const std::string page = run("report --output - --rootdir " + tree.path()).output;
    EXPECT_EQ(R"(Setting | no variant | _b&lt;b&gt;
Features 4 rows, 3 differ
&lt;i&gt;\x07&quot; | – | ≠on system spec
gone | off system spec | ≠–
same | on system spec | on system spec
turned | on system spec | ≠off system spec
Presets 1 row
from &lt;private&gt; | -1 private file | -1 private file
Perf-lock words 0 rows
Nimbra-mode bit rates 3 rows, 2 differ
[0, 10) | #1 1 system spec | #1 1 system spec
[5, 20) | #2 2 system spec | ≠#2 4 system spec
[30, 40) | #3 3 system spec | ≠–
Dolby Vision profiles 2 rows, 1 differ
9 | – | ≠yes system spec
10 | yes system spec | yes system spec
Dolby Vision tier levels 2 rows
max_high_tier_level | 0 system spec | 0 system spec
max_main_tier_level | 0 system spec | 0 system spec
Codec plug-ins 4 rows, 2 differ
a | #1 system spec | ≠#4 system spec
b | #2 system spec | #1 system spec
new | – | ≠#2 system spec
b | #3 system spec | #3 system spec
Pre-processing filters 0 rows
Encoder post-processing filters 0 rows
Codec components 1 row, 1 differ
no entry | every component is enabled | 
c2.x | – | ≠yes system spec
)",
              joined(matrixOf(page)));
    EXPECT_NE(std::string::npos,
              page.find("Bit rates with no variant; from 0 to below 10: 1; from 10 to below 20: 2; "
                        "from 20 to below 30: none; from 30 to below 40: 3<"));
}

TEST(ReportTest, ShowsOfEachVariantWhatShowPrints) {
    const std::string page = run("report --output - --rootdir examples/device").output;
    const std::vector<std::vector<std::string>> rows = matrixOf(page);
    ASSERT_LT(50U, rows.size());
    const std::vector<std::string>& variants = rows[0];
    EXPECT_EQ((std::vector<std::string>{"Setting", "no variant", "_mirt", "_orvelle",
                                        "_orvelle_tab"}),
              variants);
    for (size_t column = 1; column < variants.size(); ++column) {
        std::vector<std::string> entries;
        for (const std::vector<std::string>& row : rows) {
            if (row.size() == variants.size() && row[column].find("–") == std::string::npos) {
                entries.push_back(
                        row[0].substr(0, row[0].find(row[0][0] == '[' ? ")" : " ") +
                                                 (row[0][0] == '[' ? 1 : 0)) +
                        " " +
                        std::regex_replace(row[column], std::regex("^(≠)?(#\\d+ ?|yes )?"), ""));
            }
        }
        entries.erase(entries.begin());  // The header.
        const std::string shown =
                run("show --rootdir examples/device --property vendor.media.target_variant=" +
                    (column == 1 ? "default" : variants[column]) + " 2> /dev/null")
                        .output;
        std::vector<std::string> expected = allOf(shown, "\n  ([^\n]*)");
        for (std::string& line : expected) {
            line = std::regex_replace(line, std::regex(" +"), " ");
        }
        std::sort(entries.begin(), entries.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(expected, entries) << variants[column];
    }
}

TEST(ReportTest, HasTheFindingsOfCheck) {
    const std::string tree =
            "--rootdir tests/unit/check/load-bare --property "
            "vendor.media.target_variant=_unknown";
    const std::string page = run("report --output - " + tree).output;
    const std::string checked = run("check --all-variants --format json " + tree).output;
    const std::vector<std::string> ids = allOf(checked, "\"id\":\"([^\"]*)\"");
    EXPECT_LT(0U, ids.size());
    for (const std::string& id : ids) {
        EXPECT_NE(std::string::npos, page.find(">" + id + "</code>")) << id;
    }
    // A variant without a document, and the document that is used instead: that of no variant.
    EXPECT_EQ("no variant and 1 variant no variant, _unknown", matrixOf(page)[0][1]);
    EXPECT_NE(std::string::npos, page.find("built-in document 3"));
}

TEST(ReportTest, EqualLoadsShareAColumnAndEqualNotesALine) {
    const auto pageOf = [](int variants) {
        const ScratchDirectory tree;
        tree.write(std::string("vendor/etc/media") + kSpec, R"({"Video": {}})");
        for (int i = 0; i < variants; ++i) {
            tree.write("odm/etc/media_" + std::to_string(1000 + i) + kSpec, R"({"Video": {
                "Features": {"vendors_enc_open_gop": true, "number": 1},
                "codecs-available": {"decoders": ["c2.kvx.avc.decoder"], "encoders": []}}})");
        }
        tree.write(std::string("odm/etc/media_other") + kSpec, R"({"Video": {}})");
        tree.write(std::string("odm/etc/media_too/deep/down") + kSpec, R"({"Video": {}})");
        return run("report --output - --rootdir " + tree.path()).output;
    };
    const std::string few = pageOf(10);
    const std::string many = pageOf(400);
    EXPECT_EQ((std::vector<std::string>{"Setting", "no variant and 1 variant no variant, _other",
                                        "400 variants _1000, _1001, _1002 …"}),
              matrixOf(many)[0]);
    const std::string name = "_1000, ";
    EXPECT_GT(few.size() + 390 * name.size() + 100, many.size());
    EXPECT_NE(std::string::npos, many.find("_1399</details>"));
    // The worst finding first, and each once; the cell of its entry has a link to it.
    for (const char* const part :
         {">2 errors</a>", ">400 warnings</a>", ">400 warnings, 1 distinct</h3>",
          "<p>400 × Features/number should", ":2:70</code> · <a href=\"#load-1\">400 variants</a>",
          " <a class=\"warning\" href=\"#finding-1\">warning</a></td></tr>"}) {
        EXPECT_NE(std::string::npos, many.find(part)) << part;
    }
    EXPECT_LT(many.find("id=\"errors\""), many.find("id=\"warnings\""));
    EXPECT_LT(many.find("id=\"warnings\""), many.find("id=\"notes\""));
}

// Not the same as no variant, but here it selects the same document, which once took for ever.
TEST(ReportTest, AnEmptyVariantIsNamed) {
    const ScratchDirectory tree;
    tree.write(std::string("vendor/etc/media") + kSpec, R"({"Video": {}})");
    const std::string page = run("report --output - --variant '' --rootdir " + tree.path()).output;
    EXPECT_EQ("no variant and 1 variant no variant, &quot;&quot;", matrixOf(page)[0][1]);

    // The fallback's path has no variant.
    const ScratchDirectory bare;
    bare.write("vendor/etc/video_system_specs.json", R"({"Video": {}})");
    const std::string fallback =
            run("report --output - --variant '' --rootdir " + bare.path()).output;
    EXPECT_NE(std::string::npos, fallback.find("(fallback")) << fallback;
    EXPECT_EQ(std::string::npos, fallback.find("etc&lt;variant&gt;")) << fallback;
}

TEST(ReportTest, ShowsWhatIsWrongInAFallbackThatNoLoadReads) {
    const ScratchDirectory tree;
    const std::string spec = R"({"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder"]}})";
    tree.write(std::string("vendor/etc/media") + kSpec, spec);
    tree.write(std::string("odm/etc/media_a") + kSpec, spec);
    tree.write("vendor/etc/video_system_specs.json", R"({"Video": {"Presets": {"a": true}}})");
    const std::string page = run("report --output - --rootdir " + tree.path()).output;
    EXPECT_NE(std::string::npos, page.find("true is used as 1 (a variant without a document)"))
            << page;
}

TEST(ReportTest, WritesACompleteFileOrNone) {
    const ScratchDirectory directory;
    const std::string kept = directory.write("kept.html", "before");
    chmod(kept.c_str(), 0640);
    fs::create_symlink(kept, directory.path() + "/link.html");
    const std::string report = "report --rootdir examples/device --output ";
    fs::create_symlink("later.html", directory.path() + "/dangling.html");
    const Result printed = run(report + "-");
    for (const char* name : {"/link.html", "/new.html", "/dangling.html", "/later.html"}) {
        EXPECT_EQ(0, run(report + directory.path() + name).exitCode);
        EXPECT_EQ(printed.output, readFile(directory.path() + name));
    }
    struct stat status = {};
    EXPECT_EQ(0, stat(kept.c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 07777U);
    EXPECT_TRUE(fs::is_symlink(directory.path() + "/link.html"));
    EXPECT_TRUE(fs::is_symlink(directory.path() + "/dangling.html"));

    const struct {
        std::string arguments;
        const char* message;
    } rows[] = {
            {"report --rootdir examples/device", "--output is required"},
            {"report --rootdir none --output x.html", "Directory does not exist: none"},
            {report + "'" + directory.path() + "/no\033ne/x.html'", "/no\\x1Bne/x.html cannot be"},
            {report + directory.path(), "cannot be written: Is a directory"},
            {report + directory.path() + "/" + std::string(300, 'n'), "File name too long"},
            {report + "/dev/full", "/dev/full cannot be written: No space left"},
            {report + "- > /dev/full", ""},
            {report + kept + " extra", "extra"},
    };
    for (const auto& row : rows) {
        const Result result = run(row.arguments);
        EXPECT_EQ(2, result.exitCode) << row.arguments;
        EXPECT_NE(std::string::npos, result.output.find(row.message)) << result.output;
    }
    EXPECT_EQ(0, run("report --rootdir examples/device --output /dev/null").exitCode);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
    EXPECT_EQ(5, std::distance(fs::directory_iterator(directory.path()), {}));  // No other files.
}

// A page with one of everything: long lists that are cut, odd names, and links from the cells.
TEST(ReportTest, AWholePageIsAsWritten) {
    const ScratchDirectory tree;
    std::string numbers;
    for (int i = 0; i < 23; ++i) {  // Places of one note.
        numbers += fmt::format("{}0{}", i == 0 ? "" : ",\n", i);
    }
    tree.write(std::string("vendor/etc/media") + kSpec, R"({"Video": {
    "Features": {"turned": 1, "a__name/of /many_parts": true,
        "withoutabreakinthefirst30lettersofitbut\u00e4\u00f6\u00fc\u4e16": false, "it's <&>": "x",
        "abcdefghijklmnopqrstuvwxyz012\u00e434": true},
    "Presets": {"private_outbuf_fence": 7.5, "private_complexity": 1.5, "x": 01, "x": 1e0},
    "perf-resource-values": {"p": ["0x40C00000", "z", "1"], "q": ["0x1", "0xFFFFFFFF"]},
    "DolbyVision": {"profiles": [300, 10, 9, 5.5], "max_main_tier_level": -1},
    "KC2CodecPlugins": ["b", 5, "a", "b"],
    "codecs-available": {"decoders": ["c2.kvx.avc.decoder", "c2.kvx.avc.decoder",
        "c2.kvx.avx.decoder"], "encoders": []},
    "NimbraModeBitrateTable": [[0, 100, 1000], [50, 60, 7], [70, 70, 1], [200, 900, 999499],
        [900, 5000, 2000000], [5000, 70000, 4000000], [70000, 2147483647, 3000000000],
        [80000, 2147483648, 1.5]]}})");
    tree.write(std::string("odm/etc/media_places") + kSpec,
               "{\"Video\": {\"unknown\": [" + numbers + "]}}");
    for (int i = 10; i < 42; ++i) {  // One chart for eight, then charts of their own.
        tree.write(fmt::format("odm/etc/media_{}{}", i, kSpec),
                   fmt::format(R"({{"Video": {{"Features": {{"turned": {},
    "named": {}}},
    "Presets": {{"own": {}}}, "NimbraModeBitrateTable": [[{}, {}, {}]]}}}})",
                               i < 19 ? "1.0" : "true", i < 18 ? "1.0" : "true", i,
                               i < 18 ? 5 : i - 12, i < 18 ? 30 : 20 * i * i,
                               i < 18 ? 1000 : 100001 * i));
    }
    for (const char* const directory : {"odm/etc/media_w1", "odm/etc/media_w2"}) {
        tree.write(std::string(directory) + kSpec, R"({"Video": {"Presets": {"y": 2}}})");
    }
    // One column, of documents in two directories.
    for (const char* const directory :
         {"odm/etc/media_x1", "odm/etc/media_x2", "vendor/etc/media_x3"}) {
        tree.write(std::string(directory) + kSpec, R"({"Video": {"Presets": {"y": 1}}})");
    }
    tree.write("data/vendor/media/video_private_configs.json",
               R"({"Video": {"Presets": {"x": 5}}})");
    std::string page =
            run("report --rootdir . --output -", "../" + fs::path(tree.path()).filename().string())
                    .output;
    for (const char* const part : {"style", "script"}) {
        const size_t start = page.find(fmt::format("<{}>", part));
        const std::string end = fmt::format("</{}>", part);
        page.erase(start, page.find(end, start) - start);
    }
    expectFile("report-page.txt",
               page.replace(page.find(KC2_VERSION), strlen(KC2_VERSION), "VERSION"));
}

// Browsers do not open a page that is too large, so it is cut, and says so.
TEST(ReportTest, StaysSmallEnoughForABrowser) {
    const ScratchDirectory tree;
    std::string names;
    std::string rows;
    for (int i = 0; i < 6000; ++i) {
        names += (i == 0 ? "\"n" : ", \"n") + std::to_string(i) + (i < 3000 ? "\": 1.5" : "\": 1");
    }
    for (int i = 0; i < 600; ++i) {
        rows += (i == 0 ? "[" : ", [") + std::to_string(i) + ", 2147483647, " + std::to_string(i) +
                "]";
    }
    tree.write(std::string("vendor/etc/media") + kSpec,
               R"({"Video": {"NimbraModeBitrateTable": [)" + rows + R"(], "Presets": {)" + names +
                       "}}}");
    for (int i = 0; i < 40; ++i) {
        tree.write("odm/etc/media_" + std::to_string(i) + kSpec,
                   "{\"Video\": {\"Presets\": {\"own\": " + std::to_string(i) + "}}}");
    }
    const Result result = run("report --output - --rootdir " + tree.path());
    EXPECT_EQ(0, result.exitCode);
    EXPECT_GT(60U << 20, result.output.size());
    for (const char* text : {"<td colspan=\"42\">1162 rows not shown: ", ">600 rows not shown: ",
                             ">1600 findings not shown, ", "Too many rows to draw."}) {
        EXPECT_NE(std::string::npos, result.output.find(text)) << text;
    }
}

}  // namespace

}  // namespace kc2::test
