// The settings catalogue and the built-in documents have the same settings; what a vendor may add.

#include <gtest/gtest.h>
#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "RunTool.h"

namespace kc2::test {

namespace {

Json::Value catalogue() {
    return parsed(readFile(KC2_SOURCE_DIR "/tools/kcodec2_spec/catalogue/settings.json"));
}

bool hasChip(const Json::Value& entry, const std::string& chip) {
    const Json::Value& chips = entry["chips"];
    return chips.isNull() || std::find(chips.begin(), chips.end(), chip) != chips.end();
}

// Whether the entry's range, values and bits allow the value.
bool allows(const Json::Value& entry, const Json::Value& value) {
    if (entry["type"] == "boolean") {
        return value.isBool();
    }
    if (!value.isInt64()) {
        return false;
    }
    const int64_t number = value.asInt64();
    int64_t mask = 0;
    for (const Json::Value& bit : entry["bits"]) {
        mask |= bit["bit"].asInt64();
    }
    bool isListed = !entry["only-values"].asBool();
    for (const Json::Value& one : entry["values"]) {
        isListed = isListed || one["value"].asInt64() == number;
    }
    return isListed && (!entry.isMember("bits") || (number & ~mask) == 0) &&
           (!entry.isMember("minimum") || number >= entry["minimum"].asInt64()) &&
           (!entry.isMember("maximum") || number <= entry["maximum"].asInt64());
}

class Names : public testing::TestWithParam<std::pair<std::string, std::string>> {};

TEST_P(Names, OfTheCatalogueAndOfTheBuiltInDocumentAreTheSame) {
    const auto& [number, chip] = GetParam();
    const Json::Value video = parsed(run("defaults " + number).output)["Video"];
    const Json::Value known = catalogue();
    std::set<std::string> inCatalogue;
    for (const Json::Value& entry : known["settings"]) {
        if (hasChip(entry, chip)) {
            const Json::Value& value = video[entry["section"].asString()][entry["name"].asString()];
            inCatalogue.insert(entry["section"].asString() + "/" + entry["name"].asString());
            EXPECT_TRUE(entry["type"] == "words" ? value.isArray() : allows(entry, value))
                    << entry["name"] << value;
        }
    }
    for (const Json::Value& entry : known["codec-components"]) {
        if (hasChip(entry, chip)) {
            inCatalogue.insert(entry["list"].asString() + "/" + entry["name"].asString());
        }
    }
    std::set<std::string> inDocument;
    std::set<std::string> codes;
    for (const char* const section : {"Features", "Presets", "perf-resource-values"}) {
        for (const std::string& name : video[section].getMemberNames()) {
            inDocument.insert(section + ("/" + name));
        }
    }
    for (const char* const list : {"decoders", "encoders"}) {
        for (const Json::Value& name : video["codecs-available"][list]) {
            inDocument.insert(list + ("/" + name.asString()));
        }
    }
    EXPECT_EQ(inDocument, inCatalogue);
    for (const Json::Value& code : known["perf-resource-codes"]) {
        codes.insert(code["code"].asString());
    }
    for (const Json::Value& words : video["perf-resource-values"]) {
        EXPECT_TRUE(codes.contains(words[0].asString())) << words;
    }
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Names,
                         testing::Values(std::pair("1", "brel"), std::pair("1", "mirt"),
                                         std::pair("2", "orvelle"), std::pair("3", "other")),
                         [](const auto& chosen) { return chosen.param.second; });

// docs/settings.md is what the tool prints.
TEST(CatalogueTest, ThePageIsTheCatalogue) {
    EXPECT_EQ(readFile(KC2_SOURCE_DIR "/docs/settings.md"), run("explain --markdown").output);
    EXPECT_EQ(2, run("explain").exitCode);
    EXPECT_EQ(2, run("explain --markdown private_complexity").exitCode);
}

// A vendor's names are known to the checker, too.
TEST(CatalogueTest, TheCheckerUsesAVendorsFile) {
    const ScratchDirectory scratch;
    const std::string document =
            scratch.write("vendor/etc/media/video_system_specs.json", R"({"Video": {
        "Features": {"vendor_x_mode": true},
        "Presets": {"vendor_x_mode": 5, "vendor_mode_x": 1}}})");
    const std::string check = "check --format json " + document;
    EXPECT_EQ(0u, parsed(run(check).output)["counts"]["warning"].asUInt());
    const Result known =
            run(check + " --settings tests/unit/catalogue/vendor.json --min-severity warning");
    const Json::Value report = parsed(known.output);
    std::string found;
    for (const Json::Value& finding : report["findings"]) {
        found += finding["id"].asString() + "@" + finding["line"].asString() + " ";
    }
    EXPECT_EQ("setting-misplaced@2 value-range@3 name-misspelt@3 ", found) << known.output;
    // As to the other commands that show what a name means.
    const std::string settings = " --settings tests/unit/catalogue/vendor.json";
    const std::string empty = scratch.write("empty.json", "{}");
    const Result changes = run("diff " + empty + " " + document + settings);
    EXPECT_NE(std::string::npos, changes.output.find("      mode of the x unit\n"))
            << changes.output;
    const std::string page =
            run("report --rootdir " + scratch.path() + " --output -" + settings).output;
    EXPECT_NE(std::string::npos, page.find("mode of the x unit")) << page;
    const Result broken = run(check + " --settings tests/unit/catalogue/range.json");
    EXPECT_EQ(2, broken.exitCode);
    EXPECT_NE(std::string::npos, broken.output.find("range.json:5:21:")) << broken.output;
}

