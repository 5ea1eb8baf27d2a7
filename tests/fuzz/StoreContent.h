// The content of a store, as plain values: to compare stores, and to say what one must contain.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "kc2/TargetSpec.h"

namespace kc2::fuzz {

struct StoreContent {
    std::map<std::string, bool> features;
    std::map<std::string, std::vector<uint32_t>> perfResourceValues;
    std::map<std::string, int32_t> presets;
    std::vector<std::vector<uint32_t>> nimbraModeBitRateTable;  // Rows of low, high, bit rate.
    std::vector<std::string> codecPlugins;
    std::set<uint32_t> dvProfiles;
    int32_t maxMainTierLevel = 0;
    int32_t maxHighTierLevel = 0;
    std::vector<std::string> preprocessingFilters;
    std::unordered_set<std::string> supportedCodecs;
    std::vector<std::string> encPostProcessingFilters;

    bool operator==(const StoreContent&) const = default;
};

StoreContent contentOf(const TargetSpec& spec);

// The content that a document must add to an empty store, and the warnings that it must cause.
struct ExpectedDocument {
    StoreContent content;
    bool hasDolbyVision = false;
    size_t warnings = 0;
};

// Reads a document with JsonCpp's own conversions, in a build of it that throws: what it throws on,
// the library must skip. Nothing if the library must reject the text. The text must be small enough
// not to be rejected for its size.
std::optional<ExpectedDocument> expectedDocument(std::string_view text);

// The content of `store` after `document` has been merged into it.
StoreContent merged(StoreContent store, const ExpectedDocument& document);

}  // namespace kc2::fuzz
