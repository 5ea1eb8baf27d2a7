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

// Calls visit(key, member) for each member of SpecDocument that the sections fill, once, in the
// order of the sections. The key is that of the section; profiles have their own. What must look at
// everything in a document or a store goes through this, so that a new section is not forgotten.
template <typename Visit>
constexpr void forEachContainer(Visit visit) {
    for (const Section& section : kSections) {
        switch (section.type) {
            case SectionType::Features:
                visit(section.key, &SpecDocument::features);
                break;
            case SectionType::Presets:
                visit(section.key, &SpecDocument::presets);
                break;
            case SectionType::BitRateRows:
                visit(section.key, &SpecDocument::nimbraModeBitRateTable);
                break;
            case SectionType::DolbyVision:
                visit(&targetSpecDVProfiles, &SpecDocument::dvProfiles);
                visit(section.key, &SpecDocument::dvTierLevels);
                break;
            case SectionType::Names:
                visit(section.key, section.names);
                break;
            case SectionType::PerfResourceValues:
                visit(section.key, &SpecDocument::perfResourceValues);
                break;
            case SectionType::CodecLists:
                visit(section.key, &SpecDocument::supportedCodecs);
                break;
            case SectionType::CodecNames:
                break;  // They fill the set of the lists.
        }
    }
}

}  // namespace kc2
