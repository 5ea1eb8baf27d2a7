/**
 * @file
 * kc2::TargetSpecInspector: the members of a store, one accessor each, for tools, tests and
 * fuzz targets. It is not part of the library.
 */
#pragma once

#include "kc2/TargetSpec.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2 {

/** The friend of TargetSpec. The references that it returns live as long as the store. */
struct TargetSpecInspector {
    static const std::map<std::string, bool>& features(const TargetSpec& store) {
        return store.mFeatures;
    }
    static const std::map<std::string, std::vector<uint32_t>>& perfResourceValues(
            const TargetSpec& store) {
        return store.mPerfResourceValues;
    }
    static const std::map<std::string, int32_t>& presets(const TargetSpec& store) {
        return store.mPresets;
    }
    static const std::vector<NimbraBitRateEntry>& nimbraModeBitRateTable(const TargetSpec& store) {
        return store.mNimbraModeBitRateTable;
    }
    static const std::list<std::string>& codecPlugins(const TargetSpec& store) {
        return store.mCodecPlugins;
    }
    static const DVConfigs& dvConfigs(const TargetSpec& store) { return store.mDVConfigs; }
    /** Lets a test find out whether a load step sets them. */
    static DVConfigs& changeableDVConfigs(TargetSpec& store) { return store.mDVConfigs; }
    static const std::list<std::string>& preprocessingFilters(const TargetSpec& store) {
        return store.mPreprocessingFilters;
    }
    static const std::unordered_set<std::string>& supportedCodecs(const TargetSpec& store) {
        return store.mSupportedCodecs;
    }
    static const std::list<std::string>& encPostProcessingFilters(const TargetSpec& store) {
        return store.mEncPostProcessingFilters;
    }
    /** Merges a document as a load step does, and empties it. */
    static void merge(TargetSpec& store, SpecDocument& document) { store.merge(document); }
    /** Everything that the store has, as a document would; both tier levels are always there. */
    static SpecDocument contentOf(const TargetSpec& store) {
        return {store.mFeatures,
                store.mPresets,
                store.mNimbraModeBitRateTable,
                store.mDVConfigs.profiles,
                TierLevels{store.mDVConfigs.maxMainTierLevel, store.mDVConfigs.maxHighTierLevel},
                store.mCodecPlugins,
                store.mPreprocessingFilters,
                store.mPerfResourceValues,
                store.mSupportedCodecs,
                store.mEncPostProcessingFilters};
    }
    /** Status of the last load step: 0, or 0xFFFFFFFF when it failed. */
    static uint32_t status(const TargetSpec& store) { return store.mStatus; }
};

}  // namespace kc2
