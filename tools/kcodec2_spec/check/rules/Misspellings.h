// Names that are nearly known ones, reported with the mend where it is certain.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "check/rules/Emit.h"

namespace kc2::tool {

struct Misspelling {
    Span name;          // With its quotes.
    std::string meant;  // Empty: none.
    std::string message;
};

// Reports each. A mend must be certain: nobody can tell which one of two misspelt names is meant,
// or whether one is beside the right name. `isThere` tells whether that is.
void emitMisspellings(const CheckedDocument& checked, std::vector<Misspelling> misspellings,
                      const std::function<bool(const std::string& name)>& isThere,
                      const Emit& emit);

}  // namespace kc2::tool
