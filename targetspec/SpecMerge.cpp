// SpecDocument -> store: parseJsonData() and the merge rules.

#include <fstream>
#include <iterator>
#include <string>

#include "kc2/TargetSpec.h"
#include "log/Log.h"
#include "targetspec/DocumentText.h"
#include "targetspec/LoadStatus.h"
#include "targetspec/reading/SpecDocument.h"
#include "targetspec/reading/SpecReader.h"

namespace kc2 {

namespace {

constexpr auto& kTag = log::kTagTargetSpec;

// Logs skipped values as warnings.
class FindingLog final : public FindingSink {
public:
    FindingLog() : FindingSink({Effect::SkipsAndLogs}) {}

    void report(const Finding& finding) override {
        if (finding.kind == FindingKind::RowSizeNotThree) {
            KC2_LOG_WARNING(kTag, "Unable to queue the json entry due to inappropriate size");
        } else if (const char* const reason = rowOf(finding.kind).reason) {
            KC2_LOG_WARNING(kTag, "Skipped %s: %s", finding.place.toString().c_str(), reason);
        }
    }
};

// The two functions below hand a container over whole when the store's is empty, as the first
// document finds it: that costs nothing.

// Joins what the store holds and what the document adds; where both hold a name, the store's stays.
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

uint32_t TargetSpec::parseJsonData(std::ifstream& stream) {
    const char* const builtInDocument = getPrivateConfig();
    SpecDocument document;
    FindingLog findings;
    if (stream.fail()) {
        std::string text = builtInDocument;
        if (!readSpecDocument(text, &document, findings)) {
            KC2_LOG_ERROR(kTag, "Couldn't parse json from string literal");
            return kLoadFailed;
        }
    } else {
        DocumentText text;
        if (!text.read(stream) || !readSpecDocument(text.bytes(), &document, findings)) {
            KC2_LOG_ERROR(kTag, "Couldn't parse json from file stream");
            return kLoadFailed;
        }
    }
    merge(document);
    return kLoadOk;
}

void TargetSpec::merge(SpecDocument& document) {
    // Names that the store already holds keep their value.
    join(mFeatures, document.features);
    join(mPresets, document.presets);
    join(mPerfResourceValues, document.perfResourceValues);

    // Rows and list entries are appended, duplicates and all.
    append(mNimbraModeBitRateTable, document.nimbraModeBitRateTable);
    mCodecPlugins.splice(mCodecPlugins.end(), document.codecPlugins);
    mPreprocessingFilters.splice(mPreprocessingFilters.end(), document.preprocessingFilters);
    for (const std::string& filter : document.encPostProcessingFilters) {
        KC2_LOG_DEBUG(log::kMaskDebugDetail, kTag, "mEncPostProcessingFilters %s", filter.c_str());
    }
    mEncPostProcessingFilters.splice(mEncPostProcessingFilters.end(),
                                     document.encPostProcessingFilters);

    // Profiles and codec names are joined.
    join(mDVConfigs.profiles, document.dvProfiles);
    join(mSupportedCodecs, document.supportedCodecs);

    // Both tier levels are replaced by a document that has the section.
    if (document.dvTierLevels) {
        mDVConfigs.maxMainTierLevel = document.dvTierLevels->main;
        mDVConfigs.maxHighTierLevel = document.dvTierLevels->high;
    }
}

}  // namespace kc2
