// A component's test on a development machine, with a device that it sets up itself:
// decoder_setup_test DIRECTORY, where DIRECTORY contains the device's files.

#include <hostplatform/HostPlatform.h>
#include <kc2/TargetSpec.h>

#include <cstdio>

namespace {

int gFailures = 0;

void expect(bool isTrue, const char* what) {
    if (!isTrue) {
        std::fprintf(stderr, "failed: %s\n", what);
        ++gFailures;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: decoder_setup_test DIRECTORY\n");
        return 2;
    }
    // Before the library is first used.
    kc2::host::mapDirectory("/", argv[1]);
    kc2::host::setProperty("vendor.media.target_variant", "/kestrel");
    kc2::host::setReadOnly(true);

    kc2::TargetSpec& spec = *kc2::TargetSpec::Get();

    unsigned int load = 1500;
    expect(spec.getNimbraModeBitRateValue(&load) == 20000000, "the device's bit-rate row");
    int rate = 0;
    expect(spec.getPresetValue("private_max_supported_render_rate", &rate) == kc2::SPEC_OK &&
                   rate == 90,
           "the device's preset wins over the built-in one");
    expect(spec.isFeatureEnabled("private_perf_control_enable"), "the built-in feature is added");
    expect(spec.getDVConfigs().profiles.count(8) == 1, "a Dolby Vision profile of the device");
    return gFailures == 0 ? 0 : 1;
}
