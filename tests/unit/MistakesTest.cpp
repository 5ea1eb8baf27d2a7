// The mistakes that people make in documents: each is reported once, at its place.

#include <gtest/gtest.h>
#include <json/value.h>

#include <map>
#include <string>

#include "RunTool.h"

namespace kc2::test {

namespace {

enum class Form { InVideo, Whole };

struct Mistake {
    const char* text;
    const char* found;  // The id and the column of each finding.
    Form form = Form::InVideo;
};

constexpr Mistake kMistakes[] = {
        // Names.
        {R"("Presets": {"private_enc_cvp_enable": true})", "setting-misplaced@24"},
        {R"("Features": {"private_complexity": 50})", "setting-misplaced@25"},
        {R"("Features": {"private_enc_cvp_enabel": true})", "name-misspelt@25"},
        {R"("Features": {"Private_Enc_Cvp_Enable": true})", "name-misspelt@25"},
        {R"("Features": {"private-enc-cvp-enable": true})", "name-misspelt@25"},
        {R"("Features": {"private_enc_cvp_enable ": true})", "name-misspelt@25"},
        {R"("Features": {"private_enc_\u0441vp_enable": true})", "name-misspelt@25"},
        {R"("Features": {"enc_private_cvp_enable": true})", "name-misspelt@25"},
        {R"("Features": {"": true})", "name-empty@25"},
        {R"("Features": {"vendor_a": true, "Vendor_A": true})", "name-case@43"},
        {R"("Features": {"vendor_x": true}, "Presets": {"vendor_x": 1})",
         "name-in-two-sections@56"},
        {R"("KC2PostProcessingFilters": ["a"])", "section-misspelt@12"},
        {R"("features": {"vendor_a": true})", "section-misspelt@12"},
        {R"("Featurse": {"vendor_a": true})", "section-misspelt@12"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.encoder"], "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "codec-in-wrong-list@46"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder.secure"], "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "variant-without-base@46"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder"]})", "codecs-of-one-kind@12"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder"]}, "DolbyVision": {"profile": [5], )"
         R"("max_main_tier_level": 9, "max_high_tier_level": 9})",
         "codecs-of-one-kind@12 unknown-member@86"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder", ""], "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "name-empty@68"},
        {R"("codecs-available": {"decoder": ["c2.kvx.avc.decoder"], "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "unknown-member@33"},
        {R"("codecs-available": {"decoders": "c2.kvx.avc.decoder", "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "list-not-array@45"},
        {R"("codecs-available": ["c2.kvx.avc.decoder"])", "section-not-object@32"},
        // Other words for a codec: the variant beside it is right.
        {R"("codecs-available": {"decoders": ["c2.kvx.h264.decoder", "c2.kvx.avc.decoder.secure"], )"
         R"("encoders": ["c2.kvx.h265.encoder", "c2.kvx.hevc.encoder.secure"]})",
         "codec-misspelt@46 codec-misspelt@112"},
        {R"("codecs-available": {"decoders": ["c2.kvx.av01.decoder", "c2.kvx.av1.decoder.secure"], )"
         R"("encoders": ["c2.kvx.avc.enc", "c2.kvx.avc.encoder.secure"]})",
         "codec-misspelt@46 codec-misspelt@112"},
        {R"("codecs-available": {"decoders": ["c2.kvx.vp09.dec", "c2.kvx.vp9.decoder.secure"], )"
         R"("encoders": ["c2.kvx.hevc.encoder"]})",
         "codec-misspelt@46"},
        {R"("codecs-available": {"decoders": ["c2.kvx.acv.decoder"], "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "codec-misspelt@46"},
        {R"("codecs-available": {"decoders": ["C2.kvx.avc.decoder"], "encoders": )"
         R"(["c2.kvx.hevc.encoder"]})",
         "codec-misspelt@46"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder ", "c2.kvx.avc.decoder"], )"
         R"("encoders": ["c2.kvx.hevc.encoder"]})",
         "codec-misspelt@46"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder", "c2.kvx.avc.decoder"], )"
         R"("encoders": ["c2.kvx.hevc.encoder"]})",
         "codec-repeated@68"},
        {R"("OptionalCodecs": {"decoders": ["c2.kvx.avc.decoder"]})", "object-not-array@30"},
        {R"("KC2CodecPlugins": ["liba.so", "liba.so"])", "listed-twice@43"},
        {R"("KC2CodecPlugins": ["liba.so, libb.so"])", "entries-in-one@32"},
        {R"("KC2CodecPlugins": ["liba.so libb.so"])", "entries-in-one@32"},
        {R"("KC2CodecPlugins": ["liba;libb"])", "entries-in-one@32"},
        {R"("KC2CodecPlugins": ["my liba.so"])", ""},
        {R"("OptionalCodecs": ["c2.kvx.avc.decoder, c2.kvx.hevc.encoder"])", "entries-in-one@31"},
        {R"("KC2CodecPlugins": ["lib${NAME}.so"])", "placeholder@32"},
        {R"("Features": {"{{vendor}}_a": true})", "placeholder@25"},
        {R"("KC2CodecPlugins": "liba.so")", "list-not-array@31"},
        {R"("KC2CodecPlugins": ["liba.so", 5])", "element-not-string@43"},
        {R"("KC2PreProcessingFilters": [{"codec_name": "a", "lib_name": "b"}])",
         "filter-description@40"},
        {R"("Features": {"vendor\u202e_a": true})", "name-characters@25"},
        {R"("Features": {"vendor\u3000a": true})", "name-characters@25"},
        // Values of settings.
        {R"("Features": {"private_enc_cvp_enable": 1})", "number-as-boolean@51"},
        {R"("Features": {"private_enc_cvp_enable": "true"})", "feature-not-boolean@51"},
        {R"("Features": {"private_enc_cvp_enable": null})", "null-as-false@51"},
        {R"("Features": {"private_enc_cvp_enable": {"value": true}})", "feature-not-boolean@51"},
        {R"("Presets": {"private_complexity": "50"})", "preset-not-integer@46"},
        {R"("Presets": {"private_complexity": 50.5})", "real-truncated@46"},
        {R"("Presets": {"private_complexity": 5e1})", "real-number@46"},
        {R"("Presets": {"private_complexity": 4294967295})", "preset-not-integer@46"},
        {R"("Presets": {"private_complexity": true})", "boolean-as-integer@46"},
        {R"("Presets": {"private_complexity": null})", "null-as-zero@46"},
        {R"("Presets": {"private_complexity": -1})", "value-range@46"},
        {R"("Presets": {"private_complexity": 050})", "leading-zero@46"},
        {R"("Presets": {"private_min_slice_size_MB_Mode": 40000, )"
         R"("private_max_slice_size_MB_Mode": 30000})",
         "above-other@58"},
        {R"("Presets": {"private_enc_hier_b_max_mbs_per_sec": 100, )"
         R"("private_enc_hier_b_max_mbs_per_frame": 101})",
         "above-other@107"},
        {R"("Presets": {"private_enc_single_nonref_b_max_mbs_per_sec": 100, )"
         R"("private_enc_single_nonref_b_max_mbs_per_frame": 101})",
         "above-other@125"},
        {R"("Presets": {"private_enc_depth_default_qp_value": 3355443})", ""},
        {R"("Presets": {"private_enc_depth_default_qp_value": 3355444})", "value-range@62"},
        {R"("Presets": {"private_enc_depth_default_qp_value": 3407872})", "value-range@62"},
        {R"("Presets": {"private_enc_depth_default_qp_value": 16777216})", "value-range@62"},
        {R"("Presets": {"private_outbuf_fence": 2})", "value-unsupported@48"},
        {R"("Presets": {"private_outbuf_fence": 9})", "value-unknown@48"},
        {R"("Presets": {"private_transcode_metadata_stat": 8})", "value-unknown@59"},
        {R"("Presets": {"private_cpuaffinity_set": 15})", "feature-needed@51"},
        {R"("Presets": {"debug_private_outbuf_tx_fence_codecs": 64})", "value-unknown@64"},
        {R"("Presets": {"vendor_a": [1]})", "preset-not-integer@36"},
        {R"("Presets": [{"vendor_a": 1}])", "section-not-object@23"},
        {R"("Presets": null)", "section-null@12"},
        {R"("Presets": {})", "section-empty@12"},
        // Bit-rate rows.
        {R"("NimbraModeBitrateTable": [[0, 100, 5], [101, 200, 6]])", "row-gap@52"},
        {R"("NimbraModeBitrateTable": [[100, 200, 6], [0, 100, 5]])", "rows-unsorted@54"},
        {R"("NimbraModeBitrateTable": [[0, 100, 6], [100, 200, 5]])", "rate-falls@52"},
        {R"("NimbraModeBitrateTable": [[0, 100, 0]])", "rate-zero@39"},
        {R"("NimbraModeBitrateTable": [])", "section-empty@12"},
        {R"("NimbraModeBitrateTable": [0, 100, 5])", "row-size@39"},
        {R"("NimbraModeBitrateTable": [[0, 100]])", "row-size@39"},
        {R"("NimbraModeBitrateTable": [["0", "100", "5"]])", "row-value-not-integer@40"},
        {R"("NimbraModeBitrateTable": [[100, 0, 5]])", "row-matches-nothing@39"},
        {R"("NimbraModeBitrateTable": [[100, 100, 5]])", "row-matches-nothing@39"},
        {R"("NimbraModeBitrateTable": [[0, 150, 5], [100, 200, 6]])", "row-overlaps@52"},
        {R"("NimbraModeBitrateTable": [[0, 100, 5], [0, 100, 6]])", "row-hidden@52"},
        {R"("NimbraModeBitrateTable": [[0, -1, 5]])", "row-without-bound@43"},
        {R"("NimbraModeBitrateTable": [[0, 100, 2.5]])", "real-truncated@48"},
        {R"("NimbraModeBitrateTable": {"low": 0, "high": 100, "rate": 5})", "object-not-array@38"},
        // Dolby Vision.
        {R"("DolbyVision": {"profiles": [5]})", "tier-level-absent@27"},
        {R"("DolbyVision": {"profiles": ["5"], "max_main_tier_level": 9, )"
         R"("max_high_tier_level": 9})",
         "profile-not-unsigned@41"},
        {R"("DolbyVision": {"profiles": 5, "max_main_tier_level": 9, "max_high_tier_level": 9})",
         "list-not-array@40"},
        {R"("DolbyVision": {"profile": [5], "max_main_tier_level": 9, "max_high_tier_level": 9})",
         "unknown-member@28"},
        // Perf words.
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"(["40800000", "0x1"]})",
         "perf-word-prefix@83"},
        {R"("perf-resource-values": {"x": ["0x40C0000", "0x1"]})", "perf-code-short@43"},
        {R"("perf-resource-values": {"x": ["40C0000", "1"]})", "perf-code-short@43"},
        {R"("perf-resource-values": {"x": ["0x40C00000, 0x5DC"]})", "perf-word-tail@43"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": ["0x40800000"]})",
         "perf-odd-length@82"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"(["0x40800000", "0x1", "0x40800000", "0x2"]})",
         "perf-code-repeated@104"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": ["0x1", )"
         R"("0x40800000"]})",
         "perf-pair-swapped@83"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"({"0x40800000": "0x1"}})",
         "object-as-array@82"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"([1082130432, 1]})",
         "perf-word-not-hexadecimal@83"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"(["0x4080000g", "0x1"]})",
         "perf-word-tail@83"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"(["0x408000000", "0x1"]})",
         "perf-word-not-hexadecimal@83"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"("0x40800000, 0x1"})",
         "list-not-array@82"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": []})",
         "perf-empty@37"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encod": )"
         R"(["0x40800000", "0x1"]})",
         "name-misspelt@37"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"([["0x40800000", "0x1"]]})",
         "perf-word-not-hexadecimal@83"},
        {R"("perf-resource-values": {"private_perf_resource_values_video_encode": )"
         R"(["ox40800000", "0x1"]})",
         "perf-word-not-hexadecimal@83"},
        // The same mistakes in other forms.
        {R"("Presets": {"private_complexty": 50})", "name-misspelt@24"},
        {R"("Presets": {"private_max_supported_render_rates": 120})", "name-misspelt@24"},
        {R"("Features": {"privat_enc_cvp_enable": true})", "name-misspelt@25"},
        {R"("Features": {"private_enc_cvp_enable\u200b": true})", "name-misspelt@25"},
        {R"("Features": {"vendor_a\n": true})", "name-characters@25"},
        {R"("OptionalCodec": ["c2.kvx.avc.decoder"])", "section-misspelt@12"},
        {R"("OptionalCodecs": ["c2.kvx.avc.decoder.secur"])", "codec-misspelt@31"},
        {R"("OptionalCodecs": [["c2.kvx.avc.decoder"]])", "element-not-string@31"},
        {R"("OptionalCodecs": [null])", "element-not-string@31"},
        {R"("KC2PreprocessingFilters": ["a"])", "section-misspelt@12"},
        {R"("KC2CodecPlugins": [""])", "name-empty@32"},
        {R"("KC2CodecPlugins": null)", "section-null@12"},
        {R"("perf-resource-value": {"a": ["0x1", "0x2"]})", "section-misspelt@12"},
        {R"("perf-resource-values": {"a": ["0x1 ", "0x2"]})", "perf-word-tail@43"},
        {R"("perf-resource-values": {"a": ["-0x1", "0x2"]})", "negative-as-unsigned@43"},
        {R"("perf-resource-values": {"a": ["", "0x2"]})", "perf-word-not-hexadecimal@43"},
        {R"("perf-resource-values": {"a": "0x1"})", "list-not-array@42"},
        {R"("perf-resource-values": ["0x1", "0x2"])", "section-not-object@36"},
        {R"("DolbyVision": [])", "section-not-object@27"},
        {R"("DolbyVision": {"profiles": [5.5], "max_main_tier_level": 9, "max_high_tier_level": 9})",
         "profile-not-unsigned@41"},
        {R"("DolbyVision": {"profiles": [5], "max_main_tier_level": "9", "max_high_tier_level": 9})",
         "tier-level-not-integer@68"},
        {R"("NimbraModeBitrateTable": [[0, 100, 5], null])", "row-size@52"},
        {R"("NimbraModeBitrateTable": [[0, 100, 5, 6]])", "row-size@39"},
        {R"("NimbraModeBitrateTable": [[0, 4294967295, 5]])", "row-value-not-integer@43"},
        {R"("NimbraModeBitRateTable": [[0, 100, 5]])", "section-misspelt@12"},
        // The whole document.
        {R"({"Features": {"private_enc_cvp_enable": true}})", "no-video@1", Form::Whole},
        {R"({"Features": {"vendor_a": true}, "Presets": {"vendor_b": 1}})", "no-video@1",
         Form::Whole},
        {R"({"video": {"Features": {"private_enc_cvp_enable": true}}})", "no-video@2", Form::Whole},
        {R"({"root": {"Video": {"Features": {"vendor_a": true}}}})", "no-video@2", Form::Whole},
        {R"({"root": {"Features": {"vendor_a": true}}})", "no-video@2", Form::Whole},
        // A member at a wrong level.
        {R"({"Video": {"Features": {"vendor_a": true}}, "Presets": {"vendor_b": 1}, )"
         R"("KC2CodecPlugins": ["a"]})",
         "wrong-level@42", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}, "Presets": {"vendor_b": 1}}})",
         "wrong-level@42", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}}, "Presets": {"vendor_b": 1}}})",
         "wrong-level@43", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}}, "vendor": 1)", "trailing-text@44",
         Form::Whole},
        {R"({"Features": {"vendor_a": true}, "Video": {"Presets": {"vendor_b": 1}}})",
         "wrong-level@2", Form::Whole},
        {R"("Video": {"Features": {"vendor_a": true}})", "wrong-level@12"},
        {R"("root": {"Features": {"vendor_a": true}, "Presets": {"vendor_b": 1}})",
         "wrong-level@12"},
        {R"("Features": {"vendor_a": true, "Presets": {"vendor_b": 1}, )"
         R"("DolbyVision": {"profiles": ["5"]}})",
         "wrong-level@43"},
        {R"("Presets": {"vendor_a": 1, "KC2CodecPlugins": ["a", 5]})", "wrong-level@39"},
        {R"("perf-resource-values": {"a": ["0x1", "0x2"], "Presets": {"vendor_b": 5}})",
         "wrong-level@58"},
        {R"("perf-resource-values": {"a": ["0x1", "0x2"], "OptionalCodecs": ["c2.kvx.avc.decoder"]})",
         "wrong-level@58"},
        {"\n        \"Presets\": {\"b\": \"x\"},\n            \"vendor_inside\": 1,\n        "
         "\"KC2CodecPlugins\": [\"a\", 5]",
         "preset-not-integer@26 unknown-member@29 element-not-string@34"},
        {"\n        \"Presets\": {\n            \"vendor_a\": 1},\n            \"vendor_b\": 2",
         "unknown-member@26"},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder"], "encoders": )"
         R"(["c2.kvx.avc.encoder"], "OptionalCodecs": ["c2.kvx.vp9.decoder"], "Presets": {}})",
         "wrong-level@105"},
        {R"("DolbyVision": {"profiles": [5], "max_main_tier_level": 9}, "max_high_tier_level": 9)",
         "unknown-member@69"},
        {R"("Features": {"private_enc_cvp_enable": true}, "private_enc_vpss_flip": true, )"
         R"("private_enc_c2d_rotation": false)",
         "unknown-member@55"},
        {R"("Presets": {"vendor_a": 1}, "vendor_b": 2, "vendor_c": 3)", "unknown-member@37"},
        {R"("Features": {"vendor_a": true}, "vendor_b": true, "vendor_c": false)",
         "unknown-member@41"},
        {R"("Presets": {"vendor_a": 1}, "vendor_b": 2)", "unknown-member@40"},
        {"{\n    \"Video\": {\"Presets\": {\"vendor_a\": 1}},\n    \"KC2CodecPlugins\": [\"a\"]\n}",
         "wrong-level@5", Form::Whole},
        {"{\n    \"Video\": {\n        \"Presets\": {\"vendor_a\": 1}},\n"
         "        \"KC2CodecPlugins\": [\"a\"]\n}",
         "wrong-level@35", Form::Whole},
        {R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder"]}, "encoders": )"
         R"(["c2.kvx.avc.encoder"]}, "Presets": {"vendor_a": 1})",
         "wrong-level@67"},
        {R"({"Video": []})", "video-not-object@11", Form::Whole},
        {R"([])", "root-not-object@1", Form::Whole},
        {R"(null)", "no-video@1", Form::Whole},
        {R"(null[1])", "no-video@1 second-document@5", Form::Whole},
        {R"(["a" "b"])", "syntax@6", Form::Whole},
        {R"({"a": true "b": false "c": true})", "syntax@12 syntax@23", Form::Whole},
        {R"({"":1,})", "no-video@1 unknown-member@2", Form::Whole},
        {R"({})", "no-video@1", Form::Whole},
        {R"()", "syntax@1", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}} x)", "trailing-text@45", Form::Whole},
        {"{\"Video\": {\"Features\": {\"vendor_a\": true}}}\n>>>>>>> branch\n", "second-document@1",
         Form::Whole},
        {"{\"Video\": {\"Features\": {\"vendor_a\": true}}}\n=======\n{\"Video\": {}}\n",
         "second-document@1", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}} {"Video": {}})", "second-document@45",
         Form::Whole},
        {"--- a/x.json\n+++ b/x.json\n@@ -1 +1 @@\n-{}\n+{\"Video\": {}}\n", "root-not-object@1",
         Form::Whole},
        {"{\"Video\": {\"Features\": {\"vendor_a\": true}}} // c\n---\n{\"Video\": {}}",
         "second-document@1", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}}, {"Video": {}})", "second-document@44",
         Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}} <!-- c -->)", "trailing-text@45",
         Form::Whole},
        {"-{\"Video\": {}}\n+{\"Video\": {\"Presets\": {}}}\n", "root-not-object@1", Form::Whole},
        {R"({"Video": {}})", "video-empty@2", Form::Whole},
        {R"({"Video": null})", "video-empty@2", Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true, "vendor_a": false}}})", "duplicate-member@43",
         Form::Whole},
        {R"({"Video": {"Features": {"vendor_a": true}}, "Video": {}})",
         "duplicate-member@45 video-empty@45", Form::Whole},
        {R"({"$schema": "x", "Video": {"Features": {"vendor_a": true}}})", "", Form::Whole},
};

