// The path of this device's system spec document.
#pragma once

#include <string>

namespace kc2 {

// The device path of the system spec document of the target variant, for
// TargetSpec::readTargetVariant(). Reads the system property and examines the path on each call.
std::string locateSystemSpec();

}  // namespace kc2
