// A log beside the documents that were pulled from the same device.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "log/Conclusions.h"
#include "log/LoadStory.h"

namespace kc2::tool {

struct PlacedLine {
    uint64_t line;      // Of the log.
    std::string text;   // What it tells, in short.
    std::string place;  // "path:line:column", and what the checker says of it.
};

// Loads the tree that the device options name, finds the place in its documents of each line of
// the load, and adds where the log and the documents contradict each other. Without a variant from
// the options it takes the one that the log shows.
void comparePulled(const LoadStory& story, bool isVariantGiven,
                   std::vector<Conclusion>* conclusions, std::vector<PlacedLine>* places);

}  // namespace kc2::tool