TEST(MistakesTest, EachIsReportedOnceAtItsPlace) {
    const ScratchDirectory scratch;
    std::map<std::string, const Mistake*> mistakes;
    std::string command = "check --format json";
    for (const Mistake& mistake : kMistakes) {
        const bool isWhole = mistake.form == Form::Whole;
        const std::string path = scratch.write(
                std::to_string(mistakes.size()) + ".json",
                isWhole ? mistake.text : std::string("{\"Video\": {") + mistake.text + "}}");
        mistakes[path] = &mistake;
        command += " " + path;
    }
    const Json::Value report = parsed(run(command).output);
    std::map<std::string, std::string> found;
    std::map<std::string, std::string> messages;
    for (const Json::Value& finding : report["findings"]) {
        std::string& ofDocument = found[finding["path"].asString()];
        ofDocument += (ofDocument.empty() ? "" : " ") + finding["id"].asString() + "@" +
                      finding["column"].asString();
        messages[finding["path"].asString()] += describe(finding);
    }
    std::map<const Mistake*, std::string> inOrder;
    for (const auto& [path, mistake] : mistakes) {
        EXPECT_EQ(mistake->found, found[path]) << mistake->text;
        inOrder[mistake] = mistake->text + ("\n" + messages[path]);
    }
    std::string text;
    for (const auto& [mistake, lines] : inOrder) {
        text += lines;
    }
    for (size_t at = 0; (at = text.find(scratch.path(), at)) != std::string::npos;) {
        text.replace(at, text.find('.', at + scratch.path().size()) - at, "N");
    }
    expectFile("mistakes.txt", text);
}

}  // namespace

}  // namespace kc2::test
