// A load of a log beside the documents that were pulled from the same device.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "log/Conclusions.h"
#include "log/LoadTrace.h"

namespace kc2::tool {

struct PlacedLine {
    uint64_t line;      // Of the log.
    std::string text;   // What it says, in short.
    std::string place;  // "path:line:column", and what the checker says of it.
};

struct PulledComparison {
    ProvedFacts facts;                    // Of the lines and the documents together.
    std::vector<Conclusion> conclusions;  // What to pull, and where both contradict each other.
    std::vector<PlacedLine> places;       // In the documents, of lines of the log.
};

// Loads the tree that the device options name with the library, and compares what it logs with the
// lines of the load. Without a variant from the options it uses the one that the log shows. A
// document that is not in the tree proves nothing: it may not have been pulled.
PulledComparison comparePulled(const LoadTrace& trace, bool isVariantGiven);

}  // namespace kc2::tool