TEST(CatalogueTest, AVendorsFileAddsNamesAndMustNotContradict) {
    expectAnswers(
            "explain ",
            {
                    {"vendor_x_mode --settings vendor.json", 0, "range     1 to 4\n"},
                    {"vendor_x_mode --settings vendor.json --settings same.json", 0,
                     "range     1 to 4\n"},
                    {"vendor_x_mode --settings vendor.json --settings other.json", 2,
                     "other.json:3:9: \"vendor_x_mode\" is defined already, at vendor.json:3:9"},
                    {"x --settings known.json", 2,
                     "known.json:3:9: \"private_complexity\" is defined already, at built-in "
                     "settings:"},
                    {"x --settings range.json", 2,
                     "range.json:5:21: \"minimum\" is above \"maximum\""},
                    {"x --settings member.json", 2,
                     "member.json:4:21: the catalogue has no member"},
                    {"x --settings broken.json", 2, "broken.json:2:18: "},
                    {"x --settings none.json", 2, "none.json: No such file"},
                    {"private_complexity", 0, "section   Presets"},
                    {"c2.kvx.mvhevc.decoder.secure", 0, "chips     other"},
                    {"0x40c00000", 0, "all cores"},
                    {"private_complexty", 1, "Did you mean private_complexity?"},
            },
            "tests/unit/catalogue");
}

// A vendor's file with one mistake: in a setting whose other members are right, or in the file.
struct VendorMistake {
    const char* members;
    const char* position;
    const char* message;
    bool isWhole = false;
};

constexpr VendorMistake kVendorMistakes[] = {
        {R"("type": "integer", "meaning": "m")", "1:15", "\"section\" must be a text"},
        {R"("section": "Presents", "type": "integer", "meaning": "m")", "1:40",
         R"("section" must be one of "Features", "Presets", "perf-resource-values")"},
        {R"("section": "Presets", "type": "int", "meaning": "m")", "1:59",
         R"("type" must be one of "boolean", "integer", "words")"},
        {R"("section": "Presets", "type": "boolean", "meaning": "m")", "1:59",
         R"(the type in "Presets" must be "integer")"},
        {R"("section": "Features", "type": "boolean")", "1:15",
         "\"meaning\" must be a text that is not empty"},
        {R"("section": "Features", "type": "boolean", "meaning": "")", "1:82",
         "\"meaning\" must be a text that is not empty"},
        {R"("section": "Features", "type": "boolean", "meaning": "m", "unit": 5)", "1:95",
         "\"unit\" must be a text that is not empty"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "minimum": 1.5)", "1:97",
         "\"minimum\" must be a whole number"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "only-values": 1)", "1:101",
         "\"only-values\" must be true or false"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "values": 1)", "1:96",
         "\"values\" must be a list"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "values": [1])", "1:97",
         "this must be an object"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "values": [{"meaning": "m"}])",
         "1:97", "\"value\" is missing"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "chips": [1])", "1:96",
         "a chip must be a text"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "minimum": 5, "maximum": 4)",
         "1:97", "\"minimum\" is above \"maximum\""},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "chips": ["mirt", "orvell"])",
         "1:104", R"(there is no chip "orvell". Did you mean "orvelle"?)"},
        {R"("section": "Presets", "type": "integer", "meaning": "m",
            "needs-feature": "private_set_cpu_afinity")",
         "2:30",
         R"(there is no setting "private_set_cpu_afinity". Did you mean "private_set_cpu_affinity"?)"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "needs-feature": "no_such_one")",
         "1:103", "there is no setting \"no_such_one\"\n"},
        {R"("section": "Presets", "type": "integer", "meaning": "m",
            "needs-feature": "private_complexity")",
         "2:30",
         R"("needs-feature" must name a setting in "Features": "private_complexity" is in "Presets")"},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "at-most": "no_such_preset")",
         "1:97", "there is no setting \"no_such_preset\""},
        {R"("section": "Presets", "type": "integer", "meaning": "m", "at-most": "n")", "1:97",
         "\"at-most\" names the setting itself"},
        {R"("section": "Features", "type": "boolean", "meaning": "m", "minimum": 1)", "1:98",
         "\"minimum\" is for integers only"},
        {R"("section": "Presets", "type": "integer", "meaning": "m",
            "bits": [{"bit": 1, "meaning": "m", "needs-bit": 2}])",
         "2:62", "\"needs-bit\" must be another bit of this setting"},
        {R"({"codec-components": [{"name": "c2.x", "list": "decoders", "chips": ["Mirt"]}]})",
         "1:70", R"(there is no chip "Mirt". Did you mean "mirt"?)", true},
        {"[]", "1:1", "this must be an object", true},
        {R"({"setings": []})", "1:13",
         R"(the catalogue has no member "setings" here. Did you mean "settings"?)", true},
        {R"({"settings": {}})", "1:14", "\"settings\" must be a list", true},
        {R"({"codec-components": [{"name": "c2.x", "list": "decoder"}]})", "1:48",
         R"("list" must be one of "decoders", "encoders")", true},
        {R"({"codec-components": [{"list": "decoders"}]})", "1:23", "\"name\" must be a text",
         true},
        {R"({"perf-resource-codes": [{"code": "0x1FFFFFFFF", "meaning": "m"}]})", "1:26",
         R"("code" must be a 32-bit word such as "0x40800000")", true},
        {R"({"perf-resource-codes": [{"code": "0x40C00000", "meaning": "m"}]})", "1:26",
         "0x40C00000 is defined already, at built-in settings:", true},
        {R"({"settings": [] "codec-components": []})", "1:17", "Missing ',' or '}' in object",
         true},
};

