// SpecDocument -> store: the merge rules, a line each.

#include <iterator>
#include <string>

#include "device/Log.h"
#include "kc2/TargetSpec.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2 {

namespace {

// The two functions below swap the containers if the store's is empty, as it is before the first
// document: that costs nothing.

// Adds the document's names to the store's; for a name that is in both, the store's value stays.
template <typename Names>
void join(Names& names, Names& added) {
    if (names.empty()) {
        names.swap(added);
    } else {
        names.merge(added);
    }
}

void append(std::vector<NimbraBitRateEntry>& rows, std::vector<NimbraBitRateEntry>& added) {
    if (rows.empty()) {
        rows.swap(added);
    } else {
        rows.insert(rows.end(), added.begin(), added.end());
    }
}

}  // namespace

void TargetSpec::merge(SpecDocument& document) {
    // A name that is in the store already keeps its value.
    join(mFeatures, document.features);
    join(mPresets, document.presets);
    join(mPerfResourceValues, document.perfResourceValues);

    // Rows and list entries are appended, with duplicates.
    append(mNimbraModeBitRateTable, document.nimbraModeBitRateTable);
    mCodecPlugins.splice(mCodecPlugins.end(), document.codecPlugins);
    mPreprocessingFilters.splice(mPreprocessingFilters.end(), document.preprocessingFilters);
    for (const std::string& filter : document.encPostProcessingFilters) {
        KC2_LOG_DEBUG(log::kMaskDebugDetail, log::kTagTargetSpec, "mEncPostProcessingFilters %s",
                      filter.c_str());
    }
    mEncPostProcessingFilters.splice(mEncPostProcessingFilters.end(),
                                     document.encPostProcessingFilters);

    // Profiles and codec names are added to the sets.
    join(mDVConfigs.profiles, document.dvProfiles);
    join(mSupportedCodecs, document.supportedCodecs);

    // Both tier levels are replaced by a document that has the section.
    if (document.dvTierLevels) {
        mDVConfigs.maxMainTierLevel = document.dvTierLevels->main;
        mDVConfigs.maxHighTierLevel = document.dvTierLevels->high;
    }
}

}  // namespace kc2
