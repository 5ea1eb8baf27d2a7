// What the built-in documents set, chip by chip.

#include "catalogue/BuiltInValues.h"

#include <fmt/format.h>
#include <json/writer.h>

#include <algorithm>
#include <utility>

#include "base/Text.h"
#include "document/Document.h"
#include "targetspec/reading/BuiltInDocuments.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

constexpr char kOtherChips[] = "other chips";

template <typename Number>
Json::Value jsonOf(Number value) {
    return value;
}
Json::Value jsonOf(const std::vector<uint32_t>& words) {
    Json::Value json(Json::arrayValue);
    for (const uint32_t word : words) {
        json.append(hexadecimal(word));
    }
    return json;
}

}  // namespace

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

Json::Value settingIn(const SpecDocument& document, const std::string& section,
                      const std::string& name) {
    Json::Value value;
    forEachContainer([&](const char* const* key, auto member) {
        const auto& values = document.*member;
        if constexpr (requires { values.find(name)->second; }) {  // Named values.
            const auto found = values.find(name);
            if (*key != nullptr && section == *key && found != values.end()) {
                value = jsonOf(found->second);
            }
        }
    });
    return value;
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
