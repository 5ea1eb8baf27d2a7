// A variant that the device has no document for.
#pragma once

#include "store/Load.h"

namespace kc2::tool {

// Prints a notice on standard error where the load's variant selects no document, with the nearest
// variant that does.
void reportUnknownVariant(const Load& load);

}  // namespace kc2::tool
