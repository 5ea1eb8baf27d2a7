// The nine queries, on an empty store and on one with content.

#include <gtest/gtest.h>

#include "Device.h"

namespace kc2::test {

namespace {

using Names = std::list<std::string>;

TEST(QueriesTest, AnEmptyStoreReturnsAbsentValues) {
    Device device;
    TargetSpec spec;
    int value = 77;
    unsigned int wanted = 0;
    Names names = {"first"};
    EXPECT_FALSE(spec.isFeatureEnabled(""));
    EXPECT_EQ(SPEC_NOT_FOUND, spec.getPresetValue("", &value));
    EXPECT_EQ(77, value);
    EXPECT_TRUE(spec.getPerfResourceValues("").empty());
    EXPECT_EQ(0xFFFFFFFFu, spec.getNimbraModeBitRateValue(&wanted));
    EXPECT_TRUE(spec.getDVConfigs().profiles.empty());
    EXPECT_EQ(0, spec.getDVConfigs().maxMainTierLevel);
    EXPECT_EQ(0, spec.getDVConfigs().maxHighTierLevel);
    EXPECT_EQ(SPEC_OK, spec.getCodecPlugins(&names));
    EXPECT_EQ(SPEC_OK, spec.getPreprocessingFilters(&names));
    EXPECT_EQ(SPEC_OK, spec.getEncPostprocessingFilters(&names));
    EXPECT_EQ(Names{"first"}, names);
    EXPECT_EQ(Lines(), device.takeLog());

    EXPECT_TRUE(spec.getSupportedCodecs().empty());
    EXPECT_TRUE(spec.getSupportedCodecs().empty());
    EXPECT_EQ(Lines(2,
                    "W/KC2TargetSpec: List of Supported Codecs is Empty. All codecs will be "
                    "enabled.."),
              device.takeLog());
}

TEST(QueriesTest, ReturnWhatTheStoreContains) {
    Device device;
    TargetSpec spec;
    ASSERT_EQ(0u, parse(spec, R"({"Video": {
        "Features": {"on": true, "off": false, "": true}, "Presets": {"max": -4},
        "perf-resource-values": {"encode": ["1", "FFF"]},
        "NimbraModeBitrateTable": [[100, 200, 5], [150, 300, 7], [-2, -1, 9], [400, 350, 1]],
        "DolbyVision": {"profiles": [8, 5], "max_main_tier_level": 1, "max_high_tier_level": 2},
        "KC2CodecPlugins": ["a", "b"], "KC2PreProcessingFilters": ["c"],
        "KC2EncPostProcessingFilters": ["d"], "OptionalCodecs": ["x", "y"]}})"));

    EXPECT_TRUE(spec.isFeatureEnabled("on") && spec.isFeatureEnabled(""));
    EXPECT_FALSE(spec.isFeatureEnabled("off") || spec.isFeatureEnabled("On") ||
                 spec.isFeatureEnabled("on "));

    int value = 77;
    EXPECT_EQ(2, spec.getPresetValue("Max", &value));
    EXPECT_EQ(77, value);
    EXPECT_EQ(SPEC_OK, spec.getPresetValue("max", &value));
    EXPECT_EQ(-4, value);
    EXPECT_EQ(SPEC_BAD_ARGUMENT, spec.getPresetValue("max", nullptr));
    EXPECT_EQ(SPEC_BAD_ARGUMENT, spec.getPresetValue("absent", nullptr));
    EXPECT_EQ((std::vector<uint32_t>{1, 0xFFF}), spec.getPerfResourceValues("encode"));

    const std::pair<unsigned int, uint32_t> bitRates[] = {
            {99, 0xFFFFFFFF},  {100, 5},        {199, 5},
            {200, 7},          {299, 7},        {300, 0xFFFFFFFF},
            {375, 0xFFFFFFFF}, {0xFFFFFFFE, 9}, {0xFFFFFFFF, 0xFFFFFFFF}};
    for (auto [wanted, bitRate] : bitRates) {
        EXPECT_EQ(bitRate, spec.getNimbraModeBitRateValue(&wanted)) << wanted;
    }
    EXPECT_EQ(0xFFFFFFFFu, spec.getNimbraModeBitRateValue(nullptr));

    EXPECT_EQ(&spec.getDVConfigs(), &spec.getDVConfigs());
    EXPECT_EQ((std::set<uint32_t>{5, 8}), spec.getDVConfigs().profiles);

    Names names = {"first"};
    EXPECT_EQ(SPEC_OK, spec.getCodecPlugins(&names));
    EXPECT_EQ(SPEC_OK, spec.getPreprocessingFilters(&names));
    EXPECT_EQ(SPEC_OK, spec.getEncPostprocessingFilters(&names));
    EXPECT_EQ(SPEC_OK, spec.getCodecPlugins(&names));
    EXPECT_EQ((Names{"first", "a", "b", "c", "d", "a", "b"}), names);
    EXPECT_EQ(22, spec.getCodecPlugins(nullptr));
    EXPECT_EQ(-2, spec.getPreprocessingFilters(nullptr));
    EXPECT_EQ(-2, spec.getEncPostprocessingFilters(nullptr));

    EXPECT_EQ((std::unordered_set<std::string>{"x", "y"}), spec.getSupportedCodecs());
    EXPECT_EQ(Lines(), device.takeLog());
}

}  // namespace

}  // namespace kc2::test
