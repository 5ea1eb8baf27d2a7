// The page docs/settings.md: the catalogue as tables.
#pragma once

#include <string>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

// "0 to 6", "from 0"; empty where any integer is allowed.
std::string rangeOf(const Setting& setting);

std::string settingsPage(const Catalogue& catalogue);

}  // namespace kc2::tool
