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
    Report report;
};

// Loads and checks the device under each of the variants. Each finding is reported once, with the
// variants that have it.
CheckedVariants checkVariants(std::vector<std::string> variants, const Levels& levels,
                              const KnownSettings& known);

// The same with each variant that the tree has a document for, and without one.
CheckedVariants checkAllVariants(const Levels& levels, const KnownSettings& known);

}  // namespace kc2::tool
