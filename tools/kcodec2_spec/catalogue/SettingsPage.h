// The page docs/settings.md: the catalogue as tables.
#pragma once

#include <string>

#include "catalogue/Catalogue.h"

namespace kc2::tool {

std::string settingsPage(const Catalogue& catalogue);

}  // namespace kc2::tool
