// The JSON Schema of the documents, for editors.

#include "catalogue/JsonSchema.h"

#include <fmt/format.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "base/Text.h"
#include "catalogue/BuiltInValues.h"
#include "catalogue/SectionTexts.h"
#include "catalogue/SettingText.h"
#include "targetspec/reading/Sections.h"

namespace kc2::tool {

namespace {

constexpr int64_t kLowest = std::numeric_limits<int32_t>::min();
constexpr int64_t kHighest = std::numeric_limits<int32_t>::max();

// A perf word that the reader accepts unchanged: up to 7FFFFFFF, and nothing after the digits.
constexpr char kPerfWordPattern[] =
        "^[ \\t\\n\\v\\f\\r]*(\\+?(0[xX])?0*[0-7]?[0-9a-fA-F]{1,7}|-(0[xX])?0+)$";

// "object" or "array". Null is an empty one, and the reader does not report it.
Json::Value typeOrNull(const char* type) {
    Json::Value schema;
    schema["type"].append(type);
    schema["type"].append("null");
    schema["errorMessage"] = fmt::format("This must be an {}.", type);
    return schema;
}

Json::Value typed(const char* type) {
    Json::Value schema;
    schema["type"] = type;
    return schema;
}

// A whole number. Not "integer": editors then reject 1.0, which the reader accepts.
Json::Value wholeNumber(int64_t minimum, int64_t maximum) {
    Json::Value schema = typed("number");
    schema["multipleOf"] = 1;
    schema["minimum"] = Json::Int64{minimum};
    schema["maximum"] = Json::Int64{maximum};
    schema["errorMessage"] =
            fmt::format("This must be a whole number from {} to {}.", minimum, maximum);
    return schema;
}

Json::Value arrayOf(const Json::Value& items) {
    Json::Value schema = typeOrNull("array");
    schema["items"] = items;
    return schema;
}

// Offers the known resource codes.
Json::Value perfWord(const Catalogue& catalogue) {
    Json::Value schema = typed("string");
    for (const PerfResourceCode& code : catalogue.codes()) {
        Json::Value snippet;
        snippet["label"] = hexadecimal(code.code);
        snippet["description"] = code.meaning;
        snippet["body"] = snippet["label"];
        schema["defaultSnippets"].append(snippet);
    }
    schema["pattern"] = kPerfWordPattern;
    schema["patternErrorMessage"] =
            "This must be a hexadecimal string up to \"0x7FFFFFFF\", with nothing after it.";
    return schema;
}

// A row is [low, high, bit rate]. An upper bound of -1 is in use for "no upper bound".
Json::Value bitRateRow() {
    Json::Value row = typed("array");
    row["errorMessage"] = "This must be three whole numbers: [low, high, bit rate].";
    row["minItems"] = 3;
    row["maxItems"] = 3;
    Json::Value& snippet = row["defaultSnippets"].append(Json::objectValue);
    snippet["label"] = "[low, high, bit rate]";
    snippet["description"] = "the bit rate of values from low to high, high itself not included";
    snippet["bodyText"] = "[${1:low}, ${2:high}, ${3:bit rate}]";
    constexpr int64_t kNoUpperBound = -1;
    constexpr struct {
        const char* meaning;
        int64_t minimum;
    } kColumns[] = {
            {"low: the lowest value of the row's range", 0},
            {"high: the end of the range, itself not in it", kNoUpperBound},
            {"the bit rate", 0},
    };
    for (const auto& column : kColumns) {
        Json::Value number = wholeNumber(column.minimum, kHighest);
        number["description"] = column.meaning;
        row["items"].append(number);
    }
    return row;
}

std::string describedValues(const Setting& setting) {
    std::string text;
    for (const CatalogueValue& value : setting.values) {
        text += fmt::format("\n{}: {}", value.value, meaningOf(value));
    }
    for (const CatalogueValue& bit : setting.bits) {
        text += fmt::format("\nbit {}: {}", bit.value, meaningOf(bit));
    }
    return text;
}

std::string description(const Setting& setting) {
    const auto line = [](const char* format, const std::string& text) {
        return text.empty() ? "" : fmt::format(fmt::runtime(format), text);
    };
    return fmt::format("{}.{}{}{}{}{}\nBuilt-in value: {}", setting.meaning,
                       line("\nUnit: {}", setting.unit), describedValues(setting),
                       line("\nOnly on these chips: {}", joined(setting.chips, ", ")),
                       line("\nHas an effect only while {} is on.", setting.neededFeature),
                       line("\nMust not be above {}.", setting.atMost), builtInText(setting));
}

// Values to choose from, each with its meaning.
void addChoices(const Setting& setting, Json::Value* schema) {
    for (const CatalogueValue& choice : choicesOf(setting)) {
        Json::Value snippet;
        snippet["label"] = std::to_string(choice.value);
        snippet["description"] = meaningOf(choice);
        snippet["body"] = Json::Int64{choice.value};
        (*schema)["defaultSnippets"].append(snippet);
        if (setting.hasOnlyValues) {
            (*schema)["enum"].append(Json::Int64{choice.value});
            (*schema)["enumDescriptions"].append(snippet["description"]);
        }
    }
    if (setting.hasOnlyValues) {  // The editor offers these already.
        schema->removeMember("defaultSnippets");
        schema->removeMember("errorMessage");  // Its own message lists the values.
    }
}

// The built-in values: one default when all chips have the same, else each to choose.
void addBuiltInValues(const Setting& setting, Json::Value* schema) {
    Json::Value examples(Json::arrayValue);
    bool isOne = true;
    for (const BuiltInValue& one : builtInValuesOf(setting)) {
        isOne = isOne && !one.value.isNull() && (examples.empty() || examples[0] == one.value);
        if (!one.value.isNull()) {
            examples.append(one.value);
        }
    }
    if (isOne && !examples.empty()) {
        (*schema)["default"] = examples[0];
    } else if (!examples.empty()) {
        (*schema)["examples"] = examples;
    }
}

Json::Value schemaOf(const Setting& setting, Json::Value schema) {
    if (setting.section == targetSpecPresets) {
        int64_t mask = 0;
        for (const CatalogueValue& bit : setting.bits) {
            mask |= bit.value;
        }
        const bool isMask = !setting.bits.empty();
        schema = wholeNumber(setting.minimum.value_or(isMask ? 0 : kLowest),
                             setting.maximum.value_or(isMask ? mask : kHighest));
    }
    addChoices(setting, &schema);
    addBuiltInValues(setting, &schema);
    schema["description"] = description(setting);
    return schema;
}

// Names are free, so any name may be there; those that are known have their own rules.
Json::Value namedValues(const char* key, const Catalogue& catalogue, const Json::Value& any) {
    Json::Value schema = typeOrNull("object");
    schema["additionalProperties"] = any;
    for (const Setting& setting : catalogue.settings()) {
        if (setting.section == key) {
            schema["properties"][setting.name] = schemaOf(setting, any);
        }
    }
    return schema;
}

// Names of components; `list` is "decoders", "encoders" or empty for both. Any name is allowed.
Json::Value componentNames(const Catalogue& catalogue, const std::string& list) {
    Json::Value known;
    for (const CodecComponent& component : catalogue.components()) {
        if (list.empty() || component.list == list) {
            known["enum"].append(component.name);
            known["enumDescriptions"].append(component.chips.empty()
                                                     ? ""
                                                     : fmt::format("only on these chips: {}",
                                                                   joined(component.chips, ", ")));
        }
    }
    Json::Value name;
    name["anyOf"].append(known);
    name["anyOf"].append(typed("string"));
    return arrayOf(known.isNull() ? typed("string") : name);
}

Json::Value withoutOtherMembers() {
    Json::Value schema = typeOrNull("object");
    schema["additionalProperties"] = false;
    // A message here would hide which member it is about.
    schema.removeMember("errorMessage");
    return schema;
}

void addMember(const char* key, Json::Value member, Json::Value* object) {
    if (key != nullptr) {
        member["description"] = meaningOfSection(key);
        (*object)["properties"][key] = std::move(member);
    }
}

Json::Value dolbyVision() {
    constexpr int64_t kHighestProfile = std::numeric_limits<uint32_t>::max();
    Json::Value schema = withoutOtherMembers();
    addMember(targetSpecDVProfiles, arrayOf(wholeNumber(0, kHighestProfile)), &schema);
    for (const char* const level : {targetSpecDVMaxMainTierLevel, targetSpecDVMaxHighTierLevel}) {
        addMember(level, wholeNumber(kLowest, kHighest), &schema);
        if (level != nullptr) {
            schema["required"].append(level);
        }
    }
    return schema;
}

Json::Value codecLists(const Catalogue& catalogue) {
    Json::Value schema = withoutOtherMembers();
    addMember(targetSpecAvailableDecoders, componentNames(catalogue, "decoders"), &schema);
    addMember(targetSpecAvailableEncoders, componentNames(catalogue, "encoders"), &schema);
    return schema;
}

Json::Value schemaOf(const Section& section, const Catalogue& catalogue) {
    switch (section.type) {
        case SectionType::Features:
            return namedValues(*section.key, catalogue, typed("boolean"));
        case SectionType::Presets:
            return namedValues(*section.key, catalogue, wholeNumber(kLowest, kHighest));
        case SectionType::BitRateRows:
            return arrayOf(bitRateRow());
        case SectionType::DolbyVision:
            return dolbyVision();
        case SectionType::Names:
            return arrayOf(typed("string"));
        case SectionType::PerfResourceValues:
            return namedValues(*section.key, catalogue, arrayOf(perfWord(catalogue)));
        case SectionType::CodecLists:
            return codecLists(catalogue);
        case SectionType::CodecNames:
            return componentNames(catalogue, "");
    }
    return Json::Value();
}

}  // namespace

Json::Value schemaOf(const Catalogue& catalogue) {
    Json::Value video = withoutOtherMembers();
    for (const Section& section : kSections) {
        if (*section.key != nullptr) {
            addMember(*section.key, schemaOf(section, catalogue), &video);
        }
    }
    Json::Value root = withoutOtherMembers();
    root["$schema"] = "http://json-schema.org/draft-07/schema#";
    root["title"] = "System spec document";
    root["description"] = "What the video subsystem of a device can do.";
    root["allowComments"] = true;  // The editor's own word; other readers of schemas ignore it.
    root["allowTrailingCommas"] = false;
    root["properties"]["$schema"] = Json::objectValue;
    addMember(targetSpecRoot, video, &root);
    root["required"].append(targetSpecRoot);
    return root;
}

}  // namespace kc2::tool
