// What the built-in documents set, chip by chip.

#include "catalogue/BuiltInValues.h"

#include <fmt/format.h>
#include <json/writer.h>

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "document/Document.h"
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
                read.back().chips.append(", ").append(chip);
            } else {
                read.push_back({row.number, chip, Document({}, row.text).content});
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
        text += fmt::format("{}{}: {}", text.empty() ? "" : "; ", one.chips,
                            writtenValue(one.value));
    }
    return text;
}

}  // namespace kc2::tool
