// What the catalogue says about a setting, in the words that every command uses.

#include "catalogue/SettingText.h"

#include <fmt/format.h>

#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/Text.h"

namespace kc2::tool {

namespace {

// Every mask that the bits make; more than four bits would make too many.
std::vector<CatalogueValue> masksOf(const std::vector<CatalogueValue>& bits) {
    constexpr size_t kMostBits = 4;
    std::vector<CatalogueValue> masks;
    for (size_t chosen = 0; bits.size() <= kMostBits && chosen < size_t{1} << bits.size();
         ++chosen) {
        CatalogueValue mask;
        int64_t needed = 0;
        for (size_t i = 0; i < bits.size(); ++i) {
            if ((chosen >> i & 1) != 0) {
                mask.value |= bits[i].value;
                needed |= bits[i].neededBit.value_or(0);
                mask.meaning.append(mask.meaning.empty() ? "" : ", ").append(bits[i].meaning);
            }
        }
        if (mask.meaning.empty()) {
            mask.meaning = "no bit";
        }
        if ((mask.value & needed) == needed) {
            masks.push_back(std::move(mask));
        }
    }
    return masks;
}

}  // namespace

std::string rangeOf(const Setting& setting) {
    const std::string range = setting.minimum && setting.maximum
                                      ? fmt::format("{} to {}", *setting.minimum, *setting.maximum)
                              : setting.minimum ? fmt::format("from {}", *setting.minimum)
                              : setting.maximum ? fmt::format("up to {}", *setting.maximum)
                                                : "";
    return setting.maximumOfByte ? fmt::format("{}{}each byte up to {}", range,
                                               range.empty() ? "" : ", ", *setting.maximumOfByte)
                                 : range;
}

std::string meaningOf(const CatalogueValue& value) {
    return fmt::format(
            "{}{}{}", value.meaning, value.isSupported ? "" : " (not supported)",
            value.neededBit ? fmt::format(" (only together with bit {})", *value.neededBit) : "");
}

std::string chipsOf(const std::vector<std::string>& chips) {
    return chips.empty() ? "all" : joined(chips, ", ");
}

std::vector<CatalogueValue> choicesOf(const Setting& setting) {
    return setting.bits.empty() ? setting.values : masksOf(setting.bits);
}

}  // namespace kc2::tool
