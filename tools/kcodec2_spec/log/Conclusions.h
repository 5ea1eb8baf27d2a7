// What the lines of one load prove, what they leave open, and what to do next.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check/Report.h"
#include "log/LoadModel.h"
#include "log/LoadTrace.h"

namespace kc2::tool {

// How the second step can end: what is on the device, and what then happens.
struct OverlayOutcome {
    bool hasTestTool;
    const char* privateFile;
    OverlayResult kind;
    bool isPossible = true;

    // Whether the load may write the built-in document into the private file.
    bool isSeeding() const { return hasTestTool && kind == OverlayResult::BuiltIn; }
    const char* result() const;
};

// What is known of a load: from its lines and, with them, from the documents of the device.
struct ProvedFacts {
    PossibleLoads loads;
    std::vector<OverlayOutcome> outcomes;  // All nine.

    bool isOpen(SpecSource source) const { return loads.canOpen[static_cast<size_t>(source)]; }
    bool isOnly(SpecSource source) const;
    bool isOpen(OverlayResult kind) const { return loads.canEnd[static_cast<size_t>(kind)]; }
};

// Which outcomes the documents of the device leave possible, beside what LoadLimits says of them.
struct TreeFacts {
    LoadLimits limits = {};  // Only what the tree decides.
    bool canBe[9] = {true, true, true, true, true, true, true, true, true};
};

ProvedFacts factsOf(const LoadTrace& trace, const TreeFacts& tree = TreeFacts());

struct Conclusion {
    Severity severity;
    std::string topic;  // A word for scripts, such as "variant".
    std::string brief;  // In a few words; empty for what a summary leaves out.
    std::string text;
    std::string advice;                // May be empty.
    std::vector<uint64_t> lines = {};  // Of the log, that prove it.
    std::string heading = {};          // What it has in common with others; may be empty.

    std::string fullText() const;
};

// Everything that the log shows of one load and its process, in the order of the load.
std::vector<Conclusion> conclude(const LoadTrace& trace, const ProvedFacts& facts);

// Which document an event is about: the line's own word, where it has one.
Which whichOf(const LoadTrace& trace, const ProvedFacts& facts, size_t event);

}  // namespace kc2::tool
