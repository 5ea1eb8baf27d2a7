// One report for several variants of a device.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "check/Check.h"

namespace kc2::tool {

// A device under several variants, and what the check finds in it.
struct CheckedVariants {
    std::vector<std::string> variants;
    std::vector<Load> loads;  // The report points into these.
    std::unique_ptr<Document>
            fallback;  // And into this; null when there is none, or a load reads it.
    Report report;
};

// Loads and checks the device under each of the variants, and the document that a load with any
// other one falls back to. Each finding is reported once, with the variants that have it.
CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known);

// Each variant that the tree has a document for, and the default one, unless every document is for
// a variant.
std::vector<std::string> variantsToCheck();

}  // namespace kc2::tool
