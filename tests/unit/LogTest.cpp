// Which lines the log shows at which level; a closed gate evaluates no argument.

#include "device/Log.h"

#include <gtest/gtest.h>

#include "Device.h"
#include "hostplatform/HostPlatform.h"

namespace kc2::test {

namespace {

void setLevel(uint32_t level) {
    host::setLogLevel(level);
    updateLogLevel();
}

TEST(LogTest, TheDumpIsGatedLineByLine) {
    Device device;
    TargetSpec spec;
    const std::string longName(40, 'n');
    ASSERT_EQ(0u, parse(spec, R"({"Video": {
        "Features": {"b": true, "a": false, "a_feature_name_of_more_than_25_bytes": true},
        "Presets": {"preset": -5, ")" +
                                      longName + R"(": 7},
        "KC2PreProcessingFilters": ["pre"], "KC2CodecPlugins": ["plug", "plug"],
        "OptionalCodecs": ["codec"], "KC2EncPostProcessingFilters": ["%s"],
        "DolbyVision": {"profiles": [1]}, "NimbraModeBitrateTable": [[1, 2, 3]],
        "perf-resource-values": {"perf": ["1"]}}})"));
    const Lines all = {
            "I/KC2TargetSpec: Video Core Features:",
            "I/KC2TargetSpec:        a                         : 0",
            "I/KC2TargetSpec:        a_feature_name_of_more_than_25_bytes : 1",
            "I/KC2TargetSpec:        b                         : 1",
            "I/KC2TargetSpec: Video Core Presets:",
            "I/KC2TargetSpec:        " + longName + " : 7",
            "I/KC2TargetSpec:        preset                              : -5",
            "I/KC2TargetSpec: Pre processing plugins:",
            "I/KC2TargetSpec:        pre",
            "I/KC2TargetSpec: Codec plugins:",
            "I/KC2TargetSpec:        plug",
            "I/KC2TargetSpec:        plug",
            "D/KC2TargetSpec: HW Codec entries:",
            "I/KC2TargetSpec:        codec",
    };
    Lines infoOnly = all;
    infoOnly.erase(infoOnly.end() - 2);
    const Lines headingOnly = {all[12]};
    const Lines none;
    const std::pair<uint32_t, const Lines&> rows[] = {
            {0x0, none},       {0x2, infoOnly},    {0x8, headingOnly}, {0xA, all},
            {0xF5, none},      {0xFFFFFF00, none}, {0x01000002, none}, {0x02000002, infoOnly},
            {0x0300000A, all}, {0x80000008, none}, {0xFF00000A, all},  {0x00FFFF08, headingOnly},
    };
    device.takeLog();
    for (const auto& [level, lines] : rows) {
        setLevel(level);
        spec.printSpecifications();
        EXPECT_EQ(lines, device.takeLog()) << std::hex << level;
    }
    setLevel(0xA);
    TargetSpec().printSpecifications();
    EXPECT_EQ((Lines{all[0], all[4], all[7], all[9], all[12]}), device.takeLog());
}

TEST(LogTest, AMaskAboveTheLowByteNeedsABitInIt) {
    EXPECT_FALSE(log::gateIsOpen(0x100, 0x100));
    EXPECT_TRUE(log::gateIsOpen(0x101, 0x100));
}

TEST(LogTest, AClosedGateEvaluatesNoArgument) {
    Device device;
    int evaluations = 0;
    for (const uint32_t level : {0x0, 0x2, 0x4}) {
        setLevel(level);
        KC2_LOG_INFO("tag", "%d", ++evaluations);
        KC2_LOG_DEBUG(log::kMaskDebugDetail, "tag", "%d", ++evaluations);
    }
    EXPECT_EQ(2, evaluations);
    EXPECT_EQ((Lines{"I/tag: 1", "D/tag: 2"}), device.takeLog());
}

}  // namespace

}  // namespace kc2::test
