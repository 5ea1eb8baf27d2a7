// What the lines of one load prove, what they leave open, and what to do next.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "check/Report.h"
#include "log/LoadStory.h"

namespace kc2::tool {

// Which document an event is about: the first one, the second one, or either.
enum class Which { SystemSpec, Overlay, Either };

struct Attribution {
    std::vector<Which> of;         // One for each event of the story.
    bool isContradictory = false;  // The lines cannot come from one load.
};

// Attributes every event by what is proved: the document that a line names, the dump between the
// two steps, the lines about the missing variant, the order of sections in a document, and that a
// rejected document has no other line.
Attribution attribute(const LoadStory& story);

// How the second step can end: what is on the device, and what then happens.
struct OverlayOutcome {
    bool hasTestTool;
    const char* privateFile;
    const char* result;
    bool isRejected;       // A line tells that the file was rejected.
    bool isPrivateMerged;  // The private file's content was merged.
    bool isPossible;
};

// All of them, with those marked that the log leaves possible.
std::vector<OverlayOutcome> overlayOutcomes(const LoadStory& story, const Attribution& attribution);

struct Conclusion {
    Severity severity;
    std::string topic;  // A word for scripts, such as "variant".
    std::string text;
    std::string advice;           // May be empty.
    std::vector<uint64_t> lines;  // Of the log, that prove it.
};

// Everything that the log tells of one load and its process, in the order of the load.
std::vector<Conclusion> conclude(const LoadStory& story);

}  // namespace kc2::tool
