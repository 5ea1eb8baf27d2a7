// Which system spec document this device is to read.
#pragma once

#include <string>

namespace kc2 {

// The device path of the system spec document of the target variant: what
// TargetSpec::readTargetVariant() answers. Asks the system property and the files each time.
std::string locateSystemSpec();

}  // namespace kc2
