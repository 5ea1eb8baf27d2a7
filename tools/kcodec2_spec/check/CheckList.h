// The list of checks, as options set their severities.
#pragma once

#include "check/Levels.h"

namespace kc2::tool {

// Prints the checks, group by group: id, severity, what is found.
void printCheckList(const Levels& levels);

}  // namespace kc2::tool
