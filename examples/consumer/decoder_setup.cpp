// What a decoder component asks of the library while it is set up.

#include <kc2/IonInfo.h>
#include <kc2/PixFormat.h>
#include <kc2/TamraBufferLayout.h>
#include <kc2/TargetSpec.h>

#include <cstdio>
#include <string>

using kc2::TargetSpec;
using kc2::Platform::IonInfo;
using kc2::Platform::TamraBufferLayout;

namespace {

// An empty set means that the device restricts nothing.
bool isComponentEnabled(TargetSpec& spec, const std::string& component) {
    const auto codecs = spec.getSupportedCodecs();
    return codecs.empty() || codecs.count(component) != 0;
}

// The preset, or what this component does without it.
int presetOr(TargetSpec& spec, const std::string& name, int fallback) {
    int value = fallback;
    spec.getPresetValue(name, &value);  // Leaves the value alone unless it finds the name.
    return value;
}

}  // namespace

int main() {
    // The first call reads the device's documents; later ones cost nothing.
    TargetSpec& spec = *TargetSpec::Get();

    for (const char* component : {"c2.kvx.hevc.decoder", "c2.kvx.h263.decoder"}) {
        std::printf("%s: %s\n", component, isComponentEnabled(spec, component) ? "on" : "off");
    }
    std::printf("performance hints: %s\n",
                spec.isFeatureEnabled("private_perf_control_enable") ? "on" : "off");
    std::printf("render rate: %d frames/s\n",
                presetOr(spec, "private_max_supported_render_rate", 60));

    // Pairs of a resource code and its value; no entry, no lock to take.
    const auto words = spec.getPerfResourceValues("private_perf_resource_values_video_decode");
    for (size_t word = 0; word + 1 < words.size(); word += 2) {
        std::printf("performance lock: 0x%X = %u\n", words[word], words[word + 1]);
    }

    unsigned int load = 100;
    if (spec.getNimbraModeBitRateValue(&load) == 0xFFFFFFFF) {
        std::printf("Nimbra mode: no bit rate for %u\n", load);
    }

    constexpr uint32_t kFormat = kc2::PixFormat::TAMRA_NV12_CMPR;
    std::printf("output buffers: colour format %u, chroma metadata at %llu\n",
                TamraBufferLayout::FormatMap(kFormat),
                static_cast<unsigned long long>(TamraBufferLayout::Offset(
                        kFormat, TamraBufferLayout::UV_META, 1920, 1080)));
    std::printf("secure buffers: aligned to %u bytes\n", IonInfo::AlignmentFor(IonInfo::DEFAULT));
    return 0;
}
