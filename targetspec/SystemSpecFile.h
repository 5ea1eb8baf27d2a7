// Opening the system spec document.
#pragma once

#include <fstream>
#include <string>

namespace kc2 {

// Opens the system spec document that this device reads: the one at TargetSpec::readTargetVariant()
// or, when that cannot be opened, the fallback. Logs what it tries. Returns the device path that
// opened, or an empty string, and then `stream` is closed.
std::string openSystemSpec(std::ifstream& stream);

}  // namespace kc2
