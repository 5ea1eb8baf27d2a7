// Opening the system spec document.
#pragma once

#include <fstream>
#include <optional>
#include <string>

namespace kc2 {

// Opens this device's system spec document: the one at locateSystemSpec() or, if that cannot be
// opened, the fallback. Logs the paths that it tries. Returns the device path of the open document;
// nothing if neither opens.
std::optional<std::string> openSystemSpec(std::ifstream& stream);

}  // namespace kc2
