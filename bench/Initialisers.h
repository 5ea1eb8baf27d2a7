// The load-time initialisers of the library, to be run once more where they can be measured.
#pragma once

#include "bench/Operation.h"

namespace kc2::bench {

// One operation that runs them all, and the compiler's own one, which does nothing. The program
// must then end without running exit handlers: what was registered for the first run is there
// twice.
Operations initialiserOperations();

}  // namespace kc2::bench
