// Which document of a load sets a name, and whose value has no effect.
#pragma once

#include <string>

#include "catalogue/Explanation.h"
#include "store/Load.h"

namespace kc2::tool {

// Adds which document sets `name` on this device, which must be the one of the load: the steps of
// the load are repeated. Returns whether one does.
bool explainSetters(const Load& load, const std::string& name, Explanation* explanation);

// The document whose value of a setting the store has; null when neither has one.
const Document* setterOf(const Load& load, const std::string& section, const std::string& name);

}  // namespace kc2::tool
