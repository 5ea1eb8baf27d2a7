// The complete content of the built-in documents, value by value.

#include <gtest/gtest.h>

#include "Device.h"

namespace kc2::test {

namespace {

constexpr const char* kVariants[] = {"_brel", "_orvelle", "_other"};  // Documents 1, 2 and 3.

// The content of the documents, as contentOf() prints it: one value where all have the same, and
// "-" for what one of them lacks.
struct Row {
    const char* name;
    const char* values[3];

    std::string valueIn(int document) const {
        return values[1] == nullptr ? values[0] : values[document];
    }
};

constexpr Row kFeatures[] = {
        {"debug_private_dec_picture_order", {"0"}},
        {"private_api_same_input_buffer_support", {"1"}},
        {"private_enc_all_intra_enable", {"0"}},
        {"private_enc_c2d_rotation", {"0"}},
        {"private_enc_cvp_enable", {"1"}},
        {"private_enc_enable_hdr10plus_stats_gen", {"-", "0", "0"}},
        {"private_enc_enable_open_gop", {"-", "0", "0"}},
        {"private_enc_vpss_flip", {"1"}},
        {"private_hw_protected_carveout", {"0"}},
        {"private_perf_control_enable", {"1"}},
        {"private_perf_test_enable", {"1"}},
        {"private_set_cpu_affinity", {"-", "0", "0"}},
};

constexpr Row kPresets[] = {
        {"debug_private_outbuf_tx_fence_codecs", {"0"}},
        {"private_complexity", {"50"}},
        {"private_cpuaffinity_set", {"0"}},
        {"private_dec_linear_color_format", {"0"}},
        {"private_enc_all_intra_bitrate", {"0"}},
        {"private_enc_depth_default_qp_value", {"1052688"}},
        {"private_enc_depth_max_spatial_mbs", {"489600"}},
        {"private_enc_hier_b_max_mbs_per_frame", {"8160", "32640", "32640"}},
        {"private_enc_hier_b_max_mbs_per_sec", {"489600", "1958400", "1958400"}},
        {"private_enc_hier_b_max_temporal_layer_count", {"4"}},
        {"private_enc_hier_b_max_width", {"1920", "3840", "3840"}},
        {"private_enc_hier_p_max_temporal_layer_count", {"6"}},
        {"private_enc_max_concurrent_cvp_session_count", {"1"}},
        {"private_enc_single_nonref_b_max_mbs_per_frame", {"32400"}},
        {"private_enc_single_nonref_b_max_mbs_per_sec", {"972000", "1944000", "1944000"}},
        {"private_enc_single_nonref_b_max_width", {"3840"}},
        {"private_fps_event_schedule_duration", {"500"}},
        {"private_max_retry_alloc_output_timeout", {"10000"}},
        {"private_max_slice_size_MB_Mode", {"34560"}},
        {"private_max_supported_render_rate", {"120"}},
        {"private_min_slice_size_MB_Mode", {"3"}},
        {"private_outbuf_fence", {"1"}},
        {"private_pipeline_extra_output_buffers", {"2"}},
        {"private_preprocess_max_downscale_factor", {"8"}},
        {"private_smoothnessFactor", {"0"}},
        {"private_transcode_metadata_stat", {"3"}},
        {"private_vt_extension_version", {"101"}},
};

constexpr Row kPerfWords[] = {
        {"private_perf_resource_values_heif_decode", {"1086324736 1", "-", "-"}},
        {"private_perf_resource_values_video_decode", {"-", "-", "1082130432 1500"}},
        {"private_perf_resource_values_video_encode",
         {"1082130688 4095", "1082130432 4095", "1082130432 4095"}},
};

// Codec components, with the documents that have them unless all do.
struct Codec {
    const char* name;
    const char* documents = "123";
};

constexpr Codec kCodecs[] = {
        {"av1.decoder"},
        {"av1.decoder.low_latency"},
        {"av1.decoder.secure"},
        {"avc.decoder"},
        {"avc.decoder.low_latency"},
        {"avc.decoder.secure"},
        {"avc.encoder"},
        {"avc.encoder.secure"},
        {"heic.encoder"},
        {"hevc.decoder"},
        {"hevc.decoder.low_latency"},
        {"hevc.decoder.secure"},
        {"hevc.encoder"},
        {"hevc.encoder.cq"},
        {"hevc.encoder.hdr"},
        {"hevc.encoder.secure"},
        {"mvhevc.decoder", "23"},
        {"mvhevc.decoder.secure", "3"},
        {"mvhevc.encoder", "23"},
        {"mvhevc.encoder.hdr", "3"},
        {"vp9.decoder"},
        {"vp9.decoder.low_latency"},
        {"vp9.decoder.secure"},
};

template <typename Rows>
std::string section(const char* title, const Rows& rows, int document) {
    std::string text;
    for (const Row& row : rows) {
        if (row.valueIn(document) != "-") {
            text += std::string(title) + " " + row.name + " " + row.valueIn(document) + "\n";
        }
    }
    return text;
}

TEST(BuiltInDocumentsTest, ContainEveryValue) {
    Device device;
    for (int document = 0; document < 3; ++document) {
        SCOPED_TRACE(document + 1);
        std::string expected = section("feature", kFeatures, document) +
                               section("preset", kPresets, document) +
                               section("perf", kPerfWords, document);
        for (const Codec& codec : kCodecs) {
            if (std::string(codec.documents).find(static_cast<char>('1' + document)) !=
                std::string::npos) {
                expected += std::string("codec c2.kvx.") + codec.name + "\n";
            }
        }
        setVariant(kVariants[document]);
        const std::string text = TargetSpec::getPrivateConfig();
        TargetSpec spec;
        EXPECT_EQ(0u, parse(spec, text));
        EXPECT_EQ(expected, contentOf(spec));
        EXPECT_EQ(Lines(), device.takeLog());
        EXPECT_EQ("\n{", text.substr(0, 2));
        EXPECT_EQ("\n}\n", text.substr(text.size() - 3));
    }
}

}  // namespace

}  // namespace kc2::test
