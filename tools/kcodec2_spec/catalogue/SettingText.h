// What the catalogue says about a setting, in the words that every command uses.
#pragma once

#include <string>
#include <vector>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

// "0 to 6", "from 0"; empty where any integer is allowed.
std::string rangeOf(const Setting& setting);

// A value's meaning, and what limits it: "off (not supported)".
std::string meaningOf(const CatalogueValue& value);

// "brel, mirt", or "all".
std::string chipsOf(const std::vector<std::string>& chips);

// The values that a bit mask or a setting with a list of values may have, with the meaning of each;
// empty for other settings.
std::vector<CatalogueValue> choicesOf(const Setting& setting);

}  // namespace kc2::tool
