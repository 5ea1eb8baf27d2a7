// The language server on the standard streams.
#pragma once

#include <memory>
#include <string>

#include "catalogue/KnownSettings.h"

namespace kc2::tool {

// Serves the editor at the other end until it ends, and returns the exit code. Input that is none
// of the protocol, or that ends early, gives a line on standard error.
int serveEditor(std::shared_ptr<const KnownSettings> known, const std::string& root);

}  // namespace kc2::tool
