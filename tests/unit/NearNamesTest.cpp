// Which known name a misspelt one means: how many of each kind of mistake are found, and that names
// of vendors are left alone.

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <json/value.h>

#include <cctype>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "RunTool.h"
#include "base/Text.h"
#include "catalogue/KnownSettings.h"

namespace kc2::test {

namespace {

using tool::KnownSettings;
using tool::NearNames;

const KnownSettings& knownNames() {
    static const KnownSettings known(*tool::loadCatalogue({}));
    return known;
}

// A known name, and where it belongs.
struct KnownName {
    std::string name;
    std::string group;
    const NearNames* among;
    char separator;
};

std::vector<KnownName> allKnownNames() {
    std::vector<KnownName> names;
    for (const tool::Setting& one : knownNames().catalogue.settings()) {
        names.push_back({one.name, one.section, &knownNames().settings, '_'});
    }
    for (const tool::CodecComponent& one : knownNames().catalogue.components()) {
        names.push_back({one.name, one.list, &knownNames().components, '.'});
    }
    return names;
}

// --- The generator: each kind of mistake, at each place of a name -------------------------------

using Names = std::vector<std::string>;

std::vector<std::string> partsOf(const KnownName& known) {
    std::vector<std::string> words(1);
    for (const char c : known.name) {
        c == known.separator ? words.emplace_back() : words.back() += c;
    }
    return words;
}

std::string nameFrom(const std::vector<std::string>& words, std::string_view separator) {
    return tool::joined(words, separator);
}

// Calls edit(name, place) for each letter or digit of the name.
template <typename Edit>
Names eachLetter(const KnownName& known, Edit edit) {
    Names names;
    for (size_t at = 0; at < known.name.size(); ++at) {
        if (std::isalnum(static_cast<unsigned char>(known.name[at])) != 0) {
            names.push_back(known.name);
            edit(&names.back(), at);
        }
    }
    return names;
}

// Any letter; the same one for the same place of a name.
char letterFor(const std::string& name, size_t at) {
    uint32_t hash = 17;
    for (const char c : name) {
        hash = (hash * 31 + static_cast<unsigned char>(c)) % 65521;
    }
    const char letter = static_cast<char>('a' + (hash + at * 7) % 26);
    return letter == name[at] ? (letter == 'z' ? 'a' : static_cast<char>(letter + 1)) : letter;
}

Names deleted(const KnownName& known) {
    return eachLetter(known, [](std::string* name, size_t at) { name->erase(at, 1); });
}

Names doubled(const KnownName& known) {
    return eachLetter(known,
                      [](std::string* name, size_t at) { name->insert(at, 1, (*name)[at]); });
}

Names replaced(const KnownName& known) {
    return eachLetter(known,
                      [](std::string* name, size_t at) { (*name)[at] = letterFor(*name, at); });
}

Names inserted(const KnownName& known) {
    return eachLetter(
            known, [](std::string* name, size_t at) { name->insert(at, 1, letterFor(*name, at)); });
}

Names exchanged(const KnownName& known) {
    return eachLetter(known, [](std::string* name, size_t at) {
        if (at + 1 < name->size()) {
            std::swap((*name)[at], (*name)[at + 1]);
        }
    });
}

std::string capitalised(std::string word) {
    word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
    return word;
}

Names otherCase(const KnownName& known) {
    Names names = {capitalised(known.name)};
    names.emplace_back();
    for (const char c : known.name) {
        names.back() += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    std::vector<std::string> words = partsOf(known);
    for (std::string& word : words) {
        word = capitalised(word);
        names.push_back(nameFrom(words, std::string(1, known.separator)));
    }
    return names;
}

Names otherSeparators(const KnownName& known) {
    std::vector<std::string> words = partsOf(known);
    Names names;
    for (const char* const separator : {"-", ".", " ", "/", "", "__", ":", "_"}) {
        names.push_back(nameFrom(words, separator));
    }
    for (size_t i = 1; i < words.size(); ++i) {  // One is missing, or another one.
        for (const char* const separator : {"", "-"}) {
            std::vector<std::string> joined = words;
            joined[i - 1] += separator + joined[i];
            joined.erase(joined.begin() + static_cast<ptrdiff_t>(i));
            names.push_back(nameFrom(joined, std::string(1, known.separator)));
        }
    }
    for (size_t i = 1; i < words.size(); ++i) {
        words[i] = capitalised(words[i]);
    }
    names.push_back(nameFrom(words, ""));
    return names;
}

// With one word replaced by what `change` returns for it; an empty one is left out.
Names eachWord(const KnownName& known, const std::function<Names(const std::string&)>& change) {
    const std::vector<std::string> words = partsOf(known);
    Names names;
    for (size_t i = 0; i < words.size(); ++i) {
        for (const std::string& instead : change(words[i])) {
            std::vector<std::string> changed = words;
            changed[i] = instead;
            if (instead.empty()) {
                changed.erase(changed.begin() + static_cast<ptrdiff_t>(i));
            }
            names.push_back(nameFrom(changed, std::string(1, known.separator)));
        }
    }
    return names;
}

Names pluralAdded(const KnownName& known) {
    return eachWord(known, [](const std::string& word) {
        return word.size() < 3 || word.back() == 's' ? Names() : Names{word + "s"};
    });
}

Names pluralRemoved(const KnownName& known) {
    return eachWord(known, [](const std::string& word) {
        return word.size() < 3 || word.back() != 's' || word[word.size() - 2] == 's'
                       ? Names()
                       : Names{word.substr(0, word.size() - 1)};
    });
}

Names otherWords(const KnownName& known) {
    static const std::map<std::string, Names> words = {
            {"resource", {"res", "rsrc"}},
            {"values", {"vals", "val"}},
            {"count", {"cnt"}},
            {"max", {"maximum"}},
            {"min", {"minimum"}},
            {"enc", {"encoder", "encode", "encoding"}},
            {"dec", {"decoder", "decode", "decoding"}},
            {"encode", {"enc", "encoder", "encoding"}},
            {"decode", {"dec", "decoder", "decoding"}},
            {"encoder", {"enc", "encode"}},
            {"decoder", {"dec", "decode"}},
            {"perf", {"performance"}},
            {"buffer", {"buf"}},
            {"buffers", {"bufs"}},
            {"output", {"out"}},
            {"input", {"in"}},
            {"outbuf", {"output_buffer", "out_buf", "outbuffer"}},
            {"frame", {"frm"}},
            {"sec", {"second"}},
            {"video", {"vid"}},
            {"extension", {"ext"}},
            {"version", {"ver"}},
            {"temporal", {"temp", "tmp"}},
            {"layer", {"lyr"}},
            {"session", {"sess"}},
            {"concurrent", {"conc"}},
            {"supported", {"support", "sup"}},
            {"private", {"priv"}},
            {"debug", {"dbg"}},
            {"enable", {"en", "enabled"}},
            {"rotation", {"rot", "rotate"}},
            {"linear", {"lin"}},
            {"color", {"colour", "col"}},
            {"format", {"fmt"}},
            {"default", {"def", "dflt"}},
            {"hier", {"hierarchical"}},
            {"nonref", {"nonreference", "non_ref"}},
            {"spatial", {"spat"}},
            {"mbs", {"macroblocks"}},
            {"render", {"rendering"}},
            {"alloc", {"allocation", "allocate"}},
            {"affinity", {"aff"}},
            {"complexity", {"complex"}},
            {"size", {"sz"}},
            {"Mode", {"md"}},
            {"schedule", {"sched"}},
            {"duration", {"dur"}},
            {"preprocess", {"preproc", "preprocessing"}},
            {"downscale", {"downscaling"}},
            {"factor", {"fact"}},
            {"metadata", {"meta"}},
            {"transcode", {"transcoding"}},
            {"stat", {"stats", "statistics"}},
            {"gen", {"generation"}},
            {"picture", {"pic"}},
            {"protected", {"prot"}},
            {"control", {"ctrl"}},
            {"hw", {"hardware"}},
            {"bitrate", {"bit_rate"}},
            {"intra", {}},
            {"low_latency", {"lowlatency", "low-latency", "ll", "lowlat"}},
            {"secure", {"sec", "secured"}},
            {"avc", {"h264", "x264", "avc1", "mpeg4avc", "h.264"}},
            {"hevc", {"h265", "x265", "hvc1", "hev1", "mpeg4hevc"}},
            {"av1", {"av01"}},
            {"vp9", {"vp09"}},
            {"mvhevc", {"mv_hevc", "mv-hevc", "mvh265"}},
    };
    return eachWord(known, [](const std::string& word) {
        const auto found = words.find(word);
        return found != words.end() ? found->second : Names();
    });
}

Names wordLeftOut(const KnownName& known) {
    return eachWord(known, [](const std::string&) { return Names{""}; });
}

Names wordsSwapped(const KnownName& known) {
    Names names;
    for (size_t i = 1; i < partsOf(known).size(); ++i) {
        std::vector<std::string> words = partsOf(known);
        std::swap(words[i - 1], words[i]);
        names.push_back(nameFrom(words, std::string(1, known.separator)));
    }
    return names;
}

Names otherPrefix(const KnownName& known) {
    const size_t at = known.name.find("private_");
    if (at == std::string::npos) {
        return {};
    }
    Names names;
    for (const char* const instead :
         {"privat_", "priavte_", "pirvate_", "prviate_", "privte_", "private", "Private_",
          "privates_", "prvate_", "pri_", "prvt_", "debug_private_", "debug_", ""}) {
        names.push_back(std::string(known.name).replace(0, at + 8, instead));
    }
    // With one prefix only, and a single word without prefix, any name is free.
    if (at == 0) {
        names.erase(names.end() - 2);
    }
    if (partsOf(known).size() < 3) {
        names.pop_back();
    }
    return names;
}

// --- How many are found -------------------------------------------------------------------------

struct Kind {
    const char* name;
    Names (*make)(const KnownName& known);
    double least;  // Of 100.
};

constexpr Kind kKinds[] = {
        {"letter deleted", deleted, 97},
        {"letter doubled", doubled, 97},
        {"letters exchanged", exchanged, 97},
        {"letter replaced", replaced, 97},
        {"letter inserted", inserted, 97},
        {"other case", otherCase, 100},
        {"other separators", otherSeparators, 97},
        {"plural added", pluralAdded, 97},
        {"plural removed", pluralRemoved, 97},
        {"word shortened or longer", otherWords, 97},
        {"word left out", wordLeftOut, 90},
        {"words swapped", wordsSwapped, 97},
        {"prefix", otherPrefix, 97},
};

struct Misspelt {
    KnownName known;
    std::string name;
};

std::vector<Misspelt> misspeltNames(const Kind& kind) {
    std::vector<Misspelt> all;
    for (const KnownName& known : allKnownNames()) {
        for (std::string& name : kind.make(known)) {
            const NearNames::Match match = known.among->find(name, known.group);
            // A fix is written without a question.
            EXPECT_TRUE(!match.isCertain || match.isExact || match.entry->name == known.name)
                    << name << ": " << match.entry->name;
            if (!match.isExact) {  // Otherwise it is the same name, or another one.
                all.push_back({known, std::move(name)});
            }
        }
    }
    return all;
}

// What `check` reports for each of the names, in one document.
std::map<std::string, std::string> checkMessages(const std::vector<Misspelt>& all) {
    const ScratchDirectory directory;
    Json::Value document;
    Json::Value& video = document["Video"];
    for (const Misspelt& one : all) {
        if (one.known.among == &knownNames().settings) {
            video[one.known.group][one.name] = 1;
        } else {
            video["codecs-available"][one.known.group].append(one.name);
        }
    }
    const std::string path = directory.write("misspelt.json", document.toStyledString());
    std::map<std::string, std::string> messages;
    const Json::Value report = parsed(run("check --format json " + path).output);
    for (const Json::Value& finding : report["findings"]) {
        const std::string message = finding["message"].asString();
        const size_t limit = message.find("\" is not a known ");
        if (limit != std::string::npos) {
            messages[message.substr(1, limit - 1)] = message.substr(limit);
        }
    }
    return messages;
}

// Whether the name is meant by a message; one of `ends` follows it.
bool isSuggested(const std::string& message, const std::string& name, const std::string& ends) {
    const size_t start = message.find("Did you mean ");
    const size_t at = start == std::string::npos ? start : message.find(name, start);
    return at != std::string::npos && at + name.size() < message.size() &&
           ends.find(message[at + name.size()]) != std::string::npos;
}

// How many of the names of a kind the tool finds.
struct Found {
    std::string kind;
    size_t made = 0;
    size_t byCheck = 0;
    size_t asked = 0;
    size_t byExplain = 0;
    Names missed = {};
    Names notExplained = {};

    double rate() const { return 100.0 * static_cast<double>(byCheck) / static_cast<double>(made); }
    std::string row() const {
        return fmt::format("{:26} {:5} of {:5}  {:5.1f}   explain {:3} of {:3}\n", kind, byCheck,
                           made, rate(), byExplain, asked);
    }
    void add(const Found& more) {
        made += more.made;
        byCheck += more.byCheck;
        asked += more.asked;
        byExplain += more.byExplain;
        notExplained.insert(notExplained.end(), more.notExplained.begin(), more.notExplained.end());
    }
};

Found countFound(const Kind& kind) {
    constexpr size_t kAskedStep = 61;  // `explain` is run for each of these only.
    const std::vector<Misspelt> all = misspeltNames(kind);
    const std::map<std::string, std::string> messages = checkMessages(all);
    Found found = {.kind = kind.name};
    for (const auto& [known, name] : all) {
        const auto message = messages.find(name);
        const bool isFound =
                message != messages.end() && isSuggested(message->second, known.name, "\"");
        if (!isFound) {
            found.missed.push_back(fmt::format("{} ({})", name, known.name));
        }
        found.byCheck += isFound ? 1 : 0;
        if (found.made % kAskedStep == 0) {
            const std::string output = run("explain '" + name + "'").output;
            const bool isExplained = isSuggested(output, known.name, " ?");
            found.byExplain += isExplained ? 1 : 0;
            if (!isExplained) {
                found.notExplained.push_back(output);
            }
            ++found.asked;
        }
        ++found.made;
    }
    return found;
}

// How each misspelt name is read, counted: a rule that changes slightly changes some of them.
TEST(NearNamesTest, AsManyAsBeforeAreCertain) {
    std::string text;
    for (const Kind& kind : kKinds) {
        size_t meant = 0, other = 0, certain = 0, none = 0;
        const std::vector<Misspelt> all = misspeltNames(kind);
        for (const auto& [known, name] : all) {
            const NearNames::Match match = known.among->find(name, known.group);
            none += match.entry == nullptr ? 1 : 0;
            meant += match.entry != nullptr && match.entry->name == known.name ? 1 : 0;
            other += match.other != nullptr ? 1 : 0;
            certain += match.isCertain ? 1 : 0;
        }
        text += fmt::format("{}: {} names, {} meant, {} none, {} of two, {} certain\n", kind.name,
                            all.size(), meant, none, other, certain);
    }
    expectFile("near-counts.txt", text);
}

TEST(NearNamesTest, MisspeltNamesAreFoundKindByKind) {
    Found all = {.kind = "all"};
    std::string rates;
    for (const Kind& kind : kKinds) {
        const Found found = countFound(kind);
        EXPECT_LE(kind.least, found.rate()) << kind.name << "\n"
                                            << tool::joined(found.missed, "\n");
        rates += found.row();
        all.add(found);
    }
    rates += all.row();
    RecordProperty("rates", rates);  // --gtest_output=xml:FILE shows them.
    EXPECT_LE(7400U, all.made);
    EXPECT_LE(97 * all.made, 100 * all.byCheck) << rates;
    EXPECT_LE(100U, all.asked);
    EXPECT_LE(97 * all.asked, 100 * all.byExplain) << tool::joined(all.notExplained, "");
}

// --- Each rule ----------------------------------------------------------------------------------

std::string describe(const NearNames::Match& match) {
    return match.entry == nullptr
                   ? "none"
                   : fmt::format("{}/{}{}{}", match.entry->group, match.entry->name,
                                 match.other != nullptr ? " or " + match.other->name : "",
                                 match.isExact     ? ", exact"
                                 : match.isCertain ? ", certain"
                                                   : "");
}

std::string nameOf(const NearNames::Entry* entry) {
    return entry != nullptr ? entry->name : "none";
}

// The file has sets of known names, and how others are read among them.
TEST(NearNamesTest, EachRuleIsAsWritten) {
    std::optional<NearNames> names;
    tool::NameKind kind = tool::NameKind::Setting;
    std::string text;
    const std::string rules = readFile(KC2_SOURCE_DIR "/tests/unit/check/expected/near-rules.txt");
    for (const std::string_view line : tool::split(rules, '\n')) {
        const std::string_view asked = line.substr(0, line.find(" = "));
        const std::vector<std::string_view> words = tool::split(asked, ' ');
        text.append(asked);
        if (words[0] == "known") {
            kind = words[1] == "settings" ? tool::NameKind::Setting : tool::NameKind::Component;
            names.emplace(kind);
            for (size_t i = 2; i < words.size(); ++i) {
                const std::vector<std::string_view> parts = tool::split(words[i], '/');
                names->add({std::string(parts[1]), std::string(parts[0])});
            }
        } else if (words[0] == "find") {
            const size_t at = asked.find(' ', 5) + 1;
            text += " = " + describe(names->find(asked.substr(at), words[1]));
        } else if (words[0] == "variation") {
            text += fmt::format(" = {}", names->isVariation(words[1], words[2]));
        } else if (words[0] == "closest") {
            text += " = " + nameOf(names->closest(words[1]));
        } else if (words[0] == "words") {
            text += " = " + nameOf(names->withWordsOf(words[1]));
        } else if (words[0] == "read") {
            text += " = " + tool::readAs(asked.substr(5));
        } else if (words[0] == "form") {
            text += " = " + std::string(tool::commonForm(kind, words[1]));
        } else {
            EXPECT_EQ("#", words[0]);
        }
        text += '\n';
    }
    expectFile("near-rules.txt", text);
}

// --- What is left alone -------------------------------------------------------------------------

// Settings that a vendor may have, some of them a letter or a word from a known one.
constexpr const char* kVendorNames[] = {"vendor_dec_low_latency",
                                        "vendor_enc_low_latency",
                                        "vendor_enc_max_bitrate",
                                        "vendor_enc_min_bitrate",
                                        "vendor_enc_hdr10_enable",
                                        "vendor_dec_hdr10_enable",
                                        "vendor_hdr_vivid_enable",
                                        "vendor_enc_roi_enable",
                                        "vendor_enc_roi_max_regions",
                                        "vendor_enc_ltr_count",
                                        "vendor_enc_ltr_enable",
                                        "vendor_enc_b_frames",
                                        "vendor_enc_max_b_frames",
                                        "vendor_enc_rc_mode",
                                        "vendor_enc_vbv_size",
                                        "vendor_enc_gop_size",
                                        "vendor_enc_intra_refresh",
                                        "vendor_enc_intra_refresh_period",
                                        "vendor_enc_slice_mode",
                                        "vendor_enc_qp_min",
                                        "vendor_enc_qp_max",
                                        "vendor_enc_qp_range_enable",
                                        "vendor_dec_thumbnail_mode",
                                        "vendor_dec_skip_frames",
                                        "vendor_dec_error_concealment",
                                        "vendor_dec_output_order",
                                        "vendor_dec_ubwc_enable",
                                        "vendor_enc_ubwc_enable",
                                        "vendor_dec_batch_size",
                                        "vendor_enc_batch_size",
                                        "vendor_secure_heap_size",
                                        "vendor_secure_max_sessions",
                                        "vendor_dsp_offload_enable",
                                        "vendor_gpu_rotation",
                                        "vendor_npu_denoise_enable",
                                        "vendor_npu_super_resolution",
                                        "vendor_film_grain_enable",
                                        "vendor_film_grain_strength",
                                        "vendor_audio_sync_offset",
                                        "vendor_av_sync_window",
                                        "vendor_thermal_throttle_level",
                                        "vendor_thermal_max_fps",
                                        "vendor_power_save_mode",
                                        "vendor_boost_duration",
                                        "vendor_perf_lock_timeout",
                                        "vendor_cpu_boost_enable",
                                        "vendor_ddr_vote_enable",
                                        "vendor_bus_bandwidth_kbps",
                                        "vendor_heap_id",
                                        "vendor_ion_cached",
                                        "vendor_dmabuf_enable",
                                        "vendor_buffer_pool_size",
                                        "vendor_input_buffer_count",
                                        "vendor_output_buffer_count",
                                        "vendor_extra_input_buffers",
                                        "vendor_max_instances",
                                        "vendor_max_decoders",
                                        "vendor_max_encoders",
                                        "vendor_max_4k_sessions",
                                        "vendor_8k_enable",
                                        "vendor_8k_max_fps",
                                        "vendor_slow_motion_enable",
                                        "vendor_slow_motion_factor",
                                        "vendor_time_lapse_enable",
                                        "vendor_time_lapse_rate",
                                        "vendor_zoom_enable",
                                        "vendor_zoom_max",
                                        "vendor_crop_enable",
                                        "vendor_mirror_enable",
                                        "vendor_watermark_enable",
                                        "vendor_watermark_alpha",
                                        "vendor_log_level",
                                        "vendor_dump_enable",
                                        "vendor_dump_path_index",
                                        "vendor_trace_enable",
                                        "vendor_debug_overlay",
                                        "vendor_stats_interval",
                                        "vendor_test_pattern",
                                        "vendor_drm_level",
                                        "vendor_drm_secure_only",
                                        "vendor_widevine_level",
                                        "vendor_hdcp_required",
                                        "vendor_tunnel_mode",
                                        "vendor_tunnel_peek",
                                        "vendor_display_rate_match",
                                        "vendor_vrr_enable",
                                        "vendor_color_range",
                                        "vendor_color_primaries",
                                        "vendor_tone_mapping_enable",
                                        "vendor_dv_profile_mask",
                                        "vendor_mvc_enable",
                                        "private_enc_max_bitrate",
                                        "private_dec_max_width",
                                        "private_dec_max_height",
                                        "private_enc_max_height",
                                        "private_enc_min_bitrate",
                                        "private_enc_min_width",
                                        "private_dec_min_width",
                                        "private_dec_low_latency",
                                        "private_enc_low_latency",
                                        "private_dec_max_fps",
                                        "private_enc_max_fps",
                                        "private_dec_max_sessions",
                                        "private_enc_max_sessions",
                                        "private_max_sessions",
                                        "private_dec_hdr10_enable",
                                        "private_enc_roi_enable",
                                        "private_enc_ltr_max_count",
                                        "private_enc_ltr_enable",
                                        "private_enc_intra_refresh_enable",
                                        "private_enc_intra_refresh_period",
                                        "private_enc_slice_mode",
                                        "private_enc_gop_size",
                                        "private_enc_rc_mode",
                                        "private_enc_vbv_size",
                                        "private_enc_qp_min",
                                        "private_enc_qp_max",
                                        "private_dec_thumbnail_enable",
                                        "private_dec_skip_nonref",
                                        "private_dec_error_conceal",
                                        "private_dec_ubwc_enable",
                                        "private_enc_ubwc_enable",
                                        "private_dec_batch_mode",
                                        "private_enc_batch_mode",
                                        "private_secure_heap_size",
                                        "private_dsp_offload",
                                        "private_npu_enable",
                                        "private_film_grain_enable",
                                        "private_thermal_level",
                                        "private_power_save_enable",
                                        "private_perf_boost_duration",
                                        "private_perf_lock_enable",
                                        "private_ddr_vote_enable",
                                        "private_heap_mask",
                                        "private_log_mask",
                                        "private_dump_enable",
                                        "private_trace_enable",
                                        "private_tunnel_enable",
                                        "private_vrr_enable",
                                        "private_color_range",
                                        "private_tone_mapping",
                                        "private_dv_enable",
                                        "private_8k_enable",
                                        "private_slow_motion_enable",
                                        "private_zoom_max",
                                        "private_crop_enable",
                                        "private_watermark_enable",
                                        "private_enc_hier_b_min_width",
                                        "private_enc_hier_p_max_width",
                                        "private_enc_hier_b_max_height",
                                        "private_enc_hier_p_max_mbs_per_sec",
                                        "private_enc_hier_p_max_mbs_per_frame",
                                        "private_enc_all_inter_enable",
                                        "private_enc_all_inter_bitrate",
                                        "private_dec_cvp_enable",
                                        "private_enc_cvp_disable",
                                        "private_enc_gpu_rotation",
                                        "private_enc_dsp_rotation",
                                        "private_enc_c3d_rotation",
                                        "private_enc_vpss_crop",
                                        "private_enc_vpss_scale",
                                        "private_enc_vpss_clip",
                                        "private_hw_protected_heap",
                                        "private_set_gpu_affinity",
                                        "private_enc_enable_closed_gop",
                                        "private_enc_enable_hdr10_stats_gen",
                                        "private_enc_enable_hdr_vivid_stats_gen",
                                        "private_dec_linear_depth_format",
                                        "private_dec_tiled_color_format",
                                        "private_enc_depth_default_bitrate_value",
                                        "private_enc_depth_max_temporal_mbs",
                                        "private_min_supported_render_rate",
                                        "private_max_supported_decode_rate",
                                        "private_pipeline_extra_input_buffers",
                                        "private_max_retry_alloc_input_timeout",
                                        "private_max_retry_alloc_output_count",
                                        "private_gpuaffinity_set",
                                        "private_sharpnessFactor",
                                        "private_max_slice_size_KB_Mode",
                                        "private_max_tile_size_MB_Mode",
                                        "private_max_slice_size_bytes",
                                        "private_fps_event_log_duration",
                                        "private_inbuf_fence",
                                        "private_outbuf_pool",
                                        "private_outbuf_fec",
                                        "private_vp_extension_version",
                                        "private_vt_extension_mask",
                                        "private_preprocess_max_upscale_factor",
                                        "private_postprocess_max_downscale_factor",
                                        "private_preprocess_min_downscale_factor",
                                        "private_enc_hier_p_min_temporal_layer_count",
                                        "private_enc_hier_p_max_spatial_layer_count",
                                        "private_enc_max_concurrent_roi_session_count",
                                        "private_dec_max_concurrent_cvp_session_count",
                                        "private_transcode_audio_stat",
                                        "private_transcode_metadata_mask",
                                        "debug_private_outbuf_rx_fence_codecs",
                                        "debug_private_dec_picture_type",
                                        "debug_private_enc_dump",
                                        "debug_private_dec_dump",
                                        "debug_private_log_level",
                                        "debug_private_enc_picture_order",
                                        "private_perf_resource_values_audio_decode",
                                        "private_perf_resource_values_heif_encode",
                                        "private_perf_resource_values_image_encode",
                                        "private_perf_resource_values_video_transcode",
                                        "private_perf_resource_values_camera_encode",
                                        "private_perf_resource_values_jpeg_decode",
                                        "private_perf_test_disable",
                                        "private_perf_trace_enable",
                                        "private_api_same_output_buffer_support",
                                        "private_complexity_2",
                                        "private_complexity_high",
                                        "private_quality",
                                        "private_capacity",
                                        "acme.zoom.enable",
                                        "acme.zoom.level",
                                        "com.acme.codec.boost",
                                        "AcmeFastStart",
                                        "acme-night-mode",
                                        "low_latency_enable",
                                        "frame_drop_threshold",
                                        "decoder_pool_size",
                                        "encoder_warmup_ms",
                                        "enable",
                                        "max_width",
                                        "complexity",
                                        "bitrate_cap",
                                        "mbs_per_sec",
                                        "max_mbs",
                                        "render_rate_cap",
                                        "timeout_ms",
                                        "slice_count",
                                        "fence_mode"};

constexpr const char* kVendorComponents[] = {
        "c2.kvx.vvc.decoder",          "c2.kvx.mpeg2.decoder",         "c2.kvx.mpeg4.encoder",
        "c2.kvx.vp8.decoder",          "c2.kvx.vp8.encoder",           "c2.kvx.h263.decoder",
        "c2.kvx.h266.decoder",         "c2.kvx.av2.decoder",           "c2.kvx.vc1.decoder",
        "c2.kvx.avs3.decoder",         "c2.kvx.avs2.decoder.secure",   "c2.kvx.evc.decoder",
        "c2.kvx.lcevc.decoder",        "c2.kvx.heif.encoder",          "c2.kvx.mjpeg.decoder",
        "c2.kvx.jpeg.encoder",         "c2.kvx.aac.decoder",           "c2.kvx.opus.decoder",
        "c2.kvx.flac.decoder",         "c2.kvx.avc.encoder.hdr10",     "c2.kvx.hevc.encoder.hq",
        "c2.kvx.hevc.encoder.roi",     "c2.kvx.avc.decoder.tunneled",  "c2.kvx.avc.encoder.screen",
        "c2.acme.avc.decoder",         "c2.acme.hevc.decoder.secure",  "c2.acme.av1.encoder",
        "c2.other.avc.encoder",        "c2.kvx.dolby.decoder",         "c2.kvx.prores.decoder",
        "c2.kvx.hevc.decoder.batched", "c2.kvx.avc.decoder.thumbnail", "c2.kvx.vp9.decoder.hdr"};

TEST(NearNamesTest, NamesOfVendorsAreLeftAlone) {
    EXPECT_LE(200U, std::size(kVendorNames));
    for (const char* const name : kVendorNames) {
        for (const char* const section : {"Features", "Presets", "perf-resource-values"}) {
            const NearNames::Match match = knownNames().settings.find(name, section);
            EXPECT_EQ(nullptr, match.entry) << name << ": " << match.entry->name;
        }
    }
    for (const char* const name : kVendorComponents) {
        const NearNames::Match match = knownNames().components.find(name, "decoders");
        EXPECT_EQ(nullptr, match.entry) << name << ": " << match.entry->name;
    }
}

}  // namespace

}  // namespace kc2::test