TEST(CatalogueTest, EachMistakeOfAVendorIsReportedAtItsPlace) {
    const ScratchDirectory scratch;
    for (const VendorMistake& mistake : kVendorMistakes) {
        const std::string file = scratch.write(
                "v.json", mistake.isWhole ? mistake.members
                                          : std::string("{\"settings\": [{\"name\": \"n\", ") +
                                                    mistake.members + "}]}");
        const Result result = run("explain n --settings " + file);
        EXPECT_EQ(2, result.exitCode) << mistake.members;
        EXPECT_NE(std::string::npos, result.output.find(std::string("v.json:") + mistake.position +
                                                        ": " + mistake.message))
                << mistake.members << "\n"
                << result.output;
    }
    const std::string equal =
            scratch.write("v.json", R"({"settings": [{"name": "n", "section": "Presets",
                "type": "integer", "meaning": "m", "minimum": 4, "maximum": 4}]})");
    EXPECT_NE(std::string::npos, run("explain n --settings " + equal).output.find("4 to 4"));
}

// An entry may refer to one that follows, or to one of an earlier file.
TEST(CatalogueTest, AReferenceMayBeToAnyEntryOfTheSameOrAnEarlierFile) {
    const ScratchDirectory scratch;
    const std::string entry = R"("section": "Presets", "type": "integer", "meaning": "m")";
    const std::string first = scratch.write(
            "first.json", "{\"settings\": [{\"name\": \"a\", " + entry +
                                  R"(, "at-most": "b"}, {"name": "b", )" + entry + "}]}");
    const std::string second =
            scratch.write("second.json",
                          "{\"settings\": [{\"name\": \"c\", " + entry + ", \"at-most\": \"b\"}]}");
    EXPECT_EQ(0, run("explain c --settings " + first + " --settings " + second).exitCode);
    const Result late = run("explain c --settings " + second + " --settings " + first);
    EXPECT_EQ(2, late.exitCode);
    EXPECT_NE(std::string::npos, late.output.find("there is no setting \"b\"")) << late.output;
}

// The page's example of a vendor's file is accepted, and has every member of the page's tables.
TEST(CatalogueTest, ThePageHasAnExampleWithEachMember) {
    const std::string page = readFile(KC2_SOURCE_DIR "/docs/settings.md");
    const std::string start = "```json\n";
    const size_t example = page.find(start);
    ASSERT_NE(std::string::npos, example);
    const std::string text = page.substr(example + start.size(),
                                         page.find("```\n", example + 1) - example - start.size());
    const ScratchDirectory scratch;
    const Result result =
            run("explain vendor_zoom_max --settings " + scratch.write("v.json", text));
    EXPECT_EQ(0, result.exitCode) << result.output;
    size_t members = 0;
    const size_t tables = page.find("## A settings file of your own");
    for (size_t at = tables; (at = page.find("\n| `", at)) < example; ++at) {
        const std::string member = page.substr(at + 4, page.find('`', at + 4) - at - 4);
        EXPECT_NE(std::string::npos, text.find("\"" + member + "\":")) << member;
        ++members;
    }
    EXPECT_LT(25u, members);
}

}  // namespace

}  // namespace kc2::test
