// The sections of a document, a row each: the key that the reader looks up, and its type.
#pragma once

#include <cstdint>
#include <list>
#include <span>
#include <string>

#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2 {

enum class SectionType : uint8_t {
    Features,            // Object of name -> boolean.
    Presets,             // Object of name -> integer.
    BitRateRows,         // Array of rows of three integers.
    DolbyVision,         // Object with fixed members: profiles, tier levels.
    Names,               // Array of strings, kept in order.
    PerfResourceValues,  // Object of name -> array of hexadecimal strings.
    CodecLists,          // Object with fixed members: arrays of component names.
    CodecNames,          // Array of component names.
};

struct Section {
    // The exported global; its value is read at each lookup.
    const char* const* key;
    SectionType type;
    std::list<std::string> SpecDocument::*names = nullptr;  // What SectionType::Names fills.
};

// In the order in which they are read, which is the order of their findings in the device's log.
inline constexpr Section kSections[] = {
        {&targetSpecFeatures, SectionType::Features},
        {&targetSpecPresets, SectionType::Presets},
        {&targetSpecNimbraModeBitRate, SectionType::BitRateRows},
        {&targetSpecDV, SectionType::DolbyVision},
        {&targetSpecCodecPlugins, SectionType::Names, &SpecDocument::codecPlugins},
        {&targetSpecPreProcessingFilters, SectionType::Names, &SpecDocument::preprocessingFilters},
        {&targetSpecPerfResourceValues, SectionType::PerfResourceValues},
        {&targetSpecSupportedCodecs, SectionType::CodecLists},
        {&targetSpecOptionalCodecs, SectionType::CodecNames},
        {&targetSpecSupportedEncPostProcessingFilters, SectionType::Names,
         &SpecDocument::encPostProcessingFilters},
};

// The members of the sections whose members have fixed names.
inline constexpr const char* const* kDolbyVisionMembers[] = {
        &targetSpecDVProfiles, &targetSpecDVMaxMainTierLevel, &targetSpecDVMaxHighTierLevel};
inline constexpr const char* const* kCodecListMembers[] = {&targetSpecAvailableDecoders,
                                                           &targetSpecAvailableEncoders};

// None for the other types.
constexpr std::span<const char* const* const> fixedMembersOf(SectionType type) {
    switch (type) {
        case SectionType::DolbyVision:
            return kDolbyVisionMembers;
        case SectionType::CodecLists:
            return kCodecListMembers;
        default:
            return {};
    }
}

}  // namespace kc2
