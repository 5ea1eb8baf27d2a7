// Device trees with one mistake each, and correct ones: what the checker reports, file by file.

#include <gtest/gtest.h>
#include <json/value.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "RunTool.h"

namespace kc2::test {

namespace {

namespace fs = std::filesystem;

constexpr char kSpecName[] = "/video_system_specs.json";
constexpr char kAllVariants[] = "--all-variants";

// A tree, a line for each file: its path and what it is. "odm_x", "vendor_x", "vendor", "fallback"
// and "private" are the documents that a load reads. What a file is: "good", "broken", "dir",
// "pipe", "-> TARGET", "built-in N", the same with one value "changed N", "file" (of no interest),
// or its text.
struct TreeRow {
    const char* files;
    const char* found;  // "[ID] FILE", and ":COLUMN" where the finding is not about the whole file.
    const char* options = kAllVariants;
};

std::string pathOf(const std::string& name) {
    for (const std::string partition : {"odm", "vendor"}) {
        if (name.starts_with(partition)) {
            return "/" + partition + "/etc/media" + name.substr(partition.size()) + kSpecName;
        }
    }
    return name == "fallback"  ? std::string("/vendor/etc") + kSpecName
           : name == "private" ? "/data/vendor/media/video_private_configs.json"
                               : name;
}

// The other way round.
std::string nameOf(std::string path) {
    const std::string begin = "/etc/media";
    const size_t at = path.find(begin);
    if (path.starts_with("/data/vendor") && path == pathOf("private")) {
        return "private";
    }
    if (path == pathOf("fallback")) {
        return "fallback";
    }
    if (at == std::string::npos || !path.ends_with(kSpecName)) {
        return path;
    }
    const size_t end = path.size() - std::string_view(kSpecName).size();
    return path.substr(1, at - 1) + path.substr(at + begin.size(), end - at - begin.size());
}

std::string fileTextOf(const std::string& content) {
    if (content.starts_with("built-in ") || content.starts_with("changed ")) {
        std::string text = readFile(KC2_SOURCE_DIR "/targetspec/defaults/built_in_document_" +
                                    content.substr(content.size() - 1) + ".json");
        const std::string complexity = "\"private_complexity\": ";
        return content[0] == 'b'
                       ? text
                       : text.replace(text.find(complexity), complexity.size(), complexity + "1");
    }
    return content == "good"     ? R"({"Video": {"Features": {"vendor_a": true}}})"
           : content == "broken" ? R"({"Video": {"Features": {"vendor_a": yes}}})"
                                 : content;
}

void addTo(const ScratchDirectory& tree, const std::string& name, const std::string& content) {
    const std::string path = tree.path() + pathOf(name);
    const std::string link = "-> ";
    fs::create_directories(fs::path(path).parent_path());
    if (content == "dir") {
        fs::create_directories(path);
    } else if (content == "pipe") {
        mkfifo(path.c_str(), 0644);
    } else if (content.starts_with(link)) {
        fs::create_symlink(content.substr(link.size()), path);
    } else {
        tree.write(pathOf(name).substr(1), fileTextOf(content));
    }
}

std::string foundIn(const ScratchDirectory& tree, const TreeRow& row, std::string* output) {
    std::istringstream files(row.files);
    for (std::string line; std::getline(files, line);) {
        const size_t blank = line.find(' ');
        addTo(tree, line.substr(0, blank), line.substr(blank + 1));
    }
    *output = run("check --format json --rootdir " + tree.path() + " " + row.options).output;
    const Json::Value report = parsed(*output);
    std::multiset<std::string> found;
    for (const Json::Value& finding : report["findings"]) {
        const std::string path = finding["path"].asString().substr(tree.path().size());
        const int column = finding["column"].asInt();
        found.insert("[" + finding["id"].asString() + "] " + nameOf(path) +
                     (column == 1 ? "" : ":" + std::to_string(column)));
    }
    std::string all;
    for (const std::string& one : found) {
        all += (all.empty() ? "" : " ") + one;
    }
    return all;
}

constexpr TreeRow kWrongTrees[] = {
        // Documents that only some path selects.
        {"vendor good\nfallback broken", "[syntax] fallback:37"},
        {"vendor good\nodm_x good\nfallback broken", "[syntax] fallback:37"},
        {"vendor good\nfallback {}", "[no-video] fallback"},
        {"vendor good\nfallback dir", "[unreadable] fallback"},
        {"vendor good\nfallback pipe", "[unreadable] fallback"},
        {"vendor good\nfallback -> nowhere.json", "[link-broken] fallback"},
        {"vendor good\nodm_x broken", "[syntax] odm_x:37"},
        {"vendor good\nvendor/sub broken", "[syntax] vendor/sub:37"},
        {"odm_x dir", "[unreadable] odm_x"},
        // Documents that no path selects.
        {"vendor good\nodm_x good\nvendor_x broken", "[document-unselectable] vendor_x"},
        {"vendor good\nodm_x good\nvendor_x good", "[document-shadowed] vendor_x"},
        {"vendor good\nodm_x good\nvendor_x good", "[document-shadowed] vendor_x", ""},
        {"vendor good\nodm_x dir\nvendor_x good",
         "[document-shadowed] vendor_x [unreadable] odm_x"},
        {"vendor good\nodm good", "[document-unselectable] odm"},
        {"vendor good\n/odm/etc/video_system_specs.json good",
         "[document-unselectable] /odm/etc/video_system_specs.json"},
        {"vendor good\n/odm/etc/Media_x/video_system_specs.json good",
         "[document-unselectable] /odm/etc/Media_x/video_system_specs.json"},
        {"vendor good\n/product/etc/media_x/video_system_specs.json good",
         "[document-unselectable] product_x"},
        {"vendor good\nvendordefault good", "[document-unselectable] vendordefault"},
        {"vendor good\n/vendor/etc/media_x/video_system_spec.json good",
         "[document-unselectable] /vendor/etc/media_x/video_system_spec.json"},
        {"vendor good\n/vendor/etc/media_x/Video_System_Specs.json good",
         "[document-unselectable] /vendor/etc/media_x/Video_System_Specs.json"},
        {"vendor good\n/data/vendor/media/video_system_specs.json good",
         "[document-unselectable] /data/vendor/media/video_system_specs.json"},
        {"vendor good\n/odm/media_x/video_system_specs.json good",
         "[document-unselectable] /odm/media_x/video_system_specs.json"},
        {"vendor good\n/vendor/video_system_specs.json good",
         "[document-unselectable] /vendor/video_system_specs.json"},
        // A private file in the wrong place, or with another name.
        {"vendor good\nodm_x good\n/odm/etc/media_x/video_private_configs.json built-in 3",
         "[private-file-place] /odm/etc/media_x/video_private_configs.json"},
        {"vendor good\n/vendor/etc/media/video_private_configs.json built-in 3",
         "[private-file-place] /vendor/etc/media/video_private_configs.json"},
        {"vendor good\n/vendor/etc/video_private_configs.json broken",
         "[private-file-place] /vendor/etc/video_private_configs.json"},
        {"vendor good\n/data/media/video_private_configs.json broken",
         "[private-file-place] /data/media/video_private_configs.json"},
        {"vendor good\n/data/vendor/video_private_configs.json good",
         "[private-file-place] /data/vendor/video_private_configs.json"},
        {"vendor good\n/data/video_private_configs.json good",
         "[private-file-place] /data/video_private_configs.json"},
        {"vendor good\n/data/vendor/mediacodec/video_private_configs.json good",
         "[private-file-place] /data/vendor/mediacodec/video_private_configs.json"},
        {"vendor good\n/vendor/etc/media/video_private_config.json good",
         "[private-file-place] /vendor/etc/media/video_private_config.json"},
        {"vendor good\nprivate built-in 3\n/vendor/etc/media/video_private_configs.json built-in 2",
         "[leading-zero] private:45 "
         "[private-file-place] /vendor/etc/media/video_private_configs.json"},
        {"vendor good\n/data/vendor/media/video_private_config.json good",
         "[private-file-name] /data/vendor/media/video_private_config.json"},
        {"vendor good\n/data/vendor/media/video_private_configs.json/x file",
         "[private-file-type] private"},
        {"vendor good\nprivate pipe", "[private-file-type] private"},
        // Links to nowhere.
        {"vendor good\nodm_x -> nowhere", "[link-broken] odm_x", "--variant default"},
        {"vendor good\nodm_x -> /odm/nowhere\nvendor_x good", "[link-broken] odm_x"},
        {"vendor good\nodm_x -> /odm/nowhere\nvendor_x good", "[link-broken] odm_x",
         "--variant _x"},
        {"vendor good\n/odm/etc/media_x -> /odm/nowhere\nvendor_x good",
         "[link-broken] /odm/etc/media_x"},
        {"vendor good\n/odm/etc/media_x -> media_x", "[link-broken] /odm/etc/media_x"},
        {"vendor good\nprivate -> nowhere", "[link-broken] private"},
        {"vendor good\n/data/vendor/media -> /mnt/media", "[link-broken] /data/vendor/media"},
        // A document of another chip, whole and with a changed value, and single settings.
        {"vendor good\nodm_orvelle built-in 1",
         "[codecs-added] odm_orvelle:9 "
         "[document-of-other-chip] odm_orvelle [leading-zero] odm_orvelle:45"},
        {"vendor good\nodm_brel built-in 2",
         "[document-of-other-chip] odm_brel [leading-zero] odm_brel:45"},
        {"vendor good\nodm_mirt changed 3",
         "[document-of-other-chip] odm_mirt [leading-zero] odm_mirt:45"},
        {"vendor good\nodm_orvelle changed 3",
         "[document-of-other-chip] odm_orvelle [leading-zero] odm_orvelle:45"},
        {"vendor good\nodm_x changed 1",
         "[codecs-added] odm_x:9 [document-of-other-chip] odm_x [leading-zero] odm_x:45"},
        {"vendor built-in 1",
         "[codecs-added] vendor:9 [leading-zero] vendor:45 [setting-of-other-chip] vendor"},
        {R"(odm_brel {"Video": {"Features": {"private_enc_enable_open_gop": true}}})",
         "[setting-of-other-chip] odm_brel:25"},
        {R"(odm_mirt {"Video": {"OptionalCodecs": ["c2.kvx.mvhevc.decoder"]}})",
         "[codecs-added] odm_mirt:12 [setting-of-other-chip] odm_mirt:31"},
        {R"(odm_orvelle {"Video": {"perf-resource-values": {)"
         R"("private_perf_resource_values_video_encode": ["0x40800100", "0xFFF"]}}})",
         "[setting-of-other-chip] odm_orvelle:83"},
        // Debug settings on every phone.
        {R"(vendor {"Video": {"Features": {"debug_private_dec_picture_order": true}}})",
         "[debug-setting] vendor:25"},
        {R"(odm_x {"Video": {"Presets": {"debug_private_outbuf_tx_fence_codecs": 1}}})",
         "[debug-setting] odm_x:24"},
        // Rows with one missing, and a private file with one setting.
        {R"(vendor {"Video": {"NimbraModeBitrateTable": [[0, 10, 1], [10, 20, 2], [30, 40, 3]]}})",
         "[row-gap] vendor:64"},
        {R"(vendor {"Video": {"NimbraModeBitrateTable": [[0, 10, 1], [10, 20, 2], [30, 40, 3], )"
         R"([40, 50, 4]]}})",
         "[row-gap] vendor:64"},
        {"vendor good\nprivate good",
         "[built-in-lost] private [load-without-codecs] vendor [name-repeated] private:37"},
        // One report for what a private file changes: here both levels become 0.
        {R"(vendor {"Video": {"DolbyVision": {"profiles": [5], "max_main_tier_level": 9, )"
         R"("max_high_tier_level": 7}, "OptionalCodecs": ["c2.kvx.avc.decoder", )"
         R"("c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"DolbyVision": {"profiles": [8]}}})",
         "[built-in-not-read] private [levels-reset] private:12"},
        {R"(vendor {"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"DolbyVision": {"profiles": [8]}}})",
         "[built-in-not-read] private [tier-level-absent] private:27"},
        // A private file that cannot change what the system spec document sets.
        {"vendor built-in 3\n"
         R"(private {"Video": {"Features": {"debug_private_dec_picture_order": true}}})",
         "[leading-zero] vendor:45 [name-without-effect] private:60"},
        // A name that another document spells almost the same: reported at the rarer one, else at
        // the later one, unless that has a word and the other one has none.
        {R"(vendor {"Video": {"Presets": {"vendor_zom_max": 1}}})"
         "\n"
         R"(odm_x {"Video": {"Presets": {"vendor_zoom_max": 1}}})"
         "\n"
         R"(odm_y {"Video": {"Presets": {"vendor_zoom_max": 1}}})",
         "[name-varies] vendor:24"},
        {R"(vendor {"Video": {"Features": {"vendor_boost": true}}})"
         "\n"
         R"(odm_x {"Video": {"Features": {"Vendor-Boost": true}}})",
         "[name-varies] vendor:25"},
        {R"(odm_x {"Video": {"Features": {"acme_max_layer": true}}})"
         "\n"
         R"(odm_y {"Video": {"Features": {"acme_layer_max": true}}})",
         "[name-varies] odm_y:25"},
        {R"(odm_x {"Video": {"Features": {"acme_zooom_fast": true}}})"
         "\n"
         R"(odm_y {"Video": {"Presets": {"acme_zoom_fast": 1}}})",
         "[name-varies] odm_x:25"},
        {R"(vendor {"Video": {"Features": {"vendor_boost": true}}})"
         "\n"
         R"(fallback {"Video": {"Features": {"vendor_bost": true}}})",
         "[name-varies] fallback:25"},
        {R"(odm_x {"Video": {"KC2CodecPlugins": ["libacme_tuning.so"]}})"
         "\n"
         R"(odm_y {"Video": {"KC2CodecPlugins": ["libacme_tunning.so"]}})",
         "[name-varies] odm_y:32"},
        {R"(odm_x {"Video": {"OptionalCodecs": ["c2.acme.vvc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(odm_y {"Video": {"OptionalCodecs": ["c2.acmee.vvc.decoder", "c2.kvx.avc.encoder"]}})",
         "[codecs-added] odm_x:12 [codecs-added] odm_y:12 [name-varies] odm_y:31"},
        {R"(vendor {"Video": {"Presets": {"vendor_zoom_limit": 1}, )"
         R"("OptionalCodecs": ["c2.kvx.avc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"Presets": {"vendor_zoom_limits": 2, "vendor_b": 1}}})",
         "[built-in-not-read] private [name-varies] private:24", ""},
        // Names that are nearly right, or nearly a chip's: one mistake more is another name.
        {"vendor good\n/vendor/etc/media/xvideo_system_specs.json good\n"
         "/vendor/etc/media/video_system_specs.json5 good\n"
         "/vendor/etc/media/video_systm_spec.json good\n"
         "/vendor/etc/media/video_systm_spec.jso good\n"
         "/vendor/etc/other -> nowhere",
         "[document-unselectable] /vendor/etc/media/video_system_specs.json5 "
         "[document-unselectable] /vendor/etc/media/video_systm_spec.json "
         "[document-unselectable] /vendor/etc/media/xvideo_system_specs.json"},
        {"odm_Berl good", "[chip-name] odm_Berl"},
        {"odm_Berl good\nprivate built-in 3", "[leading-zero] private:45"},
        {"odm_lbre good", "[chip-name] odm_lbre"},
        {"odm_brol good", ""},
        {"odm_orvele good\nodm_orvxlxe good", "[chip-name] odm_orvele"},
        {"odm_trail good", "[spec-missing] vendor_trxyl [variant-nearby] vendor_trxyl",
         "--variant _trxyl"},
        {"odm_trail good", "[spec-missing] vendor_txxyl", "--variant _txxyl"},
        {"vendor good\nodm_ good", "[spec-missing] vendor.", "--variant ."},
        // Names of another chip prove that most is from there: three, or one and three values.
        {R"(odm_mirt {"Video": {"Features": {"private_set_cpu_affinity": false, )"
         R"("private_enc_enable_open_gop": false, "private_enc_enable_hdr10plus_stats_gen": false}}})",
         "[document-of-other-chip] odm_mirt"},
        {R"(odm_mirt {"Video": {"Features": {"private_set_cpu_affinity": false, )"
         R"("private_enc_enable_open_gop": false}}})",
         "[setting-of-other-chip] odm_mirt:25 [setting-of-other-chip] odm_mirt:60"},
        {R"(odm_mirt {"Video": {"Features": {"private_set_cpu_affinity": false}, "Presets": )"
         R"({"private_enc_hier_b_max_mbs_per_sec": 1958400, "private_enc_hier_b_max_width": 3840, )"
         R"("private_enc_hier_b_max_mbs_per_frame": 32640}}})",
         "[document-of-other-chip] odm_mirt"},
        {R"(odm_mirt {"Video": {"Features": {"private_set_cpu_affinity": false}, "Presets": )"
         R"({"private_enc_hier_b_max_mbs_per_sec": 1958400, "private_enc_hier_b_max_width": 3840}}})",
         "[setting-of-other-chip] odm_mirt:25"},
        {R"(odm_mirt {"Video": {"Features": {"private_set_cpu_affinity": false, "a": true, "b": true, )"
         R"("c": true, "d": true}, "Presets": {"private_enc_hier_b_max_mbs_per_sec": 1958400, )"
         R"("private_enc_hier_b_max_width": 3840, "private_enc_hier_b_max_mbs_per_frame": 32640}}})",
         "[setting-of-other-chip] odm_mirt:25"},
        // Another chip's code in an object has its place among the names, and the object is wrong.
        {R"(odm_orvelle {"Video": {"perf-resource-values": {)"
         R"("private_perf_resource_values_video_encode": {"a": "0x40800100", "b": "0xFFF"}}}})",
         "[object-as-array] odm_orvelle:82"},
        {R"(odm_orvelle {"Video": {"perf-resource-values": {)"
         R"("private_perf_resource_values_video_encode": ["0x40800000", "0x1", "0x40800100"]}}})",
         "[perf-odd-length] odm_orvelle:82 [setting-of-other-chip] odm_orvelle:104"},
        // A limit that is below what the built-in document sets, and a feature that nothing sets.
        {R"(vendor {"Video": {"Presets": {"private_max_slice_size_MB_Mode": 2}}})",
         "[above-other] vendor:58"},
        {R"(vendor {"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"Presets": {"private_cpuaffinity_set": 15, "vendor_a": 1}}})",
         "[built-in-not-read] private [feature-needed] private:51"},
        // A variant whose base no document of the load has.
        {R"(vendor {"Video": {"OptionalCodecs": ["c2.acme.x.decoder.secure"]}})",
         "[codecs-added] vendor:12 [variant-without-base] vendor:31"},
        // The rows of two documents: each is in order.
        {R"(vendor {"Video": {"NimbraModeBitrateTable": [[100, 200, 5]], )"
         R"("OptionalCodecs": ["c2.kvx.avc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"NimbraModeBitrateTable": [[0, 100, 4]], "DolbyVision": )"
         R"({"profiles": [5], "max_main_tier_level": 9, "max_high_tier_level": 9}}})",
         "[built-in-not-read] private"},
        // A load that finds nothing, or less than it should.
        {"vendor -> nowhere\nfallback good", "[spec-missing] fallback"},
        {"odm_x -> nowhere", "[spec-missing] vendor_x"},
        {"vendor good\n/odm/etc/media_x -> nowhere", "[spec-missing] vendor_x", "--variant _x"},
        {"fallback good", "[spec-missing] fallback", "--variant _x"},
        {"/odm/etc/media_codecs.xml file", "[spec-missing] vendor"},
        {"odm_x good", "[spec-missing] vendor_z", "--variant _z"},
};

