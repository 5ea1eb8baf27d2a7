// What a section contains, by its key, and how documents merge there, by its type.

#include "catalogue/SectionTexts.h"

#include <algorithm>
#include <iterator>

#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

// In the order in which what they give is shown: named values first.
constexpr SectionText kSectionTexts[] = {
        {&targetSpecRoot, "Contains all sections of the document."},
        {&targetSpecFeatures, "Switches: each name is true or false.", "Features", "features"},
        {&targetSpecPresets, "Numbers: each name is a 32-bit integer.", "Presets", "presets"},
        {&targetSpecPerfResourceValues,
         "CPU performance-lock words by use case: hexadecimal strings in pairs, a resource code, "
         "then its value.",
         "Perf-lock words", "perfResourceValues"},
        {&targetSpecNimbraModeBitRate,
         "Rows [low, high, bit rate]. A row is for the values from low up to, but not including, "
         "high; the first row whose range has a value is used.",
         "Nimbra-mode bit rates", "nimbraModeBitRateTable"},
        {&targetSpecDVProfiles, "Numbers of the Dolby Vision profiles.", "Dolby Vision profiles",
         "dolbyVisionProfiles"},
        {&targetSpecDV,
         "Dolby Vision profiles and the highest levels of the main and the high tier.",
         "Dolby Vision tier levels", "dolbyVisionTierLevels"},
        {&targetSpecDVMaxMainTierLevel,
         "Highest level of the main tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecDVMaxHighTierLevel,
         "Highest level of the high tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecCodecPlugins, "Names of codec plug-ins, in order.", "Codec plug-ins",
         "codecPlugins"},
        {&targetSpecPreProcessingFilters, "Entries of encoder pre-processing filters, in order.",
         "Pre-processing filters", "preprocessingFilters"},
        {&targetSpecSupportedEncPostProcessingFilters,
         "Names of encoder post-processing filters, in order.", "Encoder post-processing filters",
         "encPostProcessingFilters"},
        {&targetSpecSupportedCodecs,
         "Components that are enabled. Where no private file opens, the built-in document adds all "
         "of "
         "its own to them.",
         "Codec components", "supportedCodecs", ": every component is enabled"},
        {&targetSpecAvailableDecoders, "Names of decoder components."},
        {&targetSpecAvailableEncoders, "Names of encoder components."},
        {&targetSpecOptionalCodecs, "Further components that are enabled."},
};

// What must have a title, and what must have words: a new section does not compile without them.
constexpr const SectionText* rowOf(const char* const* key) {
    for (const SectionText& row : kSectionTexts) {
        if (row.key == key) {
            return &row;
        }
    }
    return nullptr;
}

constexpr bool haveAllSectionsTexts() {
    bool haveAll = true;
    for (const Section& section : kSections) {
        haveAll = haveAll && rowOf(section.key) != nullptr;
        for (const char* const* member : fixedMembersOf(section.type)) {
            haveAll = haveAll && rowOf(member) != nullptr;
        }
    }
    forEachContainer([&](const char* const* key, auto /*member*/) {
        haveAll = haveAll && rowOf(key) != nullptr && *rowOf(key)->title != '\0' &&
                  *rowOf(key)->jsonKey != '\0';
    });
    return haveAll;
}
static_assert(haveAllSectionsTexts(), "a section has no row in kSectionTexts, or no title there");

// A test compares these words with a merge.
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

const SectionText* textOfSection(std::string_view key) {
    const auto found = std::find_if(
            std::begin(kSectionTexts), std::end(kSectionTexts),
            [key](const SectionText& row) { return *row.key != nullptr && key == *row.key; });
    return found != std::end(kSectionTexts) ? found : nullptr;
}

std::string meaningOfSection(const std::string& key) {
    const SectionText* const text = textOfSection(key);
    std::string meaning = text != nullptr ? text->meaning : "";
    for (const Section& section : kSections) {
        if (*section.key != nullptr && key == *section.key) {
            meaning.append(" ").append(mergingOf(section.type));
        }
    }
    return meaning;
}

}  // namespace kc2::tool
