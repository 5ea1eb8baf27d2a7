// What the catalogue says of a setting, in the words that every command uses.

#include "catalogue/SettingText.h"

#include <fmt/format.h>

#include "Text.h"

namespace kc2::tool {

std::string rangeOf(const Setting& setting) {
    if (setting.minimum && setting.maximum) {
        return fmt::format("{} to {}", *setting.minimum, *setting.maximum);
    }
    if (setting.minimum) {
        return fmt::format("from {}", *setting.minimum);
    }
    return setting.maximum ? fmt::format("up to {}", *setting.maximum) : "";
}

std::string meaningOf(const CatalogueValue& value) {
    return value.meaning + (value.isSupported ? "" : " (not supported)") +
           (value.neededBit ? fmt::format(" (only together with bit {})", *value.neededBit) : "");
}

std::string chipsOf(const std::vector<std::string>& chips) {
    return chips.empty() ? "all" : joined(chips, ", ");
}

}  // namespace kc2::tool