constexpr TreeRow kCorrectTrees[] = {
        {"vendor good", ""},
        {"vendor good\nodm_x good\nodm_y good", ""},
        {"vendor good\nfallback good", ""},
        // What is worth a note.
        {"odm_x good\nodm_y good", ""},
        {"odm_x good\nodm_y good", "[variant-needed] vendor", ""},
        {"fallback good", "[fallback-alone] fallback"},
        {"fallback good", "[fallback-alone] fallback", ""},
        {"fallback good\nodm_x good", "[fallback-alone] fallback"},
        {"vendor good\nvendor_x good\nodm_x good", "[document-shadowed] vendor_x"},
        // Links that lead to a document.
        {"vendor good\nodm_x -> /vendor/etc/media/video_system_specs.json", ""},
        {"vendor good\n/odm/etc/media_x -> /odm/etc/media_y\nodm_y good", ""},
        {"vendor good\nvendor_x good\n/odm/etc -> /vendor/etc", ""},
        {"vendor good\n/vendor/etc/media_codecs.xml -> nowhere", ""},
        // The chip's own document; a debug setting as it is built in; some values of another
        // chip's.
        {"odm_orvelle built-in 2", "[leading-zero] odm_orvelle:45"},
        {"odm_brel changed 1", "[leading-zero] odm_brel:45"},
        {R"(vendor {"Video": {"Features": {"debug_private_dec_picture_order": false}}})", ""},
        {R"(odm_mirt {"Video": {"Presets": {"private_enc_hier_b_max_mbs_per_sec": 1958400, )"
         R"("private_enc_hier_b_max_mbs_per_frame": 32640, "private_enc_hier_b_max_width": 3840, )"
         R"("private_enc_single_nonref_b_max_mbs_per_sec": 1944000}}})",
         ""},
        // The private file, and what the device copies there.
        {"vendor good\nprivate built-in 3\n/vendor/etc/media/video_private_configs.json built-in 3",
         "[leading-zero] private:45"},
        // A copy of a built-in document, other values beside it, and a phone that is debugged.
        {R"(vendor {"Video": {"Presets": {"private_complexity": 80}}})"
         "\nprivate built-in 3",
         "[leading-zero] private:45"},
        {R"(odm_mirt {"Video": {"Presets": {"private_complexity": 80}}})"
         "\nprivate built-in 2",
         "[built-in-not-read] private [leading-zero] private:45"},
        {R"(vendor {"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"Features": {"debug_private_dec_picture_order": true}}})",
         "[built-in-not-read] private"},
        {R"(vendor {"Video": {"NimbraModeBitrateTable": [[0, 10, 1], [10, 20, 2], )"
         R"([100000, 200000, 3], [200000, 300000, 4]]}})",
         "[rows-apart] vendor:64"},
        // Names of vendors that differ in a word or a number, or that one document has both of.
        {R"(odm_x {"Video": {"Presets": {"vendor_min_zoom": 1, "vendor_cbr_mode": 1, )"
         R"("vendor_enc_zoom": 1, "vendor_row_8": 1, "vendor_gain_limit": 1, "vendor_a": 1}}})"
         "\n"
         R"(odm_y {"Video": {"Presets": {"vendor_mix_zoom": 1, "vendor_vbr_mode": 1, )"
         R"("vendor_dec_zoom": 1, "vendor_row_9": 1, "vendor_gate_limit": 1, "vendor_b": 1}}})",
         ""},
        {R"(odm_x {"Video": {"Presets": {"acme_zoom": 1, "acme_zooms": 1}}})"
         "\n"
         R"(odm_y {"Video": {"Presets": {"acme_zoom": 1}}})"
         "\n"
         R"(odm_z {"Video": {"Presets": {"acme_zooms": 1}}})",
         ""},
        {R"(vendor {"Video": {"OptionalCodecs": ["c2.kvx.avc.decoder", "c2.kvx.avc.encoder"]}})"
         "\n"
         R"(private {"Video": {"Presets": {"debug_private_outbuf_tx_fence_codecs": 1}}})",
         "[built-in-not-read] private"},
        // The rarer name is a word, so it is the right one.
        {R"(odm_x {"Video": {"Features": {"acme_zoom_fast": true}}})"
         "\n"
         R"(odm_y {"Video": {"Features": {"acme_zooom_fast": true}}})"
         "\n"
         R"(odm_z {"Video": {"Features": {"acme_zooom_fast": true}}})",
         ""},
        // Leftovers beside the documents.
        {"vendor good\n/vendor/etc/media/video_system_specs.json~ broken\n"
         "/vendor/etc/media/#video_system_specs.json# broken\n"
         "/vendor/etc/media/.video_system_specs.json.swp broken\n"
         "/vendor/etc/media/video_system_specs.json.1 broken\n"
         "/vendor/etc/media/video_system_specs.json.bak broken\n"
         "/vendor/etc/media/video_system_specs.json.orig broken\n"
         "/vendor/etc/media/.#video_system_specs.json -> someone@host",
         ""},
        {"vendor good\n/data/vendor/media/video_private_configs.json~ broken\n"
         "/data/vendor/media/video_private_configs.json.1 broken",
         ""},
};

