// Writes the store to the log.

#include "device/Log.h"
#include "kc2/TargetSpec.h"

namespace kc2 {

namespace {

constexpr auto& kTag = log::kTagTargetSpec;

template <typename Names>
void printNames(const Names& names) {
    for (const std::string& name : names) {
        KC2_LOG_INFO(kTag, "       %s", name.c_str());
    }
}

}  // namespace

void TargetSpec::printSpecifications() {
    KC2_LOG_INFO(kTag, "Video Core Features:");
    for (const auto& [name, isOn] : mFeatures) {
        KC2_LOG_INFO(kTag, "       %-25s : %d", name.c_str(), isOn ? 1 : 0);
    }
    KC2_LOG_INFO(kTag, "Video Core Presets:");
    for (const auto& [name, value] : mPresets) {
        KC2_LOG_INFO(kTag, "       %-35s : %d", name.c_str(), value);
    }
    KC2_LOG_INFO(kTag, "Pre processing plugins:");
    printNames(mPreprocessingFilters);
    KC2_LOG_INFO(kTag, "Codec plugins:");
    printNames(mCodecPlugins);
    KC2_LOG_DEBUG(log::kMaskDebugHeading, kTag, "HW Codec entries:");
    printNames(mSupportedCodecs);
}

}  // namespace kc2
