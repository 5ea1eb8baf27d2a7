// What the built-in documents set, chip by chip, and what each section is for.

#include "catalogue/BuiltInValues.h"

#include <json/writer.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "Documents.h"
#include "Text.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

constexpr char kOtherChips[] = "other chips";

struct BuiltInDocument {
    int number;
    std::string chips;
    SpecDocument content;
};

// Read once: one for each number, with all of its chips.
const std::vector<BuiltInDocument>& builtInDocuments() {
    static const std::vector<BuiltInDocument> documents = [] {
        std::vector<BuiltInDocument> read;
        for (const ChipDocument& row : kChipDocuments) {
            const std::string chip = *row.chip != '\0' ? row.chip : kOtherChips;
            if (!read.empty() && read.back().number == row.number) {
                read.back().chips += ", " + chip;
            } else {
                read.push_back({row.number, chip, readDocument("", "", row.text).content});
            }
        }
        return read;
    }();
    return documents;
}

template <typename Value>
Json::Value valueIn(const std::map<std::string, Value>& section, const std::string& name) {
    const auto found = section.find(name);
    return found != section.end() ? Json::Value(found->second) : Json::Value();
}

Json::Value wordsIn(const SpecDocument& document, const std::string& name) {
    const auto found = document.perfResourceValues.find(name);
    if (found == document.perfResourceValues.end()) {
        return Json::Value();
    }
    Json::Value words(Json::arrayValue);
    for (const uint32_t word : found->second) {
        words.append(hexadecimal(word));
    }
    return words;
}

std::string meaningOfBits(const std::vector<CatalogueValue>& bits, size_t chosen) {
    std::string meaning;
    for (size_t i = 0; i < bits.size(); ++i) {
        if ((chosen >> i & 1) != 0) {
            meaning += (meaning.empty() ? "" : ", ") + bits[i].meaning;
        }
    }
    return meaning.empty() ? "none of them" : meaning;
}

bool isEachNeededBitThere(const std::vector<CatalogueValue>& bits, size_t chosen, int64_t mask) {
    for (size_t i = 0; i < bits.size(); ++i) {
        if ((chosen >> i & 1) != 0 &&
            (mask & bits[i].neededBit.value_or(0)) != bits[i].neededBit.value_or(0)) {
            return false;
        }
    }
    return true;
}

// Every mask that the bits make; more than four bits would make too many.
std::vector<CatalogueValue> masksOf(const std::vector<CatalogueValue>& bits) {
    constexpr size_t kMostBits = 4;
    std::vector<CatalogueValue> masks;
    for (size_t chosen = 0; bits.size() <= kMostBits && chosen < size_t{1} << bits.size();
         ++chosen) {
        CatalogueValue mask;
        for (size_t i = 0; i < bits.size(); ++i) {
            mask.value |= (chosen >> i & 1) != 0 ? bits[i].value : 0;
        }
        mask.meaning = meaningOfBits(bits, chosen);
        if (isEachNeededBitThere(bits, chosen, mask.value)) {
            masks.push_back(std::move(mask));
        }
    }
    return masks;
}

struct SectionText {
    const char* const* key;
    const char* text;
};

constexpr SectionText kSectionTexts[] = {
        {&targetSpecRoot, "Holds every section of the document."},
        {&targetSpecFeatures,
         "Switches: each name is true or false. A name that an earlier document sets keeps its "
         "value."},
        {&targetSpecPresets,
         "Numbers: each name is a 32-bit integer. A name that an earlier document sets keeps its "
         "value."},
        {&targetSpecNimbraModeBitRate,
         "Rows [low, high, bit rate]. A row answers for the values from low up to, but not "
         "including, high; the first row that holds a value answers. A later document appends "
         "rows."},
        {&targetSpecDV,
         "Dolby Vision profiles and the highest levels of the main and the high tier. A later "
         "document adds profiles and replaces both levels; a level that it leaves out becomes 0."},
        {&targetSpecDVProfiles, "Numbers of the Dolby Vision profiles."},
        {&targetSpecDVMaxMainTierLevel,
         "Highest level of the main tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecDVMaxHighTierLevel,
         "Highest level of the high tier. 0 where a document with \"DolbyVision\" leaves it out."},
        {&targetSpecCodecPlugins,
         "Names of codec plug-ins, in order. A later document appends, duplicates too."},
        {&targetSpecPreProcessingFilters,
         "Entries of encoder pre-processing filters, in order. A later document appends, "
         "duplicates too."},
        {&targetSpecSupportedEncPostProcessingFilters,
         "Names of encoder post-processing filters, in order. A later document appends, "
         "duplicates too."},
        {&targetSpecPerfResourceValues,
         "CPU performance-lock words by use case: hexadecimal strings in pairs, a resource code, "
         "then its value. A name that an earlier document sets keeps its words."},
        {&targetSpecSupportedCodecs,
         "Components that are enabled. All documents together make one set; when it is empty, "
         "every component is enabled."},
        {&targetSpecAvailableDecoders, "Names of decoder components."},
        {&targetSpecAvailableEncoders, "Names of encoder components."},
        {&targetSpecOptionalCodecs,
         "Further components that are enabled, in the same set as those of \"codecs-available\"."},
};

}  // namespace

Json::Value settingIn(const SpecDocument& document, const std::string& section,
                      const std::string& name) {
    if (section == targetSpecFeatures) {
        return valueIn(document.features, name);
    }
    return section == targetSpecPresets ? valueIn(document.presets, name) : wordsIn(document, name);
}

const SpecDocument& builtInContent(int number) {
    const std::vector<BuiltInDocument>& documents = builtInDocuments();
    return std::find_if(documents.begin(), documents.end(),
                        [number](const BuiltInDocument& one) { return one.number == number; })
            ->content;
}

std::vector<BuiltInValue> builtInValuesOf(const Setting& setting) {
    std::vector<BuiltInValue> values;
    for (const BuiltInDocument& document : builtInDocuments()) {
        values.push_back({document.number, document.chips,
                          settingIn(document.content, setting.section, setting.name)});
    }
    return values;
}

std::string writtenValue(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return value.isNull() ? "not set" : Json::writeString(builder, value);
}

std::string builtInText(const Setting& setting) {
    const std::vector<BuiltInValue> values = builtInValuesOf(setting);
    const bool isOne = std::all_of(values.begin(), values.end(), [&](const BuiltInValue& one) {
        return one.value == values.front().value;
    });
    if (isOne) {
        return writtenValue(values.front().value);
    }
    std::string text;
    for (const BuiltInValue& one : values) {
        text += (text.empty() ? "" : "; ") + one.chips + ": " + writtenValue(one.value);
    }
    return text;
}

std::vector<CatalogueValue> choicesOf(const Setting& setting) {
    return setting.bits.empty() ? setting.values : masksOf(setting.bits);
}

std::string meaningOfSection(const std::string& key) {
    const auto row = std::find_if(
            std::begin(kSectionTexts), std::end(kSectionTexts),
            [&](const SectionText& one) { return *one.key != nullptr && key == *one.key; });
    return row != std::end(kSectionTexts) ? row->text : "";
}

}  // namespace kc2::tool
