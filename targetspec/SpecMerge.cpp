// SpecDocument -> store: parseJsonData() and the merge rules.

#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "kc2/TargetSpec.h"
#include "log/Log.h"
#include "targetspec/DocumentText.h"
#include "targetspec/LoadStatus.h"
#include "targetspec/SpecDocument.h"
#include "targetspec/SpecReader.h"

namespace kc2 {

namespace {

constexpr auto& kTag = log::kTagTargetSpec;

// The device's voice: what was skipped, as warning lines.
class FindingLog final : public FindingSink {
public:
    void report(const Finding& finding) override {
        if (finding.kind == FindingKind::RowSizeNotThree) {
            KC2_LOG_WARNING(kTag, "Unable to queue the json entry due to inappropriate size");
        } else if (const char* const reason = skipReason(finding.kind)) {
            KC2_LOG_WARNING(kTag, "Skipped %s: %s", finding.place.toString().c_str(), reason);
        }
    }
};

}  // namespace

uint32_t TargetSpec::parseJsonData(std::ifstream& stream) {
    const std::string_view builtInDocument = getPrivateConfig();
    SpecDocument document;
    FindingLog findings;
    if (stream.fail()) {
        if (!readSpecDocument(builtInDocument, &document, findings)) {
            KC2_LOG_ERROR(kTag, "Couldn't parse json from string literal");
            return kLoadFailed;
        }
    } else {
        std::string text;
        if (!readText(stream, &text) || !readSpecDocument(text, &document, findings)) {
            KC2_LOG_ERROR(kTag, "Couldn't parse json from file stream");
            return kLoadFailed;
        }
    }
    merge(document);
    return kLoadOk;
}

void TargetSpec::merge(SpecDocument& document) {
    // Names that the store already holds keep their value.
    mFeatures.merge(document.features);
    mPresets.merge(document.presets);
    mPerfResourceValues.merge(document.perfResourceValues);

    // Rows and list entries are appended, duplicates and all.
    mNimbraModeBitRateTable.insert(mNimbraModeBitRateTable.end(),
                                   document.nimbraModeBitRateTable.begin(),
                                   document.nimbraModeBitRateTable.end());
    mCodecPlugins.splice(mCodecPlugins.end(), document.codecPlugins);
    mPreprocessingFilters.splice(mPreprocessingFilters.end(), document.preprocessingFilters);
    for (const std::string& filter : document.encPostProcessingFilters) {
        KC2_LOG_DEBUG(log::kMaskDebugDetail, kTag, "mEncPostProcessingFilters %s", filter.c_str());
    }
    mEncPostProcessingFilters.splice(mEncPostProcessingFilters.end(),
                                     document.encPostProcessingFilters);

    // Profiles and codec names are joined.
    mDVConfigs.profiles.merge(document.dvProfiles);
    mSupportedCodecs.merge(document.supportedCodecs);

    // Both tier levels are replaced by a document that has the section.
    if (document.dvTierLevels) {
        mDVConfigs.maxMainTierLevel = document.dvTierLevels->main;
        mDVConfigs.maxHighTierLevel = document.dvTierLevels->high;
    }
}

}  // namespace kc2
