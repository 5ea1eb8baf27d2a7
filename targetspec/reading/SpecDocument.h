// One system spec document as plain typed values: no JSON, no store.
#pragma once

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "kc2/TargetSpec.h"

namespace kc2 {

struct TierLevels {
    int32_t main = 0;
    int32_t high = 0;
};

struct SpecDocument {
    std::map<std::string, bool> features;
    std::map<std::string, int32_t> presets;
    std::vector<NimbraBitRateEntry> nimbraModeBitRateTable;
    std::set<uint32_t> dvProfiles;
    std::optional<TierLevels> dvTierLevels;  // Present if the document has "DolbyVision".
    std::list<std::string> codecPlugins;
    std::list<std::string> preprocessingFilters;
    std::map<std::string, std::vector<uint32_t>> perfResourceValues;
    std::unordered_set<std::string> supportedCodecs;
    std::list<std::string> encPostProcessingFilters;
};

}  // namespace kc2
