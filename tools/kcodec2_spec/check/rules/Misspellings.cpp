// Names that are nearly known ones, reported with the mend where it is certain.

#include "check/rules/Misspellings.h"

#include <unordered_map>
#include <utility>

#include "document/Mends.h"

namespace kc2::tool {

void emitMisspellings(const CheckedDocument& checked, std::vector<Misspelling> misspellings,
                      const std::function<bool(const std::string& name)>& isThere,
                      const Emit& emit) {
    std::unordered_map<std::string, size_t> timesMeant;
    for (const Misspelling& one : misspellings) {
        ++timesMeant[one.meant];
    }
    for (Misspelling& one : misspellings) {
        const bool isCertain =
                !one.meant.empty() && timesMeant[one.meant] == 1 && !isThere(one.meant);
        emit(checked, one.name, std::move(one.message),
             {.related = {},
              .fixes = isCertain ? renaming(checked.source.text(), one.name, one.meant)
                                 : std::vector<Fix>()});
    }
}

}  // namespace kc2::tool
