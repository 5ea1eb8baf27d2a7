// What the built-in documents set, chip by chip.
#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"
#include "targetspec/reading/SpecDocument.h"

namespace kc2::tool {

// The value that a document gives a name in a section of named values; null when it does not set
// it.
Json::Value settingIn(const SpecDocument& document, const std::string& section,
                      const std::string& name);

struct BuiltInDocument {
    int number;
    std::string chips;  // "brel, mirt", or "other chips".
    SpecDocument content;
};

// One for each number.
const std::vector<BuiltInDocument>& builtInDocuments();

// The value that one built-in document gives a setting.
struct BuiltInValue {
    int number;         // Of the built-in document.
    std::string chips;  // "brel, mirt", or "other chips".
    Json::Value value;  // Null: the document does not set it.
};

// One for each built-in document, in their order.
std::vector<BuiltInValue> builtInValuesOf(const Setting& setting);

// A value as a document writes it, on one line.
std::string writtenValue(const Json::Value& value);

// In one line for people: "brel, mirt: 1; other chips: not set", or the one value of all chips.
std::string builtInText(const Setting& setting);

}  // namespace kc2::tool
