// Opening the system spec document.
#pragma once

#include <fstream>
#include <optional>
#include <string>

namespace kc2 {

// Opens the system spec document that this device reads: the one at locateSystemSpec()
// or, when that cannot be opened, the fallback. Logs what it tries. Returns the device path of the
// document that is open; nothing when neither opens.
std::optional<std::string> openSystemSpec(std::ifstream& stream);

}  // namespace kc2
