// Names that are nearly known ones, reported with the fix where it is certain.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/NearNames.h"
#include "check/Report.h"

namespace kc2::tool {

struct Misspelling {
    Span name;          // With its quotes.
    std::string meant;  // Empty: none.
    std::string message;
    bool isCertain = true;  // Only its spelling is wrong.
};

// The names that a misspelt one may mean, in quotes: one, or two where both are as near.
std::string meantBy(const NearNames::Match& match);

// Reports each. A fix must be certain, so there is none for two misspelt names of one setting, nor
// for one beside the right name. `isPresent` says whether the document has a name.
void reportMisspellings(CheckId check, const Document& document,
                        std::vector<Misspelling> misspellings,
                        const std::function<bool(const std::string& name)>& isPresent,
                        Report* report);

}  // namespace kc2::tool
