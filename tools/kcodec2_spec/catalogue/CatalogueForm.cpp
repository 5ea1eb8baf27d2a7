// The form of a settings catalogue file.

#include "catalogue/CatalogueForm.h"

#include <fmt/format.h>

#include "base/Text.h"
#include "catalogue/Catalogue.h"
#include "kc2/TargetSpecKeys.h"
#include "targetspec/reading/BuiltInDocuments.h"

namespace kc2::tool {

namespace {

constexpr bool kNeeded = true;
constexpr bool kOptional = false;
constexpr char kText[] = "text";
constexpr char kWholeNumber[] = "whole number";
constexpr char kFlag[] = "`true` or `false`";

std::string quotedWords(const std::vector<std::string>& words) {
    return fmt::format("`\"{}\"`", joined(words, "\"`, `\""));
}

std::vector<CatalogueObject> makeForm() {
    const std::string chips = "list of chips: " + quotedWords(chipNames());
    const CatalogueMember meaning = {"meaning", kNeeded, kText,
                                     "What it is, in one line. `explain`, `diff`, `report` and "
                                     "editors show it."};
    const CatalogueMember supported = {"supported", kOptional, kFlag,
                                       "`false`: devices do not support it, and `check` reports "
                                       "it. Default: `true`."};
    return {
            {"The file",
             {{"settings", kOptional, "list of settings", "Settings with a name."},
              {"codec-components", kOptional, "list of components", "Codec components."},
              {"perf-resource-codes", kOptional, "list of codes",
               "Resource codes of perf words."}}},
            {"A setting",
             {{"name", kNeeded, kText, "Its name in documents."},
              {"section", kNeeded, quotedWords(settingSections()),
               "The section of documents that it belongs in."},
              {"type", kNeeded, quotedWords(settingTypes()),
               "The type of its values: the one for that section, in this order."},
              meaning,
              {"unit", kOptional, kText, "The unit of its values."},
              {"minimum", kOptional, kWholeNumber, "The lowest value. Default: no limit."},
              {"maximum", kOptional, kWholeNumber, "The highest value. Default: no limit."},
              {"maximum-of-byte", kOptional, kWholeNumber,
               "The highest value of each byte. Default: no limit."},
              {"values", kOptional, "list of values", "Values with a meaning."},
              {"only-values", kOptional, kFlag,
               "`true`: only the values in `values` are allowed. Default: `false`."},
              {"bits", kOptional, "list of bits",
               "The bits of a bit mask; no other bit is allowed."},
              {"chips", kOptional, chips, "The chips that have it. Default: all."},
              {"needs-feature", kOptional, "name of a setting in \"Features\"",
               "It has an effect only while this feature is on."},
              {"at-most", kOptional, "name of another setting in \"Presets\"",
               "Its value must not be above this preset's."}}},
            {"A value", {{"value", kNeeded, kWholeNumber, "The value."}, meaning, supported}},
            {"A bit",
             {{"bit", kNeeded, kWholeNumber, "The value of the bit: 1, 2, 4, 8 and so on."},
              meaning,
              supported,
              {"needs-bit", kOptional, kWholeNumber,
               "The value of another bit, which must be set with this one."}}},
            {"A codec component",
             {{"name", kNeeded, kText, "Its name in documents."},
              {"list", kNeeded,
               quotedWords({targetSpecAvailableDecoders, targetSpecAvailableEncoders}),
               "The list that it belongs in."},
              {"chips", kOptional, chips, "The chips that have it. Default: all."}}},
            {"A perf resource code",
             {{"code", kNeeded, "text such as `\"0x40800000\"`", "The code, a 32-bit word."},
              meaning}},
    };
}

}  // namespace

const std::vector<CatalogueObject>& catalogueForm() {
    static const std::vector<CatalogueObject> form = makeForm();
    return form;
}

const CatalogueObject& formOf(CatalogueKind kind) {
    return catalogueForm()[static_cast<size_t>(kind)];
}

std::vector<std::string> chipNames() {
    std::vector<std::string> names;
    for (const ChipDocument& row : kChipDocuments) {
        names.emplace_back(*row.chip != '\0' ? row.chip : kOtherChip);
    }
    return names;
}

}  // namespace kc2::tool
