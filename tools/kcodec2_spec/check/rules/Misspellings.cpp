// Names that are nearly known ones, reported with the fix where it is certain.

#include "check/rules/Misspellings.h"

#include <fmt/format.h>

#include <unordered_map>
#include <utility>

namespace kc2::tool {

std::string meantBy(const NearNames::Match& match) {
    return match.other == nullptr
                   ? fmt::format("\"{}\"", match.entry->name)
                   : fmt::format("\"{}\" or \"{}\"", match.entry->name, match.other->name);
}

void reportMisspellings(CheckId check, const Document& document,
                        std::vector<Misspelling> misspellings,
                        const std::function<bool(const std::string& name)>& isPresent,
                        Report* report) {
    std::unordered_map<std::string, size_t> timesMeant;
    for (const Misspelling& one : misspellings) {
        ++timesMeant[one.meant];
    }
    for (Misspelling& one : misspellings) {
        const bool isCertain = one.isCertain && !one.meant.empty() && timesMeant[one.meant] == 1 &&
                               !isPresent(one.meant);
        report->add(check, document, one.name, std::move(one.message),
                    {.fixes = isCertain ? renaming(document.text, one.name, one.meant)
                                        : std::vector<Fix>()});
    }
}

}  // namespace kc2::tool
