// What a section holds, by its key, and how documents merge there, by its type.

#include "catalogue/SectionTexts.h"

#include <algorithm>
#include <iterator>

#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

struct SectionText {
    const char* const* key;
    const char* text;
};

constexpr SectionText kSectionTexts[] = {
        {&targetSpecRoot, "Holds every section of the document."},
        {&targetSpecFeatures, "Switches: each name is true or false."},
        {&targetSpecPresets, "Numbers: each name is a 32-bit integer."},
        {&targetSpecNimbraModeBitRate,
         "Rows [low, high, bit rate]. A row answers for the values from low up to, but not "
         "including, high; the first row that holds a value answers."},
        {&targetSpecDV,
         "Dolby Vision profiles and the highest levels of the main and the high tier."},
        {&targetSpecDVProfiles, "Numbers of the Dolby Vision profiles."},
        {&targetSpecDVMaxMainTierLevel,
         "Highest level of the main tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecDVMaxHighTierLevel,
         "Highest level of the high tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecCodecPlugins, "Names of codec plug-ins, in order."},
        {&targetSpecPreProcessingFilters, "Entries of encoder pre-processing filters, in order."},
        {&targetSpecSupportedEncPostProcessingFilters,
         "Names of encoder post-processing filters, in order."},
        {&targetSpecPerfResourceValues,
         "CPU performance-lock words by use case: hexadecimal strings in pairs, a resource code, "
         "then its value."},
        {&targetSpecSupportedCodecs, "Components that are enabled."},
        {&targetSpecAvailableDecoders, "Names of decoder components."},
        {&targetSpecAvailableEncoders, "Names of encoder components."},
        {&targetSpecOptionalCodecs, "Further components that are enabled."},
};

// A test holds these words against a merge.
const char* mergingOf(SectionType type) {
    switch (type) {
        case SectionType::Features:
        case SectionType::Presets:
        case SectionType::PerfResourceValues:
            return "A name that an earlier document sets keeps its value.";
        case SectionType::BitRateRows:
            return "A later document appends rows.";
        case SectionType::DolbyVision:
            return "A later document adds profiles and replaces both levels; a level that it "
                   "leaves out becomes 0.";
        case SectionType::Names:
            return "A later document appends, duplicates too.";
        case SectionType::CodecLists:
        case SectionType::CodecNames:
            return "All lists of components, of all documents, make one set; when it is empty, "
                   "every component is enabled.";
    }
    return "";
}

}  // namespace

std::string meaningOfSection(const std::string& key) {
    const auto isNamed = [&key](const auto& row) { return *row.key != nullptr && key == *row.key; };
    std::string meaning;
    const auto text = std::find_if(std::begin(kSectionTexts), std::end(kSectionTexts), isNamed);
    if (text != std::end(kSectionTexts)) {
        meaning = text->text;
    }
    const auto section = std::find_if(std::begin(kSections), std::end(kSections), isNamed);
    if (section != std::end(kSections)) {
        meaning.append(meaning.empty() ? "" : " ").append(mergingOf(section->type));
    }
    return meaning;
}

}  // namespace kc2::tool