template <size_t count>
void expectFound(const TreeRow (&rows)[count]) {
    for (const TreeRow& row : rows) {
        const ScratchDirectory tree;
        std::string output;
        EXPECT_EQ(row.found, foundIn(tree, row, &output)) << row.files << "\n" << output;
    }
}

TEST(TreesTest, EachMistakeIsReportedAtItsFile) {
    expectFound(kWrongTrees);
}

// A document alone is what its name says: a private file may lack what another document sets.
TEST(TreesTest, ADocumentAloneIsWhatItsNameSays) {
    constexpr char kOn[] = R"("Features": {"debug_private_dec_picture_order": true})";
    constexpr char kSpec[] = "video_system_specs.json";
    constexpr char kPrivate[] = "video_private_configs.json";
    constexpr char kOther[] = "other.json";
    const struct {
        const char* name;
        std::string video;
        std::string found;
    } rows[] = {
            {kSpec, kOn, "debug-setting"},
            {kPrivate, kOn, ""},
            {kOther, kOn, ""},
            {"my_video_system_specs.json", kOn, ""},
            {kSpec, R"("Features": {"debug_private_dec_picture_order": "yes"})",
             "feature-not-boolean"},
            {kSpec, R"("Presets": {"debug_vendor": 0})", ""},
            {kSpec, R"("Presets": {"debug_vendor": 1})", "debug-setting"},
            {kPrivate, R"("Presets": {"private_cpuaffinity_set": 15})", ""},
            {kOther, R"("Presets": {"private_cpuaffinity_set": 15})", "feature-needed"},
            {kPrivate,
             R"("Features": {"private_set_cpu_affinity": false}, )"
             R"("Presets": {"private_cpuaffinity_set": 15})",
             "feature-needed"},
            {kPrivate, R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder.secure"]})", ""},
            {kOther, R"("codecs-available": {"decoders": ["c2.kvx.avc.decoder"]})",
             "codecs-of-one-kind"},
    };
    const ScratchDirectory directory;
    const std::string settings = directory.write("settings.json", R"({"settings": [
            {"name": "debug_vendor", "section": "Presets", "type": "integer", "meaning": "m"}]})");
    for (const auto& row : rows) {
        const std::string path = directory.write(row.name, "{\"Video\": {" + row.video + "}}");
        std::string found;
        const std::string output =
                run("check --format json --settings " + settings + " " + path).output;
        const Json::Value report = parsed(output);
        for (const Json::Value& finding : report["findings"]) {
            found += finding["id"].asString();
        }
        EXPECT_EQ(row.found, found) << row.name << output;
    }
}

TEST(TreesTest, ACorrectTreeHasNothingAboveANote) {
    expectFound(kCorrectTrees);
    for (const TreeRow& row : kCorrectTrees) {
        const ScratchDirectory tree;
        std::string output;
        foundIn(tree, row, &output);
        const Json::Value report = parsed(output);
        for (const Json::Value& finding : report["findings"]) {
            EXPECT_EQ("note", finding["severity"].asString()) << row.files << "\n" << output;
        }
    }
}

}  // namespace

}  // namespace kc2::test
