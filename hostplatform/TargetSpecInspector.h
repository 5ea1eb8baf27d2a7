/**
 * @file
 * kc2::TargetSpecInspector: the members of a store, one accessor each, for host tools, tests and
 * fuzz targets. The library itself does not contain it.
 */
#pragma once

#include "kc2/TargetSpec.h"

namespace kc2 {

/** The friend of TargetSpec. What it returns lives as long as the store that it is given. */
struct TargetSpecInspector {
    static const std::map<std::string, bool>& features(const TargetSpec& spec) {
        return spec.mFeatures;
    }
    static const std::map<std::string, std::vector<uint32_t>>& perfResourceValues(
            const TargetSpec& spec) {
        return spec.mPerfResourceValues;
    }
    static const std::map<std::string, int32_t>& presets(const TargetSpec& spec) {
        return spec.mPresets;
    }
    static const std::vector<NimbraBitRateEntry>& nimbraModeBitRateTable(const TargetSpec& spec) {
        return spec.mNimbraModeBitRateTable;
    }
    static const std::list<std::string>& codecPlugins(const TargetSpec& spec) {
        return spec.mCodecPlugins;
    }
    static const DVConfigs& dvConfigs(const TargetSpec& spec) { return spec.mDVConfigs; }
    static const std::list<std::string>& preprocessingFilters(const TargetSpec& spec) {
        return spec.mPreprocessingFilters;
    }
    static const std::unordered_set<std::string>& supportedCodecs(const TargetSpec& spec) {
        return spec.mSupportedCodecs;
    }
    static const std::list<std::string>& encPostProcessingFilters(const TargetSpec& spec) {
        return spec.mEncPostProcessingFilters;
    }
    /** Status of the last load step: 0, or 0xFFFFFFFF when it failed. */
    static uint32_t status(const TargetSpec& spec) { return spec.mStatus; }
};

}  // namespace kc2
