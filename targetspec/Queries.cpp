// The queries: all read-only, none takes a lock.

#include "device/Log.h"
#include "kc2/TargetSpec.h"

namespace kc2 {

namespace {

constexpr uint32_t kNoBitRate = 0xFFFFFFFF;

// Appends a copy of `names` to the caller's list; returns `statusWithoutList` if there is no list.
int32_t append(const std::list<std::string>& names, std::list<std::string>* list,
               int32_t statusWithoutList) {
    if (list == nullptr) {
        return statusWithoutList;
    }
    list->insert(list->end(), names.begin(), names.end());
    return SPEC_OK;
}

}  // namespace

bool TargetSpec::isFeatureEnabled(const std::string& name) {
    const auto feature = mFeatures.find(name);
    return feature != mFeatures.end() && feature->second;
}

int32_t TargetSpec::getPresetValue(const std::string& name, int* value) {
    if (value == nullptr) {
        return SPEC_BAD_ARGUMENT;
    }
    const auto preset = mPresets.find(name);
    if (preset == mPresets.end()) {
        return SPEC_NOT_FOUND;
    }
    *value = preset->second;
    return SPEC_OK;
}

std::vector<uint32_t> TargetSpec::getPerfResourceValues(const std::string& name) {
    const auto words = mPerfResourceValues.find(name);
    return words != mPerfResourceValues.end() ? words->second : std::vector<uint32_t>();
}

uint32_t TargetSpec::getNimbraModeBitRateValue(unsigned int* value) {
    if (value == nullptr) {
        return kNoBitRate;
    }
    const uint32_t wanted = *value;
    for (const NimbraBitRateEntry& entry : mNimbraModeBitRateTable) {
        if (entry.low <= wanted && wanted < entry.high) {
            return entry.bitRate;
        }
    }
    return kNoBitRate;
}

const DVConfigs& TargetSpec::getDVConfigs() {
    return mDVConfigs;
}

int32_t TargetSpec::getCodecPlugins(std::list<std::string>* plugins) {
    return append(mCodecPlugins, plugins, SPEC_BAD_ARGUMENT);
}

int32_t TargetSpec::getPreprocessingFilters(std::list<std::string>* filters) {
    return append(mPreprocessingFilters, filters, SPEC_NO_LIST);
}

int32_t TargetSpec::getEncPostprocessingFilters(std::list<std::string>* filters) {
    return append(mEncPostProcessingFilters, filters, SPEC_NO_LIST);
}

std::unordered_set<std::string> TargetSpec::getSupportedCodecs() {
    if (mSupportedCodecs.empty()) {
        KC2_LOG_WARNING(log::kTagTargetSpec,
                        "List of Supported Codecs is Empty. All codecs will be enabled..");
    }
    return mSupportedCodecs;
}

}  // namespace kc2
