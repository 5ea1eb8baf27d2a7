// The texts for sections, a row for each key, and how documents merge, for each type.

#include "catalogue/SectionTexts.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

struct SectionText {
    const char* const* key;
    std::string_view title;
    std::string_view meaning;
};

constexpr SectionText kSectionTexts[] = {
        {&targetSpecRoot, "Video", "Contains every section of the document."},
        {&targetSpecFeatures, "Features", "Switches: each name is true or false."},
        {&targetSpecPresets, "Presets", "Numbers: each name is a 32-bit integer."},
        {&targetSpecNimbraModeBitRate, "Nimbra-mode bit rates",
         "Rows [low, high, bit rate]. A row is used for the values from low up to, but not "
         "including, high. Of several such rows the first one is used."},
        {&targetSpecDV, "Dolby Vision",
         "Dolby Vision profiles, and the highest level of the main and the high tier."},
        {&targetSpecDVProfiles, "Dolby Vision profiles", "Numbers of the Dolby Vision profiles."},
        {&targetSpecDVMaxMainTierLevel, "Highest level of the main tier",
         "Highest level of the main tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecDVMaxHighTierLevel, "Highest level of the high tier",
         "Highest level of the high tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecCodecPlugins, "Codec plug-ins", "Names of codec plug-ins, in order."},
        {&targetSpecPreProcessingFilters, "Pre-processing filters",
         "Entries of encoder pre-processing filters, in order."},
        {&targetSpecSupportedEncPostProcessingFilters, "Encoder post-processing filters",
         "Names of encoder post-processing filters, in order."},
        {&targetSpecPerfResourceValues, "Perf-lock words",
         "CPU performance-lock words by use case: hexadecimal strings in pairs, a resource code, "
         "then its value."},
        {&targetSpecSupportedCodecs, "Codec components", "Components that are enabled."},
        {&targetSpecAvailableDecoders, "Decoders", "Names of decoder components."},
        {&targetSpecAvailableEncoders, "Encoders", "Names of encoder components."},
        {&targetSpecOptionalCodecs, "Optional codec components",
         "Further components that are enabled."},
};

// SnapshotTest compares these with what the library does.
constexpr std::string_view mergingOf(SectionType type) {
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

constexpr bool hasText(const char* const* key) {
    return std::any_of(std::begin(kSectionTexts), std::end(kSectionTexts), [key](const auto& row) {
        return row.key == key && !row.title.empty() && !row.meaning.empty();
    });
}

constexpr bool hasTexts(const Section& section) {
    const auto members = fixedMembersOf(section.type);
    return hasText(section.key) && !mergingOf(section.type).empty() &&
           std::all_of(members.begin(), members.end(), hasText);
}

static_assert(hasText(&targetSpecRoot) &&
                      std::all_of(std::begin(kSections), std::end(kSections), hasTexts),
              "A section needs a row in kSectionTexts, as do its fixed members, and its type a "
              "text in mergingOf().");

const SectionText* textOf(const std::string& key) {
    const auto text = std::find_if(
            std::begin(kSectionTexts), std::end(kSectionTexts),
            [&key](const SectionText& row) { return *row.key != nullptr && key == *row.key; });
    return text != std::end(kSectionTexts) ? text : nullptr;
}

}  // namespace

std::string titleOfSection(const std::string& key) {
    const SectionText* const text = textOf(key);
    return text != nullptr ? std::string(text->title) : std::string();
}

std::string meaningOfSection(const std::string& key) {
    const SectionText* const text = textOf(key);
    if (text == nullptr) {
        return std::string();
    }
    std::string meaning(text->meaning);
    for (const Section& section : kSections) {
        if (section.key == text->key) {
            meaning.append(" ").append(mergingOf(section.type));
        }
    }
    return meaning;
}

}  // namespace kc2::tool
